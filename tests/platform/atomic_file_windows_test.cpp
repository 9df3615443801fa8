#include <windows.h>

#include "ambrelio/platform/file_path.h"
#include "platform/atomic_file_fixture.h"
#include "support/wine.h"

namespace ambrelio {
namespace {

using test::AtomicFileTest;
using test::ErrorOf;

TEST_F(AtomicFileTest, RefusesAFileMarkedAsReadOnly) {
  Put(file_, "old");
  ASSERT_TRUE(::SetFileAttributesW(FilePath(file_).c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(ErrorOf([&] { WriteFileAtomically(file_, "new"); }), 75);
  EXPECT_EQ(ReadWholeFile(file_), "old");
  EXPECT_EQ(FilesInFolder(), 1U);
  ::SetFileAttributesW(FilePath(file_).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(AtomicFileTest, LeavesAFileAloneThatAnotherKeepsToItself) {
  Put(file_, "old");
  const HANDLE held = ::CreateFileW(FilePath(file_).c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(ErrorOf([&] { WriteFileAtomically(file_, "new"); }), 75);
  ::CloseHandle(held);
  EXPECT_EQ(ReadWholeFile(file_), "old");
  // Wine's ReplaceFile leaves an empty file of its own each time that it fails.
  if (!test::RunsUnderWine()) {
    EXPECT_EQ(FilesInFolder(), 1U);
  }
}

TEST_F(AtomicFileTest, WritesAFileUnderANameBeyondAscii) {
  const std::string file = folder_.File("almazara ñandú.ini");
  for (const char* text : {"new", "newer"}) {
    WriteFileAtomically(file, text);
    EXPECT_EQ(ReadWholeFile(file), text);
  }
  EXPECT_EQ(FilesInFolder(), 1U);
  EXPECT_NE(
      ::GetFileAttributesW((FilePath(folder_.path()) / L"almazara \u00F1and\u00FA.ini").c_str()),
      INVALID_FILE_ATTRIBUTES);
}

}  // namespace
}  // namespace ambrelio
