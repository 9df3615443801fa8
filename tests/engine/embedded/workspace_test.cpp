// The transactions of a workspace over the databases open in it.
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;

class WorkspaceTest : public test::EngineTest {
 protected:
  WorkspaceTest() : database_(Create()) { AddTanks(*database_); }

  // What another process sees.
  int32_t CountSeenByOthers(const std::string& name = "oliva.mdb") const {
    const auto other = OtherEngine();
    return CountRows(*other->DefaultWorkspace().OpenDatabase(Path(name), false, true, ""));
  }
  int CommitError() {
    return ErrorOf([&] { workspace().CommitTrans(); });
  }

  DatabasePtr database_;
};

TEST_F(WorkspaceTest, HasTheVersionOfItsInterface) { EXPECT_EQ(engine_->Version(), "3.6"); }

TEST_F(WorkspaceTest, StoresAtOnceWithoutATransaction) {
  AddTank(*database_, 1);
  EXPECT_EQ(CountSeenByOthers(), 1);
}

TEST_F(WorkspaceTest, ShowsOthersNothingBeforeTheOutermostCommit) {
  workspace().BeginTrans();
  workspace().BeginTrans();
  AddTank(*database_, 1);
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers(), 0);
  EXPECT_EQ(CountRows(*database_), 1);
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers(), 1);
}

TEST_F(WorkspaceTest, UndoesACommittedLevelWithTheOuterOne) {
  workspace().BeginTrans();
  workspace().BeginTrans();
  AddTank(*database_, 1);
  workspace().CommitTrans();
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database_), 0);
}

TEST_F(WorkspaceTest, NestsFiveLevelsAndNoMore) {
  for (int level = 0; level < 5; ++level) workspace().BeginTrans();
  EXPECT_EQ(ErrorOf([&] { workspace().BeginTrans(); }), 3003);
  AddTank(*database_, 1);
  for (int level = 0; level < 5; ++level) workspace().CommitTrans();
  EXPECT_EQ(CommitError(), 3034);
  EXPECT_EQ(CountSeenByOthers(), 1);
}

TEST_F(WorkspaceTest, ChangesDefinitionsOnTheFifthLevelToo) {
  for (int level = 0; level < 5; ++level) workspace().BeginTrans();
  AddTanks(*database_, "Otra");
  EXPECT_EQ(database_->TableDefs().Count(), 2);
}

TEST_F(WorkspaceTest, RefusesToEndALevelThatIsNotOpen) {
  EXPECT_EQ(CommitError(), 3034);
  EXPECT_EQ(ErrorOf([&] { workspace().Rollback(); }), 3034);
}

TEST_F(WorkspaceTest, KeepsTheTransactionAfterAFailedStatement) {
  workspace().BeginTrans();
  AddTank(*database_, 1);
  EXPECT_NE(ErrorOf([&] { AddTank(*database_, 1); }), 0);
  AddTank(*database_, 2);
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers(), 2);
}

TEST_F(WorkspaceTest, CoversAllDatabasesThatAreOpen) {
  const auto second = Create("second.mdb");
  AddTanks(*second);
  workspace().BeginTrans();
  AddTank(*database_, 1);
  AddTank(*second, 1);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database_), 0);
  EXPECT_EQ(CountRows(*second), 0);
  workspace().BeginTrans();
  AddTank(*database_, 1);
  AddTank(*second, 1);
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers(), 1);
  EXPECT_EQ(CountSeenByOthers("second.mdb"), 1);
}

TEST_F(WorkspaceTest, CoversADatabaseOpenedLater) {
  AddTanks(*Create("second.mdb"));
  workspace().BeginTrans();
  workspace().BeginTrans();
  const auto second = Open("second.mdb");
  AddTank(*second, 1);
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers("second.mdb"), 0);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*second), 0);
}

TEST_F(WorkspaceTest, BeginsBeforeAnyDatabaseIsOpen) {
  database_->Close();
  workspace().BeginTrans();
  const auto database = Open();
  AddTank(*database, 1);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database), 0);
}

TEST_F(WorkspaceTest, RollsBackOnlyTheDatabaseThatIsClosed) {
  const auto second = Create("second.mdb");
  AddTanks(*second);
  workspace().BeginTrans();
  AddTank(*database_, 1);
  AddTank(*second, 1);
  second->Close();
  workspace().CommitTrans();
  EXPECT_EQ(CountSeenByOthers(), 1);
  EXPECT_EQ(CountSeenByOthers("second.mdb"), 0);
}

TEST_F(WorkspaceTest, HasNoLevelOpenOnceTheLastDatabaseIsClosed) {
  workspace().BeginTrans();
  workspace().BeginTrans();
  AddTank(*database_, 1);
  workspace().CommitTrans();
  database_->Close();
  EXPECT_EQ(CommitError(), 3034);
  EXPECT_EQ(CountRows(*Open()), 0);
}

TEST_F(WorkspaceTest, HasNoLevelOpenOnceTheLastReferenceIsGone) {
  workspace().BeginTrans();
  AddTank(*database_, 1);
  database_.reset();
  EXPECT_EQ(CommitError(), 3034);
  EXPECT_EQ(CountRows(*Open()), 0);
}

TEST_F(WorkspaceTest, LeavesTheLevelsAsTheyWereWhenALockIsKept) {
  const auto other = OtherEngine();
  const auto theirs = other->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const auto second = Create("second.mdb");
  AddTanks(*second);
  other->DefaultWorkspace().BeginTrans();
  EXPECT_EQ(ErrorOf([&] { workspace().BeginTrans(); }), 3218);
  EXPECT_EQ(CommitError(), 3034);
  AddTank(*second, 1);
  EXPECT_EQ(CountSeenByOthers("second.mdb"), 1);
}

TEST_F(WorkspaceTest, UndoesANewTable) {
  workspace().BeginTrans();
  AddTanks(*database_, "Otra");
  const auto table = database_->TableDefs().Item("Otra");
  workspace().Rollback();
  EXPECT_EQ(database_->TableDefs().Count(), 1);
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
  AddTanks(*database_, "Otra");
  EXPECT_EQ(database_->TableDefs().Count(), 2);
}

TEST_F(WorkspaceTest, UndoesTheDeletionOfATable) {
  AddTank(*database_, 1);
  const auto table = database_->TableDefs().Item("Tanques");
  workspace().BeginTrans();
  database_->TableDefs().Delete("Tanques");
  EXPECT_EQ(database_->TableDefs().Count(), 0);
  workspace().Rollback();
  EXPECT_EQ(table->Name(), "Tanques");
  EXPECT_EQ(CountRows(*database_), 1);
}

TEST_F(WorkspaceTest, UndoesANewFieldOfTheInnerLevel) {
  const auto table = database_->TableDefs().Item("Tanques");
  workspace().BeginTrans();
  table->Fields().Append(table->CreateField("A", dao::FieldType::kLong));
  workspace().BeginTrans();
  table->Fields().Append(table->CreateField("B", dao::FieldType::kLong));
  workspace().Rollback();
  EXPECT_EQ(table->Fields().Count(), 3);
  workspace().CommitTrans();
  EXPECT_EQ(table->Fields().Item(2)->Name(), "A");
}

TEST_F(WorkspaceTest, KeepsTwoEnginesApart) {
  const auto other = OtherEngine();
  workspace().BeginTrans();
  EXPECT_EQ(ErrorOf([&] { other->DefaultWorkspace().CommitTrans(); }), 3034);
}

}  // namespace
}  // namespace ambrelio::embedded
