#include "ambrelio/platform/byte_locks.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "support/second_process.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

constexpr uint64_t kFirst = 0x10000001;
constexpr uint64_t kCount = 255;

class ByteLocks : public ::testing::Test {
 protected:
  ByteLocks() { std::ofstream(path()) << "users"; }
  std::string path() const { return folder_.File("users.ldb"); }

  // Locks bytes from the place of `start` on, until told to go on.
  void Hold(uint64_t start, uint64_t count, test::SecondProcess& parent) const {
    const int file = open(path().c_str(), O_RDWR);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(start);
    lock.l_len = static_cast<off_t>(count);
    if (file < 0 || fcntl(file, F_SETLK, &lock) != 0) throw std::runtime_error("no lock");
    parent.Signal();
    parent.Await();
  }

  test::TempFolder folder_;
};

TEST_F(ByteLocks, AreNotThereWithoutAFileOrALock) {
  EXPECT_EQ(LockedByte(folder_.File("none"), kFirst, kCount), std::nullopt);
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), std::nullopt);
}

TEST_F(ByteLocks, AreFoundBeyondTheEndOfTheFile) {
  test::SecondProcess other(folder_,
                            [&](test::SecondProcess& parent) { Hold(kFirst + 254, 1, parent); });
  ASSERT_TRUE(other.Await());
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), kFirst + 254);
  EXPECT_EQ(LockedByte(path(), kFirst, kCount - 1), std::nullopt);
  other.Kill();
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), std::nullopt);
}

TEST_F(ByteLocks, ThatBeginEarlierAreFoundWhereTheyAreAskedFor) {
  test::SecondProcess other(folder_,
                            [&](test::SecondProcess& parent) { Hold(0, kFirst + 1, parent); });
  ASSERT_TRUE(other.Await());
  EXPECT_EQ(LockedByte(path(), kFirst, kCount), kFirst);
}

}  // namespace
}  // namespace ambrelio
