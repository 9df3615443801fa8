// Opening files that Windows keeps back.
#include <windows.h>

#include "ambrelio/platform/file_path.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;

class OpenOnWindows : public test::EngineTest {
 protected:
  void Mark(DWORD attributes) const {
    ASSERT_TRUE(::SetFileAttributesW(FilePath(Path()).c_str(), attributes));
  }
  bool CanBeWritten() const {
    const HANDLE file = ::CreateFileW(FilePath(Path()).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    ::CloseHandle(file);
    return true;
  }
  int OpenErrorOfPath(const std::string& path) {
    return ErrorOf([&] { workspace().OpenDatabase(path, false, false, ""); });
  }
};

TEST_F(OpenOnWindows, OpensAFileMarkedAsReadOnlyForReading) {
  AddTanks(*Create());
  Mark(FILE_ATTRIBUTE_READONLY);
  if (CanBeWritten()) GTEST_SKIP() << "Wine lets root write to such files";
  for (const bool read_only : {false, true}) {
    const auto database = workspace().OpenDatabase(Path(), false, read_only, "");
    EXPECT_EQ(CountRows(*database), 0);
    EXPECT_EQ(ErrorOf([&] { AddTanks(*database, "Otra"); }), 3027);
  }
  Mark(FILE_ATTRIBUTE_NORMAL);
}

TEST_F(OpenOnWindows, CannotUseAFileThatAnotherProgramKeepsToItself) {
  Create()->Close();
  const HANDLE held = ::CreateFileW(FilePath(Path()).c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3045);
  ::CloseHandle(held);
  EXPECT_EQ(ErrorOf([&] { Open(); }), 0);
}

TEST_F(OpenOnWindows, TakesPathsWithEitherSeparator) {
  Create("uno.mdb")->Close();
  std::string path = Path("uno.mdb");
  for (char& c : path) {
    if (c == '\\') c = '/';
  }
  EXPECT_EQ(OpenErrorOfPath(path), 0);
  EXPECT_EQ(OpenErrorOfPath(folder_.path() + "\\uno.mdb"), 0);
  EXPECT_EQ(OpenErrorOfPath(folder_.path() + "\\no\\uno.mdb"), 3044);
  EXPECT_EQ(OpenErrorOfPath(folder_.path() + "\\dos.mdb"), 3024);
}

TEST_F(OpenOnWindows, DoesNotFindAFileOfADriveThatThereIsNot) {
  EXPECT_EQ(OpenErrorOfPath("Q:\\datos\\oliva.mdb"), 3044);
  EXPECT_EQ(OpenErrorOfPath("Q:\\oliva.mdb"), 3044);
}

TEST_F(OpenOnWindows, RefusesANameThatNoFileCanHave) {
  EXPECT_EQ(OpenErrorOfPath(Path("oliva?.mdb")), 3024);
  EXPECT_EQ(ErrorOf([&] { Create("oliva?.mdb"); }), 3051);
}

}  // namespace
}  // namespace ambrelio::embedded
