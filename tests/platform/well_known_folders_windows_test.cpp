#include <gtest/gtest.h>

#include <filesystem>

#include "ambrelio/com/apartment.h"
#include "ambrelio/platform/file_path.h"
#include "ambrelio/platform/well_known_folders.h"
#include "support/environment.h"
#include "support/wine.h"

namespace ambrelio {
namespace {

using Folder = WellKnownFolder;

TEST(WellKnownFolders, AreFoldersThatExist) {
  for (const auto folder :
       {Folder::kSharedData, Folder::kUserData, Folder::kPrograms, Folder::kDocuments,
        Folder::kDesktop, Folder::kSystemRoot, Folder::kSystem, Folder::kTemporary}) {
    // Wine's shell object knows no other folder of the user's than the desktop.
    if (folder == Folder::kDocuments && test::RunsUnderWine()) continue;
    const std::string path = FolderPath(folder);
    EXPECT_TRUE(std::filesystem::is_directory(FilePath(path)))
        << static_cast<int>(folder) << " " << path;
    EXPECT_FALSE(path.ends_with('\\')) << path;
  }
}

TEST(WellKnownFolders, ComeFromTheVariablesOfTheProcess) {
  test::ScopedEnvironment environment;
  environment.Set("ProgramFiles", "D:\\Programas");
  environment.Set("windir", "E:\\Sistema");
  environment.Set("USERPROFILE", "F:\\Usuario");
  EXPECT_EQ(FolderPath(Folder::kPrograms), "D:\\Programas");
  EXPECT_EQ(FolderPath(Folder::kSystemRoot), "E:\\Sistema");
  EXPECT_EQ(FolderPath(Folder::kDownloads), "F:\\Usuario\\Downloads");
}

TEST(WellKnownFolders, LieWithinTheSystem) {
  EXPECT_TRUE(FolderPath(Folder::kSystem).starts_with(FolderPath(Folder::kSystemRoot)));
}

TEST(WellKnownFolders, AreFoundByAThreadThatUsesAutomationAlready) {
  const com::Apartment apartment;
  EXPECT_NE(FolderPath(Folder::kDesktop), "");
  EXPECT_NE(FolderPath(Folder::kTemporary), "");
}

}  // namespace
}  // namespace ambrelio
