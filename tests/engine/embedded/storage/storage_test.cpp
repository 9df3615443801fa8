#include "ambrelio/engine/embedded/storage/storage.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;

class StorageTest : public ::testing::Test {
 protected:
  StorageTest() : storage_(Storage::Create(folder_.File("a.sqlite"))) {
    storage_->Run("create table t(a integer unique, b text)");
  }

  std::unique_ptr<Storage> OpenAnother(Storage::Access access = Storage::Access::kShared) {
    return Storage::Open(folder_.File("a.sqlite"), access);
  }
  static int64_t Count(const Storage& storage) {
    StorageStatement count(storage.raw(), "select count(*) from t");
    count.Step();
    return count.Integer(0);
  }
  int64_t Count() const { return Count(*storage_); }
  void Insert(int a) { storage_->Run("insert into t(a) values(" + std::to_string(a) + ")"); }

  // Makes the next page that the file would grow by one too many, as on a full disk.
  void FillTheDisk() {
    StorageStatement pages(storage_->raw(), "pragma page_count");
    pages.Step();
    storage_->Run("pragma max_page_count = " + std::to_string(pages.Integer(0)));
  }
  void InsertMuch() { storage_->Run("insert into t(b) values(zeroblob(1000000))"); }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_;
};

TEST_F(StorageTest, BindsEachTypeInItsStoredForm) {
  const auto stored = [&](const Variant& value) {
    StorageStatement statement(storage_->raw(), "select typeof(?1) || ' ' || ?1");
    statement.Bind(1, value);
    statement.Step();
    return std::string(statement.Text(0));
  };
  EXPECT_EQ(stored(true), "integer -1");
  EXPECT_EQ(stored(false), "integer 0");
  EXPECT_EQ(stored(uint8_t{200}), "integer 200");
  EXPECT_EQ(stored(int16_t{-3}), "integer -3");
  EXPECT_EQ(stored(int32_t{70000}), "integer 70000");
  EXPECT_EQ(stored(1.5F), "real 1.5");
  EXPECT_EQ(stored(2.25), "real 2.25");
  EXPECT_EQ(stored(Currency{12345}), "real 1.2345");
  EXPECT_EQ(stored(OleDate::FromDays(2.5)), "real 2.5");
  EXPECT_EQ(stored("olivo"), "text olivo");
}

TEST_F(StorageTest, BindsEmptyAndNullAsNull) {
  StorageStatement statement(storage_->raw(), "select ?, ?");
  statement.Bind(1, Variant());
  statement.Bind(2, Variant::Null());
  ASSERT_TRUE(statement.Step());
  EXPECT_TRUE(statement.IsNull(0));
  EXPECT_TRUE(statement.IsNull(1));
}

TEST_F(StorageTest, RefusesToBindAnArray) {
  StorageStatement statement(storage_->raw(), "select ?");
  EXPECT_EQ(ErrorOf([&] { statement.Bind(1, Variant(Variant::Array())); }), 13);
}

TEST_F(StorageTest, KeepsZeroBytesInText) {
  StorageStatement statement(storage_->raw(), "select ?");
  statement.Bind(1, Variant(std::string("a\0b", 3)));
  statement.Step();
  EXPECT_EQ(statement.Text(0), std::string_view("a\0b", 3));
}

TEST_F(StorageTest, KeepsBindingsOnReset) {
  StorageStatement statement(storage_->raw(), "select ?");
  statement.Bind(1, int64_t{7});
  EXPECT_TRUE(statement.Step());
  EXPECT_FALSE(statement.Step());
  statement.Reset();
  statement.Step();
  EXPECT_EQ(statement.Integer(0), 7);
}

TEST_F(StorageTest, BindsAllThatThereIsAParameterFor) {
  StorageStatement statement(storage_->raw(), "select ?1 || ?2");
  const auto bound = [&](const std::vector<Variant>& values) {
    statement.BindAll(values);
    statement.Step();
    std::string text(statement.Text(0));
    statement.Reset();
    return text;
  };
  EXPECT_EQ(bound({int32_t{1}, "a", "too much"}), "1a");
  EXPECT_EQ(bound({int32_t{1}, "b"}), "1b");
  EXPECT_EQ(bound({int32_t{2}, "b"}), "2b");
  EXPECT_EQ(bound({1.5}), "1.5b");
}

TEST_F(StorageTest, PreparesAStatementAnewForOtherValuesAlone) {
  storage_->Run("create table p(x); create index i on p(x) where x > 3");
  StorageStatement statement(storage_->raw(), "select x from p where x > ?1");
  const auto prepared_anew = [&](int32_t value) {
    statement.BindAll({value});
    statement.Step();
    statement.Reset();
    return sqlite3_stmt_status(statement.raw(), SQLITE_STMTSTATUS_REPREPARE, 1);
  };
  prepared_anew(3);
  EXPECT_EQ(prepared_anew(3), 0);
  EXPECT_EQ(prepared_anew(4), 1);
}

TEST_F(StorageTest, StaysUsableWhenAStatementIsMoved) {
  StorageStatement first(storage_->raw(), "select 1");
  StorageStatement second(std::move(first));
  StorageStatement third(storage_->raw(), "select 3");
  third = std::move(second);
  ASSERT_TRUE(third.Step());
  EXPECT_EQ(third.Integer(0), 1);
}

TEST_F(StorageTest, QuotesNamesAndTexts) {
  EXPECT_EQ(QuoteName("a\"b"), "\"a\"\"b\"");
  EXPECT_EQ(QuoteText("d'oliva"), "'d''oliva'");
}

TEST_F(StorageTest, TakesNoUnknownNameForAText) {
  EXPECT_EQ(ErrorOf([&] { storage_->Run("insert into t(b) values(\"olivo\")"); }), 3000);
}

TEST_F(StorageTest, CommitsIntoTheOuterLevel) {
  storage_->Begin();
  Insert(1);
  storage_->Begin();
  Insert(2);
  storage_->Commit();
  EXPECT_EQ(storage_->level(), 1);
  EXPECT_EQ(Count(*OpenAnother()), 0);
  storage_->Commit();
  EXPECT_EQ(storage_->level(), 0);
  EXPECT_EQ(Count(*OpenAnother()), 2);
}

TEST_F(StorageTest, RollsBackTheInnermostLevelAlone) {
  storage_->Begin();
  Insert(1);
  storage_->Begin();
  Insert(2);
  storage_->Rollback();
  storage_->Commit();
  EXPECT_EQ(Count(), 1);
}

TEST_F(StorageTest, UndoesACommittedLevelWithTheOuterOne) {
  storage_->Begin();
  storage_->Begin();
  Insert(1);
  storage_->Commit();
  storage_->Rollback();
  EXPECT_EQ(Count(), 0);
}

TEST_F(StorageTest, RefusesToEndALevelThatIsNotOpen) {
  EXPECT_EQ(ErrorOf([&] { storage_->Commit(); }), 3034);
  EXPECT_EQ(ErrorOf([&] { storage_->Rollback(); }), 3034);
}

TEST_F(StorageTest, CountsItsRollbacks) {
  const int64_t before = storage_->rollbacks();
  storage_->Begin();
  storage_->Begin();
  Insert(1);
  storage_->Rollback();
  const int64_t inner = storage_->rollbacks();
  EXPECT_NE(inner, before);
  storage_->RollbackAll();
  EXPECT_NE(storage_->rollbacks(), inner);
}

TEST_F(StorageTest, GivesTheNumbersOfBrokenRules) {
  storage_->Run(
      "create table rules(k integer not null, r text constraint \"required:r\" check(r is not "
      "null),"
      " z text constraint \"zero length:z\" check(length(z) > 0))");
  Insert(1);
  EXPECT_EQ(ErrorOf([&] { Insert(1); }), 3022);
  EXPECT_EQ(ErrorOf([&] { storage_->Run("insert into rules values(null, 'r', 'z')"); }), 3058);
  EXPECT_EQ(ErrorOf([&] { storage_->Run("insert into rules values(1, null, 'z')"); }), 3314);
  EXPECT_EQ(ErrorOf([&] { storage_->Run("insert into rules values(1, 'r', '')"); }), 3315);
}

TEST_F(StorageTest, NamesTheFieldOfABrokenRule) {
  storage_->Run("create table r(n text constraint \"required:Nombre\" check(n is not null))");
  try {
    storage_->Run("insert into r values(null)");
    FAIL();
  } catch (const AutomationError& error) {
    EXPECT_NE(error.description().find("'Nombre'"), std::string::npos) << error.description();
  }
}

TEST_F(StorageTest, SkipsRowsThatBreakRulesWhenTold) {
  storage_->Run("create table r(n text constraint \"required:n\" check(n is not null))");
  storage_->Run("insert or ignore into r values(null), ('a'), (null)");
  EXPECT_EQ(storage_->Changes(), 1);
}

TEST_F(StorageTest, LetsErrorsOfFunctionsThroughAsTheyWere) {
  StorageStatement statement(storage_->raw(), "select jet_cint(?)");
  statement.Bind(1, int64_t{40000});
  EXPECT_EQ(ErrorOf([&] { statement.Step(); }), 6);
}

TEST_F(StorageTest, NoticesWhatOthersCommit) {
  const auto other = OpenAnother();
  storage_->ChangedByOthers();
  EXPECT_FALSE(storage_->ChangedByOthers());
  Insert(1);
  EXPECT_FALSE(storage_->ChangedByOthers());
  other->Run("insert into t(a) values(2)");
  EXPECT_TRUE(storage_->ChangedByOthers());
  EXPECT_FALSE(storage_->ChangedByOthers());
}

TEST_F(StorageTest, NoticesWhatOthersCommitWhileItReads) {
  Insert(1);
  const auto other = OpenAnother();
  storage_->ChangedByOthers();
  StorageStatement reading(storage_->raw(), "select a from t");
  storage_->CatchUp();
  ASSERT_TRUE(reading.Step());
  other->Run("insert into t(a) values(2)");
  EXPECT_FALSE(storage_->IsAsLookedAt());
  reading.Reset();
  EXPECT_TRUE(storage_->ChangedByOthers());
  EXPECT_TRUE(storage_->IsAsLookedAt());
}

TEST_F(StorageTest, NoticesAfterATransactionWhatOthersCommittedBeforeIt) {
  const auto other = OpenAnother();
  storage_->ChangedByOthers();
  other->Run("insert into t(a) values(2)");
  storage_->Begin();
  EXPECT_TRUE(storage_->ChangedByOthers());
  EXPECT_FALSE(storage_->ChangedByOthers());
  Insert(1);
  storage_->Commit();
  EXPECT_FALSE(storage_->ChangedByOthers());
  other->Run("insert into t(a) values(3)");
  EXPECT_TRUE(storage_->ChangedByOthers());
}

TEST_F(StorageTest, NoticesBehindAReadOnlyTransactionWhatOthersCommittedInIt) {
  Insert(1);
  const auto reader = OpenAnother(Storage::Access::kReadOnly);
  reader->ChangedByOthers();
  reader->Begin();
  reader->ChangedByOthers();
  Insert(2);
  EXPECT_FALSE(reader->ChangedByOthers());
  reader->Commit();
  EXPECT_TRUE(reader->ChangedByOthers());
}

TEST_F(StorageTest, NoticesNothingThatOthersHaveNotCommitted) {
  const auto other = OpenAnother();
  storage_->ChangedByOthers();
  other->Begin();
  other->Run("insert into t(a) values(2)");
  EXPECT_FALSE(storage_->ChangedByOthers());
}

TEST_F(StorageTest, ReadsThroughWhileAnotherWrites) {
  const auto other = OpenAnother();
  Insert(1);
  other->Begin();
  other->Run("insert into t(a) values(2)");
  EXPECT_EQ(Count(), 1);
}

TEST_F(StorageTest, WaitsForALockThatIsSoonGone) {
  const auto other = OpenAnother();
  other->Begin();
  auto releasing = std::async(std::launch::async, [&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    other->Commit();
  });
  EXPECT_EQ(ErrorOf([&] { storage_->Begin(); }), 0);
  releasing.get();
}

TEST_F(StorageTest, GivesUpOnALockThatIsKept) {
  const auto other = OpenAnother();
  other->Begin();
  sqlite3_busy_timeout(storage_->raw(), 10);
  EXPECT_EQ(ErrorOf([&] { storage_->Begin(); }), 3218);
  EXPECT_EQ(storage_->level(), 0);
}

TEST_F(StorageTest, ReadsButDoesNotWriteWhenReadOnly) {
  Insert(1);
  for (const auto access : {Storage::Access::kReadOnly, Storage::Access::kExclusiveReadOnly}) {
    if (access == Storage::Access::kExclusiveReadOnly) storage_.reset();
    const auto reader = OpenAnother(access);
    EXPECT_TRUE(reader->read_only());
    EXPECT_EQ(Count(*reader), 1);
    EXPECT_EQ(ErrorOf([&] { reader->Run("insert into t(a) values(2)"); }), 3027);
  }
}

TEST_F(StorageTest, TakesNoLockForATransactionThatOnlyReads) {
  const auto reader = OpenAnother(Storage::Access::kReadOnly);
  reader->Begin();
  EXPECT_EQ(Count(*reader), 0);
  Insert(1);
  EXPECT_EQ(Count(*reader), 0);
  reader->Commit();
  EXPECT_EQ(Count(*reader), 1);
}

TEST_F(StorageTest, RollsBackWhenItIsClosed) {
  storage_->Begin();
  storage_->Begin();
  Insert(1);
  storage_.reset();
  EXPECT_EQ(Count(*OpenAnother()), 0);
}

TEST_F(StorageTest, LetsGoOfItsLocksThoughAStatementIsStillHeld) {
  Insert(1);
  storage_->Begin();
  StorageStatement held(storage_->raw(), "select a from t");
  ASSERT_TRUE(held.Step());
  storage_.reset();
  const auto other = OpenAnother();
  EXPECT_EQ(ErrorOf([&] { other->Begin(); }), 0);
}

TEST_F(StorageTest, LosesNothingCommittedOnAFullDisk) {
  Insert(1);
  FillTheDisk();
  EXPECT_EQ(ErrorOf([&] { InsertMuch(); }), 3026);
  EXPECT_EQ(Count(*OpenAnother()), 1);
}

TEST_F(StorageTest, StoresNothingOfATransactionThatAFullDiskEnded) {
  storage_->Begin();
  storage_->Begin();
  Insert(1);
  FillTheDisk();
  EXPECT_EQ(ErrorOf([&] { InsertMuch(); }), 3026);
  ASSERT_TRUE(storage_->transaction_lost());
  EXPECT_EQ(storage_->level(), 2);
  EXPECT_EQ(ErrorOf([&] { Insert(2); }), 3034);
  EXPECT_EQ(ErrorOf([&] { storage_->Commit(); }), 3034);
  storage_->Begin();
  EXPECT_EQ(ErrorOf([&] { Insert(3); }), 3034);
  storage_->Rollback();
  storage_->Rollback();
  EXPECT_EQ(ErrorOf([&] { storage_->Commit(); }), 3034);
  storage_->Rollback();
  EXPECT_EQ(storage_->level(), 0);
  EXPECT_EQ(Count(), 0);
  Insert(4);
  EXPECT_EQ(Count(*OpenAnother()), 1);
}

TEST_F(StorageTest, ReadsOnAfterALostTransaction) {
  Insert(1);
  storage_->Begin();
  FillTheDisk();
  EXPECT_EQ(ErrorOf([&] { InsertMuch(); }), 3026);
  EXPECT_EQ(Count(), 1);
}

TEST_F(StorageTest, WaitsForTheDiskAtEachCommit) {
  StorageStatement mode(storage_->raw(),
                        "select j.journal_mode || s.synchronous from pragma_journal_mode j,"
                        " pragma_synchronous s");
  ASSERT_TRUE(mode.Step());
  EXPECT_EQ(mode.Text(0), "wal2");  // 2 is full
}

}  // namespace
}  // namespace ambrelio::embedded
