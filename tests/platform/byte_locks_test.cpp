#include "ambrelio/platform/byte_locks.h"

#include <gtest/gtest.h>

#include <fstream>

#include "ambrelio/platform/file_path.h"
#include "support/byte_lock.h"
#include "support/second_process.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

using test::SecondProcess;

constexpr uint32_t kFirst = 0x10000001;
constexpr uint32_t kCount = 255;

class ByteLocks : public ::testing::Test {
 protected:
  ByteLocks() {
    if (!SecondProcess::IsThis()) std::ofstream(FilePath(path())) << "users";
  }
  std::string path() const { return folder_.File("users.ldb"); }

  // Locks bytes from the place of `first` on, until told to go on.
  void Hold(uint32_t first, uint32_t count, SecondProcess& parent) const {
    const test::ByteLock lock(path(), first, count);
    parent.Signal();
    parent.Await();
  }

  test::TempFolder folder_;
};

TEST_F(ByteLocks, AreNotThereWithoutAFileOrALock) {
  EXPECT_EQ(LockedByte(folder_.File("none"), kFirst, kCount), std::nullopt);
  EXPECT_EQ(LockedByte(folder_.File("no/folder"), kFirst, kCount), std::nullopt);
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), std::nullopt);
}

TEST_F(ByteLocks, AreFoundBeyondTheEndOfTheFile) {
  SecondProcess other(folder_, [&](SecondProcess& parent) { Hold(kFirst + 254, 1, parent); });
  ASSERT_TRUE(other.Await());
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), kFirst + 254);
  EXPECT_EQ(LockedByte(path(), kFirst, kCount - 1), std::nullopt);
  other.Kill();
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), std::nullopt);
}

TEST_F(ByteLocks, ThatBeginEarlierAreFoundWhereTheyAreAskedFor) {
  SecondProcess other(folder_, [&](SecondProcess& parent) { Hold(0, kFirst + 1, parent); });
  ASSERT_TRUE(other.Await());
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), kFirst);
}

// Looking leaves nothing behind: the byte can be had at once.
TEST_F(ByteLocks, AreNotLeftByLooking) {
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), std::nullopt);
  EXPECT_NO_THROW(test::ByteLock(path(), kFirst, kCount));
}

}  // namespace
}  // namespace ambrelio
