#include "ambrelio/platform/atomic_file.h"

#include "platform/atomic_file_fixture.h"

namespace ambrelio {
namespace {

namespace fs = std::filesystem;
using test::AtomicFileTest;
using test::ErrorOf;

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

TEST_F(AtomicFileTest, TakesAPathWithoutAFolder) {
  fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  WriteFileAtomically("a.ini", "old");
  WriteFileAtomically("a.ini", "new");
  fs::current_path(before);
  EXPECT_EQ(ReadWholeFile(file_), "new");
}

TEST_F(AtomicFileTest, RefusesWhatCannotBeReplaced) {
  for (const std::string& path : {folder_.path(), folder_.File("no folder/a.ini"), std::string(),
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

TEST_F(AtomicFileTest, PassesOverATemporaryFileThatACrashLeft) {
  Put(file_ + ".tmp0", "half a fi");
  WriteFileAtomically(file_, "new");
  EXPECT_EQ(ReadWholeFile(file_), "new");
  EXPECT_EQ(ReadWholeFile(file_ + ".tmp0"), "half a fi");
}

}  // namespace
}  // namespace ambrelio
