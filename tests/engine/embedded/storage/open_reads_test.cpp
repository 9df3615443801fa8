// When those who read bit by bit are asked to read the rest, and how commits of others are noticed.
#include "ambrelio/engine/embedded/storage/open_reads.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/embedded/storage/log_state.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

// A statement in the middle of its rows.
class Reading : public OpenRead {
 public:
  explicit Reading(const Storage& storage) : statement_(storage.raw(), "select a from t") {
    statement_.Step();
  }
  void Settle() noexcept override {
    statement_.Reset();
    settled = true;
  }
  void Abandon() noexcept override {
    statement_ = StorageStatement(sqlite3_db_handle(statement_.raw()), "select 1");
    abandoned = true;
  }

  bool settled = false;
  bool abandoned = false;

 private:
  StorageStatement statement_;
};

class OpenReadsTest : public ::testing::Test {
 protected:
  OpenReadsTest() : storage_(Storage::Create(folder_.File("a.sqlite"))) {
    storage_->Run("create table t(a integer); insert into t values(1), (2)");
    others_ = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kShared);
  }

  std::shared_ptr<Reading> Read() {
    storage_->CatchUp();
    auto reading = std::make_shared<Reading>(*storage_);
    storage_->Register(reading);
    return reading;
  }
  void CommitByOthers() { others_->Run("insert into t values(3)"); }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_;
  std::unique_ptr<Storage> others_;
};

TEST_F(OpenReadsTest, AreSettledBeforeALevelBegins) {
  const auto reading = Read();
  storage_->Begin();
  EXPECT_TRUE(reading->settled);
  const auto inside = Read();
  storage_->Begin();
  EXPECT_TRUE(inside->settled);
}

TEST_F(OpenReadsTest, AreSettledBeforeALevelIsCommitted) {
  storage_->Begin();
  const auto reading = Read();
  EXPECT_FALSE(reading->settled);
  storage_->Commit();
  EXPECT_TRUE(reading->settled);
}

TEST_F(OpenReadsTest, AreSettledBeforeALevelIsRolledBack) {
  storage_->Begin();
  const auto reading = Read();
  storage_->Rollback();
  EXPECT_TRUE(reading->settled);
}

TEST_F(OpenReadsTest, AreSettledTogether) {
  const auto first = Read();
  const auto second = Read();
  storage_->SettleReads();
  EXPECT_TRUE(first->settled);
  EXPECT_TRUE(second->settled);
}

TEST_F(OpenReadsTest, AreSettledOnce) {
  const auto reading = Read();
  storage_->SettleReads();
  reading->settled = false;
  storage_->SettleReads();
  EXPECT_FALSE(reading->settled);
}

TEST_F(OpenReadsTest, AreNotKeptAlive) {
  std::weak_ptr<Reading> dropped;
  dropped = Read();
  EXPECT_TRUE(dropped.expired());
  storage_->SettleReads();
}

TEST_F(OpenReadsTest, GoOnAsLongAsNobodyCommits) {
  const auto reading = Read();
  storage_->CatchUp();
  const auto another = Read();
  storage_->CatchUp();
  EXPECT_FALSE(reading->settled);
  EXPECT_FALSE(another->settled);
}

TEST_F(OpenReadsTest, AreSettledToCatchUpWithACommitOfOthers) {
  const auto reading = Read();
  CommitByOthers();
  EXPECT_FALSE(reading->settled);
  storage_->CatchUp();
  EXPECT_TRUE(reading->settled);
}

TEST_F(OpenReadsTest, AreSettledWhenItIsAskedWhatOthersHaveChanged) {
  storage_->ChangedByOthers();
  const auto reading = Read();
  EXPECT_FALSE(storage_->ChangedByOthers());
  EXPECT_FALSE(reading->settled);
  CommitByOthers();
  EXPECT_TRUE(storage_->ChangedByOthers());
  EXPECT_TRUE(reading->settled);
}

TEST_F(OpenReadsTest, AreMeasuredByTheirOwnMomentNotAnOlderOne) {
  CommitByOthers();
  const auto reading = Read();
  storage_->CatchUp();
  EXPECT_FALSE(reading->settled);
}

TEST_F(OpenReadsTest, GoOnInATransactionWhichSeesOneMoment) {
  storage_->Begin();
  const auto reading = Read();
  storage_->Run("insert into t values(9)");
  storage_->CatchUp();
  EXPECT_FALSE(reading->settled);
}

TEST_F(OpenReadsTest, AreNotHeldOnAFileWithoutALog) {
  others_.reset();
  storage_->Run("pragma journal_mode = delete");
  storage_ = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kShared);
  EXPECT_TRUE(Read()->settled);
}

TEST_F(OpenReadsTest, GoOnInAnExclusiveFileWhateverIsAsked) {
  others_.reset();
  storage_.reset();
  storage_ = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kExclusive);
  const auto reading = Read();
  storage_->CatchUp();
  storage_->ChangedByOthers();
  EXPECT_FALSE(reading->settled);
}

TEST_F(OpenReadsTest, AreAbandonedWithTheStorage) {
  const auto reading = Read();
  storage_.reset();
  EXPECT_TRUE(reading->abandoned);
  EXPECT_FALSE(reading->settled);
}

TEST_F(OpenReadsTest, TheStateOfTheLogChangesWithEachCommit) {
  const auto before = LogWatch(storage_->raw()).Read();
  ASSERT_TRUE(before);
  EXPECT_EQ(LogWatch(storage_->raw()).Read(), before);
  EXPECT_EQ(LogWatch(others_->raw()).Read(), before);
  CommitByOthers();
  const auto after = LogWatch(storage_->raw()).Read();
  EXPECT_NE(after, before);
  others_->Begin();
  others_->Run("insert into t values(4)");
  EXPECT_EQ(LogWatch(storage_->raw()).Read(), after);
  others_->Rollback();
  EXPECT_EQ(LogWatch(storage_->raw()).Read(), after);
}

TEST_F(OpenReadsTest, TheStateOfTheLogIsSeenWhileAnOlderOneIsRead) {
  const auto reading = Read();
  const auto before = LogWatch(storage_->raw()).Read();
  CommitByOthers();
  EXPECT_NE(LogWatch(storage_->raw()).Read(), before);
}

TEST_F(OpenReadsTest, ADatabaseInMemoryHasNoLog) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
  EXPECT_FALSE(LogWatch(db).Read());
  sqlite3_close(db);
}

}  // namespace
}  // namespace ambrelio::embedded
