#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "platform/atomic_file_fixture.h"

namespace ambrelio {
namespace {

namespace fs = std::filesystem;
using test::AtomicFileTest;
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

TEST_F(AtomicFileTest, ReadsNothingFromADevice) {
  EXPECT_EQ(ReadWholeFile("/dev/zero"), std::nullopt);
}

TEST_F(AtomicFileTest, DoesNotReplaceADevice) {
  EXPECT_EQ(ErrorOf([] { WriteFileAtomically("/dev/null", "new"); }), 75);
}

TEST_F(AtomicFileTest, LeavesAReaderOfTheOldFileItsContent) {
  Put(file_, "old");
  std::ifstream reader(file_, std::ios::binary);
  WriteFileAtomically(file_, "new");
  std::string seen;
  reader >> seen;
  EXPECT_EQ(seen, "old");
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

}  // namespace
}  // namespace ambrelio
