// A power cut at every moment of a row of commits, of their recovery, and of what follows.
#include "engine/jetfile/shared_file_fixture.h"
#include "support/power_cut.h"

namespace ambrelio::jetfile {
namespace {

using testing::AnyOf;

class SharedFilePowerCut : public SharedFileTest {
 protected:
  static constexpr uint32_t kCommits = 6;
  static constexpr uint32_t kReopenings = 3;
  static constexpr uint32_t kImagesOfAMoment = 3;

  SharedFilePowerCut() {
    PutFile(Path(), SampleBytes("adox_jet4"));
    states_ = StatesOf(FileBytes(Path()), kCommits);
  }

  // The commits, with the file closed and opened in between.
  void Work() {
    record_.Follow(folder_.path());
    for (uint32_t number = 1; number <= kCommits;) {
      const auto shared = Open();
      for (uint32_t left = kCommits / kReopenings; left > 0; --left, ++number) {
        CommitChanges(*shared, number);
        returned_.push_back(record_.now());
      }
    }
  }

  // How many commits had returned.
  size_t ReturnedAt(size_t moment) const {
    return static_cast<size_t>(std::count_if(returned_.begin(), returned_.end(),
                                             [&](size_t end) { return end <= moment; }));
  }

  // Opens what was found, which then has to be what it was behind one of its last commits.
  void ExpectAfter(size_t returned, const test::TempFolder& found) const {
    const std::string path = found.File("mill.mdb");
    SharedFile::Open(path, "", Access::kShared, kShortly);
    const Bytes bytes = FileBytes(path);
    const size_t next = std::min<size_t>(returned + 1, kCommits);
    EXPECT_TRUE(bytes == states_[returned] || bytes == states_[next]) << returned;
  }

  static bool HasRecord(const test::TempFolder& found) {
    const auto file = DiskFile::Open(found.File("mill.mdb-rollback"));
    return file && RollbackRecord::Begins(*file, FileLocks::kRecordAt);
  }

  test::DiskRecord record_;
  std::vector<Bytes> states_;
  std::vector<size_t> returned_;
};

TEST_F(SharedFilePowerCut, LeavesACommitWholeOrNotThere) {
  Work();
  test::DiskReplay disk(record_);
  uint32_t seed = test::DiskReplay::kEverything;
  for (size_t moment = record_.begin(); moment <= record_.now(); ++moment) {
    disk.AdvanceTo(moment);
    for (uint32_t left = kImagesOfAMoment * test::PowerCutEffort(); left > 0; --left) {
      SCOPED_TRACE("moment " + std::to_string(moment) + ", seed " + std::to_string(seed));
      const test::TempFolder found;
      disk.WriteImage(found.path(), seed++);
      ExpectAfter(ReturnedAt(moment), found);
      ASSERT_FALSE(HasFailure());
    }
  }
}

TEST_F(SharedFilePowerCut, DuringRecoveryLeavesItToTheNext) {
  struct Image {
    std::unique_ptr<test::TempFolder> folder;
    size_t returned;
  };
  Work();
  std::vector<Image> images;
  test::DiskReplay disk(record_);
  for (size_t moment = record_.begin(); moment <= record_.now(); moment += 5) {
    disk.AdvanceTo(moment);
    Image image{std::make_unique<test::TempFolder>(), ReturnedAt(moment)};
    disk.WriteImage(image.folder->path(), static_cast<uint32_t>(moment));
    if (HasRecord(*image.folder)) images.push_back(std::move(image));
  }
  ASSERT_GT(images.size(), 2U);

  uint32_t seed = test::DiskReplay::kEverything;
  for (const Image& image : images) {
    record_.Follow(image.folder->path());
    ExpectAfter(image.returned, *image.folder);
    test::DiskReplay recovery(record_);
    for (size_t moment = record_.begin(); moment <= record_.now(); ++moment) {
      recovery.AdvanceTo(moment);
      for (uint32_t left = test::PowerCutEffort(); left > 0; --left) {
        SCOPED_TRACE("moment " + std::to_string(moment) + ", seed " + std::to_string(seed));
        const test::TempFolder found;
        recovery.WriteImage(found.path(), seed++);
        ExpectAfter(image.returned, found);
        ASSERT_FALSE(HasFailure());
      }
    }
  }
}

// A recovery, a commit behind it and another power cut: the record that was made void may not come
// back upon the new pages.
TEST_F(SharedFilePowerCut, AfterARecoveryKeepsTheNextCommit) {
  Work();
  test::DiskReplay disk(record_);
  std::vector<std::unique_ptr<test::TempFolder>> images;
  for (size_t moment = record_.begin(); moment <= record_.now(); moment += 9) {
    disk.AdvanceTo(moment);
    auto found = std::make_unique<test::TempFolder>();
    disk.WriteImage(found->path(), static_cast<uint32_t>(moment));
    if (HasRecord(*found)) images.push_back(std::move(found));
  }
  ASSERT_GT(images.size(), 2U);

  uint32_t seed = test::DiskReplay::kEverything;
  for (const auto& image : images) {
    record_.Follow(image->path());
    const std::string path = image->File("mill.mdb");
    Bytes before;
    {
      const auto shared = SharedFile::Open(path, "", Access::kShared, kShortly);
      before = FileBytes(path);
      CommitChanges(*shared, kCommits + 1);
    }
    const size_t returned = record_.now();
    const Bytes after = FileBytes(path);
    test::DiskReplay again(record_);
    for (size_t moment = record_.begin(); moment <= returned; ++moment) {
      again.AdvanceTo(moment);
      for (uint32_t left = test::PowerCutEffort(); left > 0; --left) {
        const test::TempFolder found;
        again.WriteImage(found.path(), seed++);
        SharedFile::Open(found.File("mill.mdb"), "", Access::kShared, kShortly);
        const Bytes bytes = FileBytes(found.File("mill.mdb"));
        ASSERT_TRUE(bytes == after || (bytes == before && moment < returned)) << seed - 1;
      }
    }
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
