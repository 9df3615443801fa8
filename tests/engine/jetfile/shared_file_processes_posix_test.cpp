// One file under the hands of a process that dies at any point of a commit; and what its folder has
// to do with it.
#include <csignal>

#include "engine/jetfile/shared_file_fixture.h"
#include "support/error_of.h"
#include "support/second_process.h"
#include "support/watched_files.h"

namespace ambrelio::jetfile {
namespace {

using test::ErrorOf;
using test::SecondProcess;
using testing::ElementsAre;

constexpr std::chrono::milliseconds kAtMost = std::chrono::minutes(1);

class SharedFileOnPosix : public SharedFileTest {
 protected:
  SharedFileOnPosix() { PutFile(Path(), SampleBytes("adox_jet4")); }
};

TEST_F(SharedFileOnPosix, OfOtherUsersMayOpenWhatOneHasMade) {
  using std::filesystem::perms;
  constexpr perms kEverybody = perms::owner_read | perms::owner_write | perms::group_read |
                               perms::group_write | perms::others_read | perms::others_write;
  std::filesystem::permissions(Path(), kEverybody);
  const auto shared = Open();
  ASSERT_EQ(FilesInFolder().size(), 3U);
  for (const std::string& name : FilesInFolder()) {
    EXPECT_EQ(std::filesystem::status(folder_.File(name)).permissions(), kEverybody) << name;
  }
}

TEST_F(SharedFileOnPosix, DoNotMeetInAFileThatTheLastOneTakesAway) {
  const std::string presence = Path() + "-lock";
  bool taken_away = false;
  const test::WatchedFiles files([&](const test::FileRequest& request) {
    const bool opened = request.kind == test::FileRequest::kOpen && request.path == presence;
    if (opened && !std::exchange(taken_away, true)) std::filesystem::remove(presence);
    return SQLITE_OK;
  });
  const auto shared = Open();
  EXPECT_TRUE(taken_away);
  EXPECT_TRUE(std::filesystem::exists(presence));
  EXPECT_EQ(ErrorOf([&] { Open(Access::kExclusive); }), 3045);
}

TEST_F(SharedFileOnPosix, MeetInOneFileThroughALink) {
  const std::string link = folder_.File("link.mdb");
  std::filesystem::create_symlink("mill.mdb", link);
  const auto alone = Open(Access::kExclusive);
  EXPECT_EQ(ErrorOf([&] { SharedFile::Open(link, "", Access::kShared, kShortly); }), 3045);
}

// A process that commits once, and dies just before its `change`th change of a file.
class Dying {
 public:
  Dying(const test::TempFolder& folder, const std::string& path, uint32_t number, int change)
      : process_(folder, [&](SecondProcess& parent) {
          int left = 0;
          const test::WatchedFiles files([&](const test::FileRequest& request) {
            if (request.kind != test::FileRequest::kOpen && --left == 0) std::raise(SIGKILL);
            return SQLITE_OK;
          });
          const auto shared = SharedFile::Open(path, "", SharedFile::Access::kShared, kAtMost);
          parent.Signal();
          parent.Await();
          left = change;
          CommitChanges(*shared, number);
        }) {}

  bool AwaitOpening() { return process_.Await(); }
  // Whether it came through.
  bool Commit() {
    process_.Signal();
    return process_.EndedWell();
  }

 private:
  SecondProcess process_;
};

TEST_F(SharedFileOnPosix, ThatDieInACommitLeaveItToThoseWhoLive) {
  constexpr uint32_t kCommit = 4;
  const std::vector<Bytes> states = StatesOf(FileBytes(Path()), kCommit);
  bool came_through = false;
  int change = 0;
  while (!came_through) {
    SCOPED_TRACE(++change);
    PutFile(Path(), states[kCommit - 1]);
    Dying child(folder_, Path(), kCommit, change);
    ASSERT_TRUE(child.AwaitOpening());
    const auto shared = Open();
    came_through = child.Commit();

    const SharedFile::Moment moment = shared->Read();
    const bool changed = shared->ChangedByOthers();
    const Bytes bytes = FileBytes(Path());
    ASSERT_TRUE(bytes == states[kCommit] || (bytes == states[kCommit - 1] && !came_through));
    EXPECT_TRUE(changed || bytes == states[kCommit - 1]);
    EXPECT_EQ(shared->file().page_count(), bytes.size() / kJet4.page_size);
    EXPECT_EQ(shared->file().header().commits, JetFile::FromBytes(bytes, "").header().commits);
  }
  EXPECT_GT(change, 10);
  EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
}

TEST_F(SharedFileOnPosix, ThatDieInACommitLeaveItToTheNext) {
  constexpr uint32_t kCommit = 4;
  const std::vector<Bytes> states = StatesOf(FileBytes(Path()), kCommit);
  bool came_through = false;
  for (int change = 1; !came_through; ++change) {
    SCOPED_TRACE(change);
    PutFile(Path(), states[kCommit - 1]);
    Dying child(folder_, Path(), kCommit, change);
    ASSERT_TRUE(child.AwaitOpening());
    came_through = child.Commit();
    Open(change % 2 == 0 ? Access::kExclusive : Access::kReadOnly);
    const Bytes bytes = FileBytes(Path());
    ASSERT_TRUE(bytes == states[kCommit] || (bytes == states[kCommit - 1] && !came_through));
    EXPECT_THAT(FilesInFolder(), ElementsAre("mill.mdb"));
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
