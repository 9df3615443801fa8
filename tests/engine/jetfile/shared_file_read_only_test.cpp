// Folders and media that cannot be written.
#include "engine/jetfile/errors.h"
#include "engine/jetfile/shared_file_fixture.h"
#include "support/error_of.h"
#include "support/read_only_files.h"
#include "support/watched_files.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using testing::ElementsAre;

class SharedFileReadOnly : public SharedFileTest {
 protected:
  SharedFileReadOnly() { PutFile(Path(), SampleBytes("adox_jet4")); }

  // The two side files as someone leaves them who ends in the middle of a commit, and the data.
  void LeaveInTheMiddle() {
    Bytes data;
    Bytes rollback;
    {
      const test::WatchedFiles files([&](const test::FileRequest& request) {
        if (data.empty() && request.path == Path() && request.kind == test::FileRequest::kSync) {
          data = FileBytes(Path());
          rollback = FileBytes(FileLocks::RollbackPath(Path()));
        }
        return SQLITE_OK;
      });
      CommitChanges(*Open(), 1);
    }
    PutFile(Path(), data);
    PutFile(FileLocks::RollbackPath(Path()), rollback);
  }
};

TEST_F(SharedFileReadOnly, IsReadAndNotWritten) {
  const test::ReadOnlyFiles medium;
  const auto shared = Open();
  EXPECT_TRUE(shared->read_only());
  const SharedFile::Moment moment = shared->Read();
  EXPECT_FALSE(shared->ChangedByOthers());
  EXPECT_EQ(shared->file().page_count(), SampleBytes("adox_jet4").size() / kJet4.page_size);
  EXPECT_EQ(ErrorOf([&] { shared->Lock(); }), kOnlyReadable);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

TEST_F(SharedFileReadOnly, CannotBeHeldAlone) {
  const test::ReadOnlyFiles medium;
  EXPECT_EQ(ErrorOf([&] { Open(Access::kExclusive); }), kAccessDenied);
  EXPECT_EQ(ErrorOf([&] { Open(Access::kExclusiveReadOnly); }), kAccessDenied);
}

TEST_F(SharedFileReadOnly, CannotBeHeldAloneBesideWriters) {
  const auto writer = Open();
  const test::ReadOnlyFiles medium;
  EXPECT_EQ(ErrorOf([&] { Open(Access::kExclusive); }), kAccessDenied);
}

TEST_F(SharedFileReadOnly, IsRefusedInTheMiddleOfAChange) {
  LeaveInTheMiddle();
  const Bytes data = FileBytes(Path());
  {
    const test::ReadOnlyFiles medium;
    EXPECT_EQ(ErrorOf([&] { Open(); }), kAccessDenied);
    PutFile(Path() + "-lock", {});
    EXPECT_EQ(ErrorOf([&] { Open(); }), kAccessDenied);
  }
  EXPECT_EQ(FileBytes(Path()), data);
  EXPECT_EQ(ErrorOf([&] { Open(); }), 0);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

// Someone else may write: what is read still stays as it is in a moment.
TEST_F(SharedFileReadOnly, SharesTheLocksOfThoseWhoMayWrite) {
  const auto writer = Open();
  const auto reader = [&] {
    const test::ReadOnlyFiles medium;
    return Open();
  }();
  EXPECT_TRUE(reader->read_only());
  writer->Lock();
  MakeChanges(writer->file(), 1);
  {
    const SharedFile::Moment moment = reader->Read();
    EXPECT_EQ(ErrorOf([&] { writer->Commit(); }), kRecordLocked);
  }
  writer->Commit();
  EXPECT_TRUE(reader->ChangedByOthers());
}

}  // namespace
}  // namespace ambrelio::jetfile
