#include "ambrelio/dao/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "ambrelio/engine/engine.h"
#include "ambrelio/value/automation_error.h"
#include "support/temp_folder.h"

namespace ambrelio::dao {
namespace {

using ::testing::ElementsAre;

class TraceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    database->Execute("create table Tanks (Code long, Name text(20))");
    database->Execute("insert into Tanks values (1, 'one')");
    database->Execute("insert into Tanks values (2, 'two')");
    entries.clear();
  }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const TraceEntry& entry : entries) texts.push_back(entry.sql);
    return texts;
  }

  test::TempFolder folder;
  std::vector<TraceEntry> entries;
  std::shared_ptr<DBEngine> engine =
      Traced(engine::Create(), [this](const TraceEntry& entry) { entries.push_back(entry); });
  Workspace& workspace = engine->DefaultWorkspace();
  std::shared_ptr<Database> database = workspace.CreateDatabase(folder.File("t.sqlite"), ";pwd=");
};

TEST_F(TraceTest, GivesTheExactTextAndTheRowsWritten) {
  database->Execute("update  Tanks set Name='x' where Code>0 ");
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].sql, "update  Tanks set Name='x' where Code>0 ");
  EXPECT_EQ(entries[0].affected, 2);
  EXPECT_FALSE(entries[0].rows.has_value());
  EXPECT_EQ(entries[0].error, 0);
}

TEST_F(TraceTest, CountsTheRowsThatBecameCurrent) {
  auto rows = database->OpenRecordset("select Code from Tanks order by Code");
  while (!rows->AtEnd()) rows->MoveNext();
  rows->Close();
  auto none = database->OpenRecordset("select Code from Tanks where Code>5");
  none.reset();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].rows, 2);
  EXPECT_EQ(entries[1].rows, 0);
}

TEST_F(TraceTest, KeepsTheOrderOfSendingWhileARecordsetIsOpen) {
  auto rows = database->OpenRecordset("select Code from Tanks order by Code");
  database->Execute("delete from Tanks where Code=1");
  EXPECT_TRUE(entries.empty());
  rows.reset();
  EXPECT_THAT(Texts(), ElementsAre("select Code from Tanks order by Code",
                                   "delete from Tanks where Code=1"));
}

TEST_F(TraceTest, TellsTheTransactionLevelOfEachStatement) {
  database->Execute("delete from Tanks where Code=1");
  workspace.BeginTrans();
  database->Execute("delete from Tanks where Code=2");
  workspace.BeginTrans();
  database->Execute("delete from Tanks where Code=3");
  workspace.CommitTrans();
  workspace.Rollback();
  database->Execute("delete from Tanks where Code=4");
  std::vector<int> levels;
  for (const TraceEntry& entry : entries) levels.push_back(entry.level);
  EXPECT_THAT(levels, ElementsAre(0, 1, 2, 0));
}

TEST_F(TraceTest, TellsTheErrorThatEndedAStatement) {
  EXPECT_THROW(database->Execute("delete from Nowhere"), AutomationError);
  EXPECT_THROW(database->OpenRecordset("select * from Nowhere"), AutomationError);
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].error, 3078);
  EXPECT_EQ(entries[1].error, 3078);
}

TEST_F(TraceTest, StartsAtLevelZeroAfterTheDatabaseWasClosedInsideATransaction) {
  workspace.BeginTrans();
  database->Close();
  database = workspace.OpenDatabase(folder.File("t.sqlite"), false, false, ";pwd=");
  database->Execute("delete from Tanks");
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].level, 0);
}

TEST(TraceLine, IsOneLineOfJson) {
  TraceEntry entry;
  entry.sql = "select 'a\"b\\c\n' from T";
  entry.rows = 3;
  entry.microseconds = 17;
  entry.level = 1;
  EXPECT_EQ(TraceLine(entry),
            R"({"sql":"select 'a\"b\\c\u000a' from T","rows":3,"us":17,"level":1})");
}

TEST(TraceLine, NamesTheErrorOnlyWhenThereIsOne) {
  TraceEntry entry;
  entry.sql = "delete from T";
  entry.error = 3078;
  EXPECT_EQ(TraceLine(entry), R"({"sql":"delete from T","us":0,"level":0,"error":3078})");
}

}  // namespace
}  // namespace ambrelio::dao
