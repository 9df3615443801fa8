#include "ambrelio/platform/well_known_folders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/environment.h"
#include "support/temp_folder.h"

namespace ambrelio {
namespace {

using Folder = WellKnownFolder;

// A user with a home of its own and nothing else in the environment.
class WellKnownFolders : public ::testing::Test {
 protected:
  WellKnownFolders() {
    for (const char* name : {"XDG_DATA_DIRS", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "ProgramFiles",
                             "programfiles", "windir", "TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
      environment.Unset(name);
    }
    environment.Set("HOME", home);
  }

  // The user's directories, in a configuration folder below the home.
  void WriteUserFolders(const std::string& text, const std::string& config = ".config") {
    std::ofstream(folder.Folder("home/" + config) + "/user-dirs.dirs") << text;
  }

  test::TempFolder folder;
  std::string home = folder.Folder("home");
  test::ScopedEnvironment environment;
};

TEST_F(WellKnownFolders, SharedDataIsTheFirstAbsoluteFolderOfTheList) {
  EXPECT_EQ(FolderPath(Folder::kSharedData), "/usr/local/share");
  environment.Set("XDG_DATA_DIRS", "relative::/srv/data/:/usr/share");
  EXPECT_EQ(FolderPath(Folder::kSharedData), "/srv/data");
  environment.Set("XDG_DATA_DIRS", "relative:other");
  EXPECT_EQ(FolderPath(Folder::kSharedData), "/usr/local/share");
}

TEST_F(WellKnownFolders, UserDataIsItsVariableElseBelowTheHome) {
  EXPECT_EQ(FolderPath(Folder::kUserData), home + "/.local/share");
  environment.Set("XDG_DATA_HOME", "/srv/user");
  EXPECT_EQ(FolderPath(Folder::kUserData), "/srv/user");
  environment.Set("XDG_DATA_HOME", "relative");
  EXPECT_EQ(FolderPath(Folder::kUserData), home + "/.local/share");
}

TEST_F(WellKnownFolders, ProgramsAreInTheirVariableInEitherSpellingElseInOpt) {
  EXPECT_EQ(FolderPath(Folder::kPrograms), "/opt");
  environment.Set("programfiles", "C:\\Programs");
  EXPECT_EQ(FolderPath(Folder::kPrograms), "C:\\Programs");
  environment.Set("ProgramFiles", "C:\\Program Files");
  EXPECT_EQ(FolderPath(Folder::kPrograms), "C:\\Program Files");
}

TEST_F(WellKnownFolders, TheSystemRootIsItsVariableElseUsr) {
  EXPECT_EQ(FolderPath(Folder::kSystemRoot), "/usr");
  environment.Set("windir", "C:\\Windows");
  EXPECT_EQ(FolderPath(Folder::kSystemRoot), "C:\\Windows");
}

TEST_F(WellKnownFolders, TheLibrariesOfTheSystemAreInUsr) {
  EXPECT_EQ(FolderPath(Folder::kSystem), "/usr/lib");
  EXPECT_EQ(FolderPath(Folder::kSystem32Bits),
            std::filesystem::is_directory("/usr/lib32") ? "/usr/lib32" : "");
}

TEST_F(WellKnownFolders, TheTemporaryFolderIsTheSystems) {
  EXPECT_EQ(FolderPath(Folder::kTemporary), "/tmp");
  environment.Set("TMPDIR", home + "/");
  EXPECT_EQ(FolderPath(Folder::kTemporary), home);
}

TEST_F(WellKnownFolders, ATemporaryFolderThatIsNotThereIsUnknown) {
  environment.Set("TMPDIR", folder.File("missing"));
  EXPECT_EQ(FolderPath(Folder::kTemporary), "");
}

TEST_F(WellKnownFolders, OnlyARootKeepsItsSeparator) {
  environment.Set("XDG_DATA_HOME", "///");
  EXPECT_EQ(FolderPath(Folder::kUserData), "/");
}

TEST_F(WellKnownFolders, TheUsersFoldersAreBelowTheHomeWhenNothingIsSaid) {
  EXPECT_EQ(FolderPath(Folder::kDocuments), home + "/Documents");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/Desktop");
  EXPECT_EQ(FolderPath(Folder::kDownloads), home + "/Downloads");
}

TEST_F(WellKnownFolders, TheUsersFoldersAreThoseOfTheDesktop) {
  WriteUserFolders(
      "# This file is written by the desktop\n"
      "XDG_DESKTOP_DIR=\"$HOME/Escritorio\"\n"
      "XDG_DOCUMENTS_DIR=\"/srv/Mis documentos\"\n"
      "XDG_DOWNLOAD_DIR=\"$HOME/Descargas/\"");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/Escritorio");
  EXPECT_EQ(FolderPath(Folder::kDocuments), "/srv/Mis documentos");
  EXPECT_EQ(FolderPath(Folder::kDownloads), home + "/Descargas");
}

TEST_F(WellKnownFolders, TheUsersFoldersAreReadFromTheConfigurationFolder) {
  WriteUserFolders("XDG_DESKTOP_DIR=\"$HOME/Escritorio\"\n", "config");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/Desktop");
  environment.Set("XDG_CONFIG_HOME", home + "/config");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/Escritorio");
}

TEST_F(WellKnownFolders, TheLastLineForAFolderCounts) {
  WriteUserFolders(
      "XDG_DESKTOP_DIR=\"$HOME/uno\"\n"
      "  XDG_DESKTOP_DIR = \"$HOME/dos\"  # moved\n"
      "#XDG_DESKTOP_DIR=\"$HOME/tres\"\n");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/dos");
}

TEST_F(WellKnownFolders, ABackslashTakesTheMeaningOfACharacter) {
  WriteUserFolders("XDG_DESKTOP_DIR=\"$HOME/a\\\"b\\\\c\\$d\"\n");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/a\"b\\c$d");
}

TEST_F(WellKnownFolders, AFolderThatIsSwitchedOffIsTheHome) {
  WriteUserFolders("XDG_DESKTOP_DIR=\"$HOME/\"\nXDG_DOWNLOAD_DIR=\"$HOME\"\n");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home);
  EXPECT_EQ(FolderPath(Folder::kDownloads), home);
}

TEST_F(WellKnownFolders, LinesThatNameNoFolderArePassedOver) {
  WriteUserFolders(
      "XDG_DESKTOP_DIR=\"$HOME/Escritorio\"\n"
      "XDG_DESKTOP_DIR\n"
      "XDG_DESKTOP_DIR=$HOME/bare\n"
      "XDG_DESKTOP_DIR=\"relative\"\n"
      "XDG_DESKTOP_DIR=\"$HOMER/other\"\n"
      "XDG_DESKTOP_DIR=\"$HOME/open\n"
      "XDG_DESKTOP_DIR=\"$HOME/open\\\n"
      "XDG_DESKTOP_DIRECTORY=\"$HOME/longer\"\n");
  EXPECT_EQ(FolderPath(Folder::kDesktop), home + "/Escritorio");
}

TEST_F(WellKnownFolders, WithoutAnAbsoluteHomeTheUsersFoldersAreUnknown) {
  for (const char* no_home : {"", "relative"}) {
    environment.Set("HOME", no_home);
    for (const Folder known :
         {Folder::kUserData, Folder::kDocuments, Folder::kDesktop, Folder::kDownloads}) {
      EXPECT_EQ(FolderPath(known), "") << no_home;
    }
  }
  environment.Unset("HOME");
  EXPECT_EQ(FolderPath(Folder::kDesktop), "");
}

TEST_F(WellKnownFolders, WithoutAHomeTheDesktopMayStillNameAFolder) {
  environment.Unset("HOME");
  environment.Set("XDG_CONFIG_HOME", home + "/.config");
  WriteUserFolders("XDG_DESKTOP_DIR=\"/srv/escritorio\"\nXDG_DOWNLOAD_DIR=\"$HOME/x\"\n");
  EXPECT_EQ(FolderPath(Folder::kDesktop), "/srv/escritorio");
  EXPECT_EQ(FolderPath(Folder::kDownloads), "");
}

}  // namespace
}  // namespace ambrelio
