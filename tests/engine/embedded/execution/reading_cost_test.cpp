// That a recordset costs what is looked at, counted in the storage's own steps.
#include <sqlite3.h>

#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::RecordsetType;

constexpr int kRows = 10000;
constexpr int kFew = 300;
constexpr RecordsetType kReadBothWays[] = {RecordsetType::kDynaset, RecordsetType::kSnapshot};

class ReadingCost : public testing::Test {
 protected:
  ReadingCost() {
    Execute(
        "create table D (Tolva short, Descarga long, Deposito short, Kilos double, "
        "constraint k primary key (Tolva, Descarga, Deposito))");
    storage_->Run("with recursive n(i) as (select 0 union all select i + 1 from n where i < " +
                  std::to_string(kRows - 1) +
                  ") insert into D select 1 + i % 2, i / 4, i / 2 % 2, i * 1.5 from n");
  }

  void Execute(const std::string& sql) { executor_.Execute(sql, true); }
  std::unique_ptr<dao::Recordset> Open(const std::string& sql, RecordsetType type) {
    return executor_.Open(sql, type, alive_);
  }

  // What all statements have stepped since the last call.
  int Steps() {
    int steps = 0;
    sqlite3_stmt* statement = nullptr;
    while ((statement = sqlite3_next_stmt(storage_->raw(), statement)) != nullptr) {
      steps += sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 1);
    }
    return steps;
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("a.mdb"));
  CatalogueStore store_{*storage_};
  Executor executor_{*storage_, store_, PlanOptions()};
  Liveness alive_ = std::make_shared<const bool>(true);
};

constexpr const char* kOrdered[] = {
    "select * from D",
    "select * from D where Tolva=1 order by Descarga",
    "select Descarga from D order by Tolva desc, Descarga desc, Deposito desc",
    ("select a.Kilos from D as a inner join D as b on a.Tolva = b.Tolva and "
     "a.Descarga = b.Descarga and a.Deposito = b.Deposito where a.Tolva = 2 order by a.Descarga"),
};

TEST_F(ReadingCost, TheFirstRowCostsNoMoreThanItself) {
  for (const char* const sql : kOrdered) {
    for (const RecordsetType type : kReadBothWays) {
      Steps();
      const auto rows = Open(sql, type);
      EXPECT_FALSE(rows->AtEnd());
      EXPECT_LT(Steps(), kFew) << sql;
    }
  }
}

TEST_F(ReadingCost, TheLastRowCostsNoMoreThanItself) {
  for (const char* const sql : kOrdered) {
    for (const RecordsetType type : kReadBothWays) {
      Steps();
      const auto rows = Open(sql, type);
      rows->MoveLast();
      EXPECT_FALSE(rows->AtEnd());
      EXPECT_LT(Steps(), kFew) << sql;
      rows->MoveNext();
      rows->MovePrevious();
      rows->MoveFirst();
      EXPECT_LT(Steps(), kFew) << sql;
    }
  }
}

TEST_F(ReadingCost, EachMoveCostsOneRow) {
  for (const RecordsetType type : kReadBothWays) {
    const auto rows = Open("select * from D where Tolva=1 order by Descarga", type);
    for (int i = 0; i < 10; ++i) {
      Steps();
      rows->MoveNext();
      EXPECT_LT(Steps(), kFew);
    }
  }
}

// The walk of a dynaset whose columns are those of its table takes no second look at a row.
TEST_F(ReadingCost, ARowThatIsSteppedToIsReadOnce) {
  const auto walk = [&](const char* sql) {
    const auto rows = Open(sql, RecordsetType::kDynaset);
    Steps();
    for (int i = 0; i < 100; ++i) rows->MoveNext();
    return Steps();
  };
  const int plain = walk("select Kilos from D where Tolva=1 order by Descarga");
  const int computed = walk("select -Kilos from D where Tolva=1 order by Descarga");
  EXPECT_LT(plain * 3, computed * 2);
}

TEST_F(ReadingCost, OnlyWhatNeedsTheCountPaysForIt) {
  const auto rows =
      Open("select * from D where Tolva=1 order by Descarga", RecordsetType::kDynaset);
  rows->MoveLast();
  Steps();
  rows->MovePrevious();
  EXPECT_GT(Steps(), kRows);
  rows->MovePrevious();
  EXPECT_LT(Steps(), kFew);
}

TEST_F(ReadingCost, AWriteReadsWhatIsStillOpenOnce) {
  const auto rows =
      Open("select * from D where Tolva=1 order by Descarga", RecordsetType::kDynaset);
  Steps();
  Execute("update D set Kilos = 0 where Tolva = 1 and Descarga = 0 and Deposito = 0");
  EXPECT_GT(Steps(), kRows);
  Execute("update D set Kilos = 1 where Tolva = 1 and Descarga = 0 and Deposito = 0");
  EXPECT_LT(Steps(), kFew);
}

TEST_F(ReadingCost, ADroppedRecordsetIsNotReadOn) {
  Open("select * from D", RecordsetType::kSnapshot).reset();
  Steps();
  Execute("update D set Kilos = 0 where Tolva = 1 and Descarga = 0 and Deposito = 0");
  EXPECT_LT(Steps(), kFew);
}

TEST_F(ReadingCost, RecordsetsWithinAWalkDoNotReadItToItsEnd) {
  const auto outer = Open("select * from D", RecordsetType::kDynaset);
  Steps();
  for (int i = 0; i < 5; ++i) {
    const auto inner =
        Open("select Kilos from D where Tolva = 2 and Descarga = 3 order by Deposito",
             RecordsetType::kDefault);
    inner->MoveLast();
    outer->MoveNext();
    EXPECT_LT(Steps(), kFew);
  }
}

TEST_F(ReadingCost, MemoryOfAQuestionDoesNotGrowWithItsRows) {
  constexpr int64_t kMost = 40 << 20;
  if (sqlite3_memory_used() == 0) GTEST_SKIP() << "this SQLite does not count its memory";
  Execute("create table L (Numero long constraint k primary key, Texto text(250))");
  storage_->Run(
      "with recursive n(i) as (select 1 union all select i + 1 from n where i < 200000) "
      "insert into L select i, printf('%250d', i) from n");
  sqlite3_memory_highwater(1);
  const auto rows = Open("select Numero mod 3 as n, max(Texto) as t from L group by Numero mod 3",
                         RecordsetType::kSnapshot);
  rows->MoveLast();
  EXPECT_EQ(rows->Value("n").as<int32_t>(), 2);
  EXPECT_LT(sqlite3_memory_highwater(0), kMost);  // of 50 MB that are sorted
}

}  // namespace
}  // namespace ambrelio::embedded
