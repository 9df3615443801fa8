// Recordsets of which not all rows have been looked at: what they promise is as certain as if all
// had been read at the opening.
#include <sqlite3.h>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::RecordsetType;
using test::ErrorOf;
using Numbers = std::vector<int32_t>;

constexpr auto kSnapshot = RecordsetType::kSnapshot;
constexpr auto kDynaset = RecordsetType::kDynaset;

class PartlyRead : public test::EngineTest {
 protected:
  PartlyRead() : database_(Create()) {
    AddTanks(*database_);
    workspace().BeginTrans();
    for (int number = 1; number <= 5; ++number) {
      database_->Execute("insert into Tanques values (" + std::to_string(number) + ", " +
                         std::to_string(number * 100) + ")");
    }
    workspace().CommitTrans();
    others_ = other_->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  }

  std::unique_ptr<dao::Recordset> Select(RecordsetType type = RecordsetType::kDefault,
                                         const std::string& rest = "order by Numero") {
    return database_->OpenRecordset("select Numero, Litros from Tanques " + rest, type);
  }
  static int32_t Number(dao::Recordset& rows) { return rows.Value("Numero").as<int32_t>(); }
  static int32_t Litres(dao::Recordset& rows) { return rows.Value("Litros").as<int32_t>(); }

  // The first column from the current row on.
  static Numbers Rest(dao::Recordset& rows) {
    Numbers numbers;
    for (; !rows.AtEnd(); rows.MoveNext()) numbers.push_back(rows.Value(0).as<int32_t>());
    return numbers;
  }

  // Whether somebody's reading keeps the log from being taken over into the file.
  bool LogIsHeld() {
    others_->Execute("update Tanques set Litros = Litros + 1 where Numero = 1");
    const auto storage = Storage::Open(Path(), Storage::Access::kShared);
    StorageStatement checkpoint(storage->raw(), "pragma wal_checkpoint(passive)");
    checkpoint.Step();
    return checkpoint.Integer(1) != checkpoint.Integer(2);
  }

  DatabasePtr database_;
  std::shared_ptr<dao::DBEngine> other_ = OtherEngine();
  DatabasePtr others_;
};

// What this connection writes.

TEST_F(PartlyRead, ASnapshotDoesNotSeeOwnWrites) {
  for (const char* const write :
       {"update Tanques set Litros = 0", "insert into Tanques values (6, 0)",
        "delete from Tanques where Numero = 4"}) {
    const auto rows = Select(kSnapshot, "where Numero < 10 order by Numero");
    const Numbers before = Rest(*Select(kSnapshot));
    const int32_t litres = Litres(*Select(kSnapshot, "where Numero = 5"));
    rows->MoveNext();
    database_->Execute(write);
    rows->MoveFirst();
    EXPECT_EQ(Rest(*rows), before) << write;
    rows->MoveLast();
    EXPECT_EQ(Number(*rows), 5);
    EXPECT_EQ(Litres(*rows), litres) << write;
    database_->Execute("delete from Tanques where Numero = 6");
  }
}

TEST_F(PartlyRead, ADynasetKeepsItsRowsAndReadsTheirValues) {
  const auto rows = Select(kDynaset, "where Litros > 150 order by Litros");
  database_->Execute("update Tanques set Litros = 1000 - Litros");
  database_->Execute("insert into Tanques values (6, 600)");
  EXPECT_EQ(Litres(*rows), 200);
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 700);
  rows->MoveFirst();
  EXPECT_EQ(Rest(*rows), (Numbers{2, 3, 4, 5}));
}

TEST_F(PartlyRead, ADynasetMissesARowDeletedBeforeItWasLookedAt) {
  const auto rows = Select();
  database_->Execute("delete from Tanques where Numero = 5 or Numero = 2");
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { Number(*rows); }), 3167);
  rows->MoveLast();
  EXPECT_EQ(ErrorOf([&] { Number(*rows); }), 3167);
  rows->MovePrevious();
  EXPECT_EQ(Number(*rows), 4);
}

TEST_F(PartlyRead, AWalkThatWritesMeetsEachRowOnce) {
  const auto rows = Select(kDynaset, "where Litros > 0 order by Litros desc");
  Numbers met;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    met.push_back(Number(*rows));
    database_->Execute("update Tanques set Litros = 1 where Numero = " +
                       std::to_string(met.back()));
  }
  EXPECT_EQ(met, (Numbers{5, 4, 3, 2, 1}));
}

TEST_F(PartlyRead, AWriteThatFailsChangesNothingForThem) {
  const auto rows = Select(kSnapshot);
  EXPECT_EQ(
      ErrorOf([&] { database_->Execute("insert into Tanques values (1, 0)", dao::kFailOnError); }),
      3022);
  EXPECT_EQ(Rest(*rows), (Numbers{1, 2, 3, 4, 5}));
}

// What others write.

TEST_F(PartlyRead, ASnapshotDoesNotSeeWhatOthersCommit) {
  const auto rows = Select(kSnapshot);
  others_->Execute("update Tanques set Litros = 0");
  others_->Execute("delete from Tanques where Numero = 3");
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 200);
  EXPECT_EQ(Rest(*rows), (Numbers{2, 3, 4, 5}));
}

TEST_F(PartlyRead, TheLastRowOfASnapshotIsThatOfItsOpening) {
  const auto rows = Select(kSnapshot);
  others_->Execute("insert into Tanques values (6, 600)");
  others_->Execute("update Tanques set Litros = 0");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 5);
  EXPECT_EQ(Litres(*rows), 500);
}

TEST_F(PartlyRead, ADynasetReadsTheValuesThatOthersHaveCommitted) {
  const auto rows = Select();
  others_->Execute("update Tanques set Litros = 7");
  others_->Execute("delete from Tanques where Numero = 3");
  EXPECT_EQ(Litres(*rows), 100);
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 7);
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { Number(*rows); }), 3167);
}

TEST_F(PartlyRead, ADynasetReadsItsLastRowAsOthersHaveCommittedIt) {
  const auto rows = Select();
  others_->Execute("update Tanques set Litros = 7");
  others_->Execute("insert into Tanques values (6, 600)");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 5);
  EXPECT_EQ(Litres(*rows), 7);
}

TEST_F(PartlyRead, ADynasetReadsOnInStepWithOthers) {
  const auto rows = Select();
  for (int32_t row = 1; row < 5; ++row) {
    others_->Execute("update Tanques set Litros = " + std::to_string(row));
    rows->MoveNext();
    EXPECT_EQ(Litres(*rows), row);
  }
  others_->Execute("update Tanques set Litros = 9");
  rows->MovePrevious();
  EXPECT_EQ(Litres(*rows), 9);
}

TEST_F(PartlyRead, ASecondRecordsetSeesWhatOthersCommittedAfterTheFirst) {
  const auto first = Select(kSnapshot);
  others_->Execute("insert into Tanques values (6, 600)");
  EXPECT_EQ(CountRows(*database_), 6);
  EXPECT_EQ(Rest(*Select()), (Numbers{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Rest(*first), (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(PartlyRead, ADefinitionOfOthersIsSeenWhileOneIsOpen) {
  const auto rows = Select(kSnapshot);
  others_->Execute("create table Otra (a long)");
  EXPECT_EQ(database_->TableDefs().Count(), 2);
  others_->Execute("alter table Otra add column b long");
  EXPECT_EQ(database_->OpenRecordset("Otra")->Fields().Count(), 2);
  EXPECT_EQ(Rest(*rows), (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(PartlyRead, OnesOwnWriteIsNotRefusedAfterACommitOfOthers) {
  const auto rows = Select(kSnapshot);
  others_->Execute("update Tanques set Litros = 7");
  database_->Execute("update Tanques set Litros = Litros + 1", dao::kFailOnError);
  EXPECT_EQ(Litres(*Select()), 8);
  EXPECT_EQ(Litres(*rows), 100);
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 200);
}

TEST_F(PartlyRead, ATransactionBeginsAfterACommitOfOthers) {
  const auto rows = Select();
  others_->Execute("update Tanques set Litros = 7");
  workspace().BeginTrans();
  database_->Execute("update Tanques set Litros = Litros + 1", dao::kFailOnError);
  workspace().CommitTrans();
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 8);
}

TEST_F(PartlyRead, OthersCanWriteMeanwhile) {
  const auto rows = Select();
  rows->MoveNext();
  others_->Execute("update Tanques set Litros = 7", dao::kFailOnError);
  EXPECT_EQ(others_->RecordsAffected(), 5);
}

// Transactions.

TEST_F(PartlyRead, OnesOpenedInATransactionOutliveItsCommit) {
  workspace().BeginTrans();
  database_->Execute("insert into Tanques values (6, 600)");
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  workspace().CommitTrans();
  others_->Execute("insert into Tanques values (7, 700)");
  others_->Execute("update Tanques set Litros = 7");
  EXPECT_EQ(Rest(*snapshot), (Numbers{1, 2, 3, 4, 5, 6}));
  dynaset->MoveLast();
  EXPECT_EQ(Number(*dynaset), 6);
  EXPECT_EQ(Litres(*dynaset), 7);
}

TEST_F(PartlyRead, ARollbackDoesNotTakeRowsFromASnapshot) {
  workspace().BeginTrans();
  database_->Execute("insert into Tanques values (6, 600)");
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  workspace().Rollback();
  EXPECT_EQ(Rest(*snapshot), (Numbers{1, 2, 3, 4, 5, 6}));
  dynaset->MoveLast();
  EXPECT_EQ(ErrorOf([&] { Number(*dynaset); }), 3167);
  dynaset->MovePrevious();
  EXPECT_EQ(Number(*dynaset), 5);
}

TEST_F(PartlyRead, NestedLevelsLeaveThemAsTheyWereOpened) {
  workspace().BeginTrans();
  const auto outer = Select(kSnapshot);
  database_->Execute("delete from Tanques where Numero = 5");
  workspace().BeginTrans();
  const auto inner = Select(kSnapshot);
  database_->Execute("delete from Tanques where Numero = 4");
  const auto innermost = Select(kSnapshot);
  workspace().Rollback();
  const auto after = Select(kSnapshot);
  workspace().Rollback();
  EXPECT_EQ(Rest(*outer), (Numbers{1, 2, 3, 4, 5}));
  EXPECT_EQ(Rest(*inner), (Numbers{1, 2, 3, 4}));
  EXPECT_EQ(Rest(*innermost), (Numbers{1, 2, 3}));
  EXPECT_EQ(Rest(*after), (Numbers{1, 2, 3, 4}));
}

TEST_F(PartlyRead, OnesOpenedBeforeATransactionDoNotSeeItsWrites) {
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  workspace().BeginTrans();
  database_->Execute("delete from Tanques where Numero = 2");
  database_->Execute("insert into Tanques values (6, 600)");
  snapshot->MoveNext();
  EXPECT_EQ(Number(*snapshot), 2);
  dynaset->MoveNext();
  EXPECT_EQ(ErrorOf([&] { Number(*dynaset); }), 3167);
  workspace().Rollback();
  dynaset->MoveFirst();
  EXPECT_EQ(Rest(*dynaset), (Numbers{1, 2, 3, 4, 5}));
  snapshot->MoveLast();
  EXPECT_EQ(Number(*snapshot), 5);
}

TEST_F(PartlyRead, ASecondFileOfTheWorkspaceHasTheSameTransactions) {
  const auto second = Create("segunda.mdb");
  AddTanks(*second);
  AddTank(*second, 1);
  AddTank(*second, 2);
  const auto rows = second->OpenRecordset("Tanques", kSnapshot);
  workspace().BeginTrans();
  second->Execute("delete from Tanques");
  workspace().CommitTrans();
  EXPECT_EQ(Rest(*rows), (Numbers{1, 2}));
}

// Definitions.

TEST_F(PartlyRead, AnOpenOneHindersNoDefinition) {
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  database_->Execute("alter table Tanques add column Nombre text(10)");
  database_->Execute("create index porLitros on Tanques (Litros)");
  dynaset->MoveNext();
  EXPECT_EQ(Litres(*dynaset), 200);
  EXPECT_EQ(Rest(*dynaset), (Numbers{2, 3, 4, 5}));
  database_->Execute("drop table Tanques");
  EXPECT_EQ(Rest(*snapshot), (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(PartlyRead, AnOpenOneHindersNoDefinitionObject) {
  const auto rows = Select(kSnapshot);
  database_->TableDefs().Item("Tanques")->SetName("Cubas");
  database_->CreateQueryDef("todas", "select * from Cubas");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 5);
  EXPECT_EQ(Rest(*database_->OpenRecordset("todas")), (Numbers{1, 2, 3, 4, 5}));
}

// Closing and dropping.

TEST_F(PartlyRead, EndsWithItsDatabase) {
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  const auto field = snapshot->Fields().Item(0);
  workspace().BeginTrans();
  const auto inside = Select(kSnapshot);
  database_->Close();
  for (dao::Recordset* const rows : {snapshot.get(), dynaset.get(), inside.get()}) {
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3420);
    EXPECT_EQ(ErrorOf([&] { rows->MoveLast(); }), 3420);
    EXPECT_EQ(ErrorOf([&] { (void)rows->AtEnd(); }), 3420);
  }
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
}

TEST_F(PartlyRead, AClosedDatabaseIsFreeForOthersWhoeverHoldsARecordset) {
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  database_->Close();
  others_->Close();
  EXPECT_NO_THROW(other_->DefaultWorkspace().OpenDatabase(Path(), true, false, ""));
}

TEST_F(PartlyRead, OutlivesItsEngineWithoutHarm) {
  auto snapshot = Select(kSnapshot);
  auto dynaset = Select();
  const auto field = dynaset->Fields().Item(0);
  database_.reset();
  engine_.reset();
  EXPECT_EQ(ErrorOf([&] { snapshot->MoveNext(); }), 3420);
  snapshot.reset();
  dynaset.reset();
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
}

TEST_F(PartlyRead, HoldsTheLogOnlyAsLongAsItIsOpenAndUnread) {
  EXPECT_FALSE(LogIsHeld());
  auto rows = Select(kSnapshot);
  EXPECT_TRUE(LogIsHeld());
  rows.reset();
  EXPECT_FALSE(LogIsHeld());

  rows = Select(kSnapshot);
  rows->Close();
  EXPECT_FALSE(LogIsHeld());

  rows = Select();
  while (!rows->AtEnd()) rows->MoveNext();
  EXPECT_FALSE(LogIsHeld());

  rows = Select(kSnapshot);
  database_->Execute("update Tanques set Litros = 0 where Numero = 9");
  EXPECT_FALSE(LogIsHeld());
}

TEST_F(PartlyRead, AnEmptyOneHoldsNothing) {
  const auto rows = Select(kSnapshot, "where Numero > 9");
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_FALSE(LogIsHeld());
}

TEST_F(PartlyRead, AFieldDoesNotHoldTheStatementOfADroppedOne) {
  auto rows = Select(kSnapshot);
  const auto field = rows->Fields().Item(0);
  rows.reset();
  EXPECT_FALSE(LogIsHeld());
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
}

TEST_F(PartlyRead, SeveralOfOneTextWalkIndependently) {
  for (const RecordsetType type : {kSnapshot, kDynaset}) {
    const auto a = Select(type, "where Numero > 1 order by Numero");
    auto b = Select(type, "where Numero > 2 order by Numero");
    auto c = Select(type, "where Numero > 3 order by Numero");
    a->MoveNext();
    b->MoveLast();
    c->MoveLast();
    EXPECT_EQ(Number(*a), 3);
    b->MovePrevious();
    EXPECT_EQ(Number(*b), 4);
    c.reset();
    EXPECT_EQ(Rest(*a), (Numbers{3, 4, 5}));
    b.reset();
    EXPECT_EQ(Rest(*Select(type, "where Numero > 4 order by Numero")), Numbers{5});
    a->MoveLast();
    EXPECT_EQ(Number(*a), 5);
  }
}

// Files of which no log tells what others do.

TEST_F(PartlyRead, AnExclusiveDatabaseIsReadTheSameWay) {
  database_->Close();
  others_->Close();
  database_ = workspace().OpenDatabase(Path(), true, false, "");
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  snapshot->MoveNext();
  database_->Execute("update Tanques set Litros = 7");
  EXPECT_EQ(Rest(*snapshot), (Numbers{2, 3, 4, 5}));
  dynaset->MoveLast();
  EXPECT_EQ(Litres(*dynaset), 7);
}

TEST_F(PartlyRead, AReadOnlyDatabaseFollowsOthersToo) {
  database_->Close();
  database_ = workspace().OpenDatabase(Path(), false, true, "");
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  others_->Execute("update Tanques set Litros = 7");
  others_->Execute("delete from Tanques where Numero = 4");
  dynaset->MoveNext();
  EXPECT_EQ(Litres(*dynaset), 7);
  EXPECT_EQ(CountRows(*database_), 4);
  EXPECT_EQ(Rest(*snapshot), (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(PartlyRead, WithoutALogNobodyIsKeptFromWriting) {
  database_->Close();
  others_->Close();
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(Path().c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "pragma journal_mode = delete", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
  database_ = Open();
  others_ = other_->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const auto snapshot = Select(kSnapshot);
  const auto dynaset = Select();
  others_->Execute("update Tanques set Litros = 7", dao::kFailOnError);
  dynaset->MoveNext();
  EXPECT_EQ(Litres(*dynaset), 7);
  EXPECT_EQ(Rest(*snapshot), (Numbers{1, 2, 3, 4, 5}));
}

}  // namespace
}  // namespace ambrelio::embedded
