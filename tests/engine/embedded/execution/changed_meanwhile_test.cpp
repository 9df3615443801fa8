// A statement and the commits of others: in the very moment of its beginning, and when there are
// none.
#include <sqlite3.h>

#include <functional>
#include <utility>

#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

struct Connection {
  explicit Connection(std::unique_ptr<Storage> opened) : storage(std::move(opened)) {}

  std::unique_ptr<Storage> storage;
  CatalogueStore store{*storage};
  Executor executor{*storage, store, PlanOptions()};
};

class ChangedMeanwhile : public testing::Test {
 protected:
  ChangedMeanwhile() {
    ours_.executor.Execute("create table T (a long)", true);
    ours_.executor.Execute("insert into T values (1)", true);
    ours_.store.CreateQuery({"Q", "select a as x from T"});
    sqlite3_trace_v2(ours_.storage->raw(), SQLITE_TRACE_STMT, SeeStatement, this);
  }

  Variant Value(const std::string& sql) {
    return ours_.executor.Open(sql, dao::RecordsetType::kSnapshot, alive_)->Value(0);
  }

  test::TempFolder folder_;
  const std::string path_ = folder_.File("a.mdb");
  Connection ours_{Storage::Create(path_)};
  Connection other_{Storage::Open(path_, Storage::Access::kShared)};
  Liveness alive_ = std::make_shared<const bool>(true);
  // Statements of ours that have begun; what happens at the beginning of the next one.
  int begun_ = 0;
  std::function<void()> meanwhile_;

 private:
  static int SeeStatement(unsigned /*kind*/, void* self, void* /*statement*/, void* /*text*/) {
    auto& test = *static_cast<ChangedMeanwhile*>(self);
    ++test.begun_;
    if (const auto meanwhile = std::exchange(test.meanwhile_, nullptr)) meanwhile();
    return 0;
  }
};

TEST_F(ChangedMeanwhile, NothingButTheStatementIsReadWhereNobodyHasCommitted) {
  Value("select x from Q");
  begun_ = 0;
  EXPECT_EQ(Value("select x from Q"), Variant(int32_t{1}));
  EXPECT_EQ(begun_, 1);
}

TEST_F(ChangedMeanwhile, DataAndDefinitionsAreOfOneMoment) {
  EXPECT_EQ(Value("select x from Q"), Variant(int32_t{1}));
  meanwhile_ = [&] {
    other_.storage->Begin();
    other_.executor.Execute("update T set a = 2", true);
    other_.store.ChangeQuery("Q", "select a + 10 as x from T");
    other_.storage->Commit();
  };
  EXPECT_EQ(Value("select x from Q"), Variant(int32_t{12}));
}

TEST_F(ChangedMeanwhile, ATableThatGoesIsMissedByItsName) {
  EXPECT_EQ(Value("select a from T"), Variant(int32_t{1}));
  meanwhile_ = [&] { other_.store.DropTable("T"); };
  EXPECT_EQ(test::ErrorOf([&] { Value("select a from T"); }), 3078);
}

TEST_F(ChangedMeanwhile, ARowThatComesIsSeenByTheNextStatement) {
  EXPECT_EQ(Value("select count(*) from T"), Variant(int32_t{1}));
  other_.executor.Execute("insert into T values (5)", true);
  EXPECT_EQ(Value("select count(*) from T"), Variant(int32_t{2}));
  ours_.executor.Execute("insert into T values (6)", true);
  EXPECT_EQ(Value("select count(*) from T"), Variant(int32_t{3}));
}

}  // namespace
}  // namespace ambrelio::embedded
