#include "ambrelio/platform/program_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "ambrelio/platform/file_path.h"

namespace ambrelio {
namespace {

TEST(ProgramFolder, HoldsThisProgram) {
  bool found = false;
  for (const auto& entry : std::filesystem::directory_iterator(FilePath(ProgramFolder()))) {
    found = found || entry.path().stem() == "platform_tests";
  }
  EXPECT_TRUE(found) << ProgramFolder();
}

TEST(ProgramFolder, IsAWholePathWithoutASeparatorAtItsEnd) {
  const std::filesystem::path folder = FilePath(ProgramFolder());
  EXPECT_TRUE(folder.is_absolute());
  EXPECT_TRUE(folder.has_filename());
}

}  // namespace
}  // namespace ambrelio
