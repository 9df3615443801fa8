#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ambrelio/platform/unfinished_file.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

TEST(UnfinishedFileAndLinks, ReplacesNoLinkThatLeadsNowhere) {
  const test::TempFolder folder;
  const std::string place = folder.File("oliva.mdb");
  std::filesystem::create_symlink(folder.File("elsewhere"), place);
  const UnfinishedFile file(place);
  std::ofstream(file.path()) << "complete";
  EXPECT_EQ(file.TakePlace(), std::errc::file_exists);
  EXPECT_TRUE(std::filesystem::is_symlink(place));
}

}  // namespace
}  // namespace ambrelio
