#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>

#include "ambrelio/platform/byte_locks.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

constexpr uint64_t kFirst = 0x10000001;
constexpr uint64_t kCount = 255;

TEST(ByteLocks, AreFoundBeyondTheEndOfTheFile) {
  const test::TempFolder folder;
  const std::string path = folder.File("users.ldb");
  EXPECT_EQ(LockedByte(path, kFirst, kCount), std::nullopt);
  std::ofstream(FilePath(path)) << "users";
  EXPECT_EQ(LockedByte(path, kFirst, kCount), std::nullopt);

  const HANDLE file = ::CreateFileW(FilePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  ASSERT_TRUE(::LockFile(file, kFirst + 254, 0, 1, 0));
  EXPECT_EQ(LockedByte(path, kFirst, kCount), kFirst + 254);
  EXPECT_EQ(LockedByte(path, kFirst, kCount - 1), std::nullopt);
  ::CloseHandle(file);
  EXPECT_EQ(LockedByte(path, kFirst, kCount), std::nullopt);
}

}  // namespace
}  // namespace ambrelio
