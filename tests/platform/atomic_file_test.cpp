#include "ambrelio/platform/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

namespace fs = std::filesystem;
using test::ErrorOf;

// Lets no file of this process grow beyond `bytes`, so that writing fails half-way.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : before_handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limited = before_;
    limited.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, before_handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*before_handler_)(int);
  rlimit before_{};
};

class AtomicFileTest : public testing::Test {
 protected:
  static void Put(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  size_t FilesInFolder() const {
    return static_cast<size_t>(
        std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  test::TempFolder folder_;
  std::string file_ = folder_.File("a.ini");
};

TEST_F(AtomicFileTest, ReadsTheBytesAsTheyAre) {
  std::string bytes("a\r\n\0\xFF\x1Az", 7);
  Put(file_, bytes);
  EXPECT_EQ(ReadWholeFile(file_), bytes);
}

TEST_F(AtomicFileTest, ReadsAnEmptyFile) {
  Put(file_, "");
  EXPECT_EQ(ReadWholeFile(file_), "");
}

TEST_F(AtomicFileTest, ReadsAFileOfManyBlocks) {
  std::string bytes;
  for (int i = 0; i < 100'000; ++i) bytes += std::to_string(i);
  Put(file_, bytes);
  EXPECT_EQ(ReadWholeFile(file_), bytes);
}

TEST_F(AtomicFileTest, ReadsNothingFromWhatIsNoFile) {
  EXPECT_EQ(ReadWholeFile(file_), std::nullopt);
  EXPECT_EQ(ReadWholeFile(folder_.path()), std::nullopt);
  EXPECT_EQ(ReadWholeFile("/dev/zero"), std::nullopt);
  EXPECT_EQ(ReadWholeFile(""), std::nullopt);
}

TEST_F(AtomicFileTest, MakesANewFile) {
  WriteFileAtomically(file_, "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(AtomicFileTest, ReplacesAFile) {
  Put(file_, "the old and longer content");
  WriteFileAtomically(file_, "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(AtomicFileTest, LeavesAReaderOfTheOldFileItsContent) {
  Put(file_, "old");
  std::ifstream reader(file_, std::ios::binary);
  WriteFileAtomically(file_, "new");
  std::string seen;
  reader >> seen;
  EXPECT_EQ(seen, "old");
}

TEST_F(AtomicFileTest, TakesAPathWithoutAFolder) {
  fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  WriteFileAtomically("a.ini", "new");
  fs::current_path(before);
  EXPECT_EQ(ReadWholeFile(file_), "new");
}

TEST_F(AtomicFileTest, KeepsPermissions) {
  Put(file_, "old");
  fs::permissions(file_, fs::perms(0640));
  WriteFileAtomically(file_, "new");
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0640));
}

TEST_F(AtomicFileTest, GivesANewFileTheUsualPermissions) {
  mode_t before = ::umask(027);
  WriteFileAtomically(file_, "new");
  ::umask(before);
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0640));
}

TEST_F(AtomicFileTest, WritesThroughAChainOfLinks) {
  Put(file_, "old");
  std::string real = folder_.Folder("links");
  fs::create_symlink("../a.ini", real + "/near");
  fs::create_symlink(real + "/near", folder_.File("far"));
  WriteFileAtomically(folder_.File("far"), "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_TRUE(fs::is_symlink(folder_.File("far")));
  EXPECT_TRUE(fs::is_symlink(real + "/near"));
}

TEST_F(AtomicFileTest, MakesTheFileThatALinkLeadsTo) {
  fs::create_symlink("a.ini", folder_.File("link"));
  WriteFileAtomically(folder_.File("link"), "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_TRUE(fs::is_symlink(folder_.File("link")));
}

TEST_F(AtomicFileTest, RefusesACircleOfLinks) {
  fs::create_symlink("b", folder_.File("a"));
  fs::create_symlink("a", folder_.File("b"));
  EXPECT_EQ(ErrorOf([&] { WriteFileAtomically(folder_.File("a"), "new"); }), 75);
}

TEST_F(AtomicFileTest, RefusesWhatCannotBeReplaced) {
  for (const std::string& path :
       {folder_.path(), folder_.File("no folder/a.ini"), std::string("/dev/null"), std::string(),
        std::string("a\0b", 3), folder_.File(std::string(300, 'x'))}) {
    EXPECT_EQ(ErrorOf([&] { WriteFileAtomically(path, "new"); }), 75) << path;
  }
  EXPECT_EQ(FilesInFolder(), 0U);
}

TEST_F(AtomicFileTest, NamesTheFileThatItCouldNotWrite) {
  try {
    WriteFileAtomically(folder_.File("no folder/a.ini"), "new");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_NE(error.description().find(folder_.File("no folder/a.ini")), std::string::npos);
  }
}

TEST_F(AtomicFileTest, LeavesTheOldFileAloneWhenWritingFailsHalfWay) {
  Put(file_, "old");
  std::string large(100'000, 'x');
  int error = 0;
  {
    FileSizeLimit limit(4096);
    error = ErrorOf([&] { WriteFileAtomically(file_, large); });
  }
  EXPECT_EQ(error, 75);
  EXPECT_EQ(ReadWholeFile(file_), "old");
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(AtomicFileTest, PassesOverATemporaryFileThatACrashLeft) {
  Put(file_ + ".tmp0", "half a fi");
  WriteFileAtomically(file_, "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_EQ(ReadWholeFile(file_ + ".tmp0"), "half a fi");
}

}  // namespace
}  // namespace ambrelio
