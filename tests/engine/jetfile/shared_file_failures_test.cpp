// Disks that fail or are full at any point of a commit or of a recovery.
#include <functional>

#include "engine/jetfile/errors.h"
#include "engine/jetfile/shared_file_fixture.h"
#include "support/error_of.h"
#include "support/watched_files.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using test::FileRequest;

constexpr uint32_t kGrowingCommit = 4;  // one that overwrites pages and makes the file longer

enum class Length : uint8_t { kOnce, kForEver };

struct Failure {
  const char* name;
  int code;   // SQLite's
  int error;  // DAO's
  Length length;
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

class SharedFileFailures : public SharedFileTest, public testing::WithParamInterface<Failure> {
 protected:
  SharedFileFailures() : files_([this](const FileRequest& request) { return Take(request); }) {
    PutFile(Path(), SampleBytes("adox_jet4"));
    states_ = StatesOf(FileBytes(Path()), kGrowingCommit);
  }

  const Bytes& before() const { return states_[kGrowingCommit - 1]; }
  const Bytes& after() const { return states_[kGrowingCommit]; }

  // The `change`th change from now on fails, 1 being the next.
  void FailAt(int change) { countdown_ = change; }
  // Ends the failing; whether anything has failed.
  bool Mend() { return std::exchange(countdown_, kNever) <= 0; }

  // Begins the commit that the tests are about; the error it ends with, or 0.
  int TryCommit(SharedFile& shared) {
    shared.Lock();
    MakeChanges(shared.file(), kGrowingCommit);
    return ErrorOf([&] { shared.Commit(); });
  }

  std::function<void()> watch_;  // called before each change

 private:
  static constexpr int kNever = 1 << 30;

  int Take(const FileRequest& request) {
    if (request.kind == FileRequest::kOpen) return SQLITE_OK;
    if (watch_) watch_();
    const bool grows = request.kind == FileRequest::kWrite;
    if (GetParam().code == SQLITE_FULL && !grows) return SQLITE_OK;
    --countdown_;
    const bool fails = GetParam().length == Length::kOnce ? countdown_ == 0 : countdown_ <= 0;
    return fails ? GetParam().code : SQLITE_OK;
  }

  int countdown_ = kNever;
  std::vector<Bytes> states_;
  test::WatchedFiles files_;
};

// How a test goes through all changes: `step` gives whether anything failed.
template <class Step>
int ForEachChange(Step step) {
  int change = 1;
  while (step(change)) ++change;
  return change;
}

TEST_P(SharedFileFailures, OfACommitLeaveTheFileAsItWas) {
  const int changes = ForEachChange([&](int change) {
    SCOPED_TRACE(change);
    PutFile(Path(), before());
    const auto shared = Open();
    const auto other = Open();
    FailAt(change);
    const int error = TryCommit(*shared);
    const bool failed = Mend();
    if (error == 0) {
      EXPECT_EQ(FileBytes(Path()), after());
      return failed;
    }
    EXPECT_EQ(error, GetParam().error);
    // The changes are kept for another attempt.
    if (GetParam().length == Length::kOnce) {
      EXPECT_EQ(FileBytes(Path()), before());
      EXPECT_EQ(ErrorOf([&] { other->Read(); }), 0);
    }
    EXPECT_EQ(ErrorOf([&] { shared->Commit(); }), 0);
    EXPECT_EQ(FileBytes(Path()), after());
    return !HasFailure();
  });
  EXPECT_GT(changes, 10);
}

TEST_P(SharedFileFailures, AreTakenBackAtTheEndOfTheTurn) {
  ForEachChange([&](int change) {
    SCOPED_TRACE(change);
    PutFile(Path(), before());
    const auto shared = Open();
    const auto other = Open();
    FailAt(change);
    const int error = TryCommit(*shared);
    const bool failed = Mend();
    shared->Unlock();
    other->ChangedByOthers();
    EXPECT_EQ(FileBytes(Path()), error == 0 ? after() : before());
    EXPECT_EQ(*other->file().Read(0), *shared->file().Read(0));
    EXPECT_EQ(other->file().page_count(), shared->file().page_count());
    return failed && !HasFailure();
  });
}

TEST_P(SharedFileFailures, ThatLastAreTakenBackByTheNext) {
  ForEachChange([&](int change) {
    SCOPED_TRACE(change);
    PutFile(Path(), before());
    auto shared = Open();
    const auto other = Open();
    FailAt(change);
    const int error = TryCommit(*shared);
    shared.reset();
    const bool failed = Mend();
    {
      const SharedFile::Moment moment = other->Read();
      const Bytes bytes = FileBytes(Path());
      // When the last synchronisation fails, and whatever follows, all pages are there.
      EXPECT_TRUE(bytes == (error == 0 ? after() : before()) || bytes == after());
    }
    EXPECT_EQ(TryCommit(*other), 0);
    return failed && !HasFailure();
  });
}

TEST_P(SharedFileFailures, OfARecoveryLeaveItToTheNext) {
  // What is there in the middle of a commit, as if the process ended then.
  PutFile(Path(), before());
  Bytes data = before();
  Bytes record;
  watch_ = [&] {
    if (data != before()) return;
    data = FileBytes(Path());
    record = FileBytes(FileLocks::RollbackPath(Path()));
  };
  EXPECT_EQ(TryCommit(*Open()), 0);
  watch_ = nullptr;
  ASSERT_NE(data, before());

  const int changes = ForEachChange([&](int change) {
    SCOPED_TRACE(change);
    PutFile(Path(), data);
    PutFile(FileLocks::RollbackPath(Path()), record);
    FailAt(change);
    const int error = ErrorOf([&] { Open(); });
    const bool failed = Mend();
    EXPECT_TRUE(error == 0 || error == GetParam().error);
    Open();
    EXPECT_EQ(FileBytes(Path()), before());
    return failed && !HasFailure();
  });
  EXPECT_GT(changes, 3);
}

// A record that is found beside a database is of no use when the database is another one by now,
// wherever the commit has stopped.
TEST_P(SharedFileFailures, DoNotTakeBackWhatIsNotTheirs) {
  Bytes written = before();  // by another program
  Put(written, kJet4.commit_table_at + 2 * 7, 0x0234, 2);
  Bytes made_anew = before();
  ++made_anew[kJet4.created_at];
  for (const Bytes& others : {written, made_anew}) {
    ForEachChange([&](int change) {
      PutFile(Path(), before());
      Bytes record;
      {
        const auto shared = Open();
        FailAt(change);
        TryCommit(*shared);
        record = FileBytes(FileLocks::RollbackPath(Path()));
      }
      const bool failed = Mend();
      PutFile(Path(), others);
      PutFile(FileLocks::RollbackPath(Path()), record);
      Open();
      EXPECT_EQ(FileBytes(Path()), others);
      return failed && !HasFailure();
    });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Disks, SharedFileFailures,
    testing::Values(Failure{"FullOnce", SQLITE_FULL, kDiskFull, Length::kOnce},
                    Failure{"FullForEver", SQLITE_FULL, kDiskFull, Length::kForEver},
                    Failure{"FailsOnce", SQLITE_IOERR_WRITE, kDiskError, Length::kOnce},
                    Failure{"FailsForEver", SQLITE_IOERR_WRITE, kDiskError, Length::kForEver}),
    [](const auto& failure) { return std::string(failure.param.name); });

}  // namespace
}  // namespace ambrelio::jetfile
