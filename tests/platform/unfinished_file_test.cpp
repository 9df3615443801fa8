#include "ambrelio/platform/unfinished_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/temp_folder.h"

namespace ambrelio {
namespace {

class UnfinishedFileTest : public ::testing::Test {
 protected:
  static void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  std::ptrdiff_t FileCount() const {
    const std::filesystem::directory_iterator files(folder.path());
    return std::distance(begin(files), end(files));
  }

  test::TempFolder folder;
  std::string place = folder.File("oliva.mdb");
};

TEST_F(UnfinishedFileTest, AppearsOnlyWhenItTakesItsPlace) {
  {
    const UnfinishedFile file(place);
    Write(file.path(), "complete");
    EXPECT_FALSE(std::filesystem::exists(place));
    EXPECT_FALSE(file.TakePlace());
  }
  EXPECT_EQ(Read(place), "complete");
  EXPECT_EQ(FileCount(), 1);
}

TEST_F(UnfinishedFileTest, GoesWithItsCompanionsWhenItIsGivenUp) {
  {
    const UnfinishedFile file(place, {"-wal"});
    Write(file.path(), "half");
    Write(file.path() + "-wal", "log");
  }
  EXPECT_EQ(FileCount(), 0);
}

TEST_F(UnfinishedFileTest, ReplacesNothing) {
  Write(place, "mine");
  const UnfinishedFile file(place);
  Write(file.path(), "complete");
  EXPECT_EQ(file.TakePlace(), std::errc::file_exists);
  EXPECT_EQ(Read(place), "mine");
}

TEST_F(UnfinishedFileTest, ReportsAFileThatWasNeverMade) {
  EXPECT_EQ(UnfinishedFile(place).TakePlace(), std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace ambrelio
