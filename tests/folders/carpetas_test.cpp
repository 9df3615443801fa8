#include "ambrelio/folders/carpetas.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace ambrelio::folders {
namespace {

using Folder = WellKnownFolder;

// Folders that say which one was asked for.
std::string Numbered(Folder folder) { return "/f" + std::to_string(static_cast<int>(folder)); }

std::string Expand(std::string_view text) { return ExpandSpecialFolder(text, Numbered); }

TEST(ExpandSpecialFolder, KnowsTenLabels) {
  const std::vector<std::pair<std::string, Folder>> labels = {
      {"Datos de programa", Folder::kSharedData},
      {"Datos de programa (usuario)", Folder::kUserData},
      {"Archivos de programa", Folder::kPrograms},
      {"Mis documentos", Folder::kDocuments},
      {"Escritorio", Folder::kDesktop},
      {"Windows", Folder::kSystemRoot},
      {"System", Folder::kSystem},
      {"SysWow", Folder::kSystem32Bits},
      {"Temporal", Folder::kTemporary},
      {"Descargas", Folder::kDownloads},
  };
  for (const auto& [label, folder] : labels) {
    EXPECT_EQ(Expand("{" + label + "}/datos"), Numbered(folder) + "/datos");
  }
}

TEST(ExpandSpecialFolder, TakesTheRestAsItStands) {
  EXPECT_EQ(Expand("{Escritorio}"), Numbered(Folder::kDesktop));
  EXPECT_EQ(Expand("{Escritorio}datos"), Numbered(Folder::kDesktop) + "datos");
  EXPECT_EQ(Expand("{Escritorio}\\datos\\"), Numbered(Folder::kDesktop) + "\\datos\\");
}

TEST(ExpandSpecialFolder, TheLabelMustStandAtTheStart) {
  EXPECT_EQ(Expand("x{Escritorio}"), "x{Escritorio}");
  EXPECT_EQ(Expand(" {Escritorio}"), " {Escritorio}");
}

TEST(ExpandSpecialFolder, ALabelThatBeginsAnotherIsNotTakenForIt) {
  EXPECT_EQ(Expand("{Datos de programa (usuario)}\\a"), Numbered(Folder::kUserData) + "\\a");
}

TEST(ExpandSpecialFolder, ReplacesOneLabelOnly) {
  EXPECT_EQ(Expand("{Temporal}{Temporal}"), Numbered(Folder::kTemporary) + "{Temporal}");
}

TEST(ExpandSpecialFolder, DoesNotExpandWhatAFolderIsCalled) {
  const auto braces = [](Folder) { return std::string("{Windows}"); };
  EXPECT_EQ(ExpandSpecialFolder("{Escritorio}/a", braces), "{Windows}/a");
}

TEST(ExpandSpecialFolder, MindsTheCase) {
  EXPECT_EQ(Expand("{escritorio}/a"), "{escritorio}/a");
  EXPECT_EQ(Expand("{TEMPORAL}/a"), "{TEMPORAL}/a");
}

TEST(ExpandSpecialFolder, LeavesOtherTextAlone) {
  for (const char* text :
       {"", "/srv/datos", "Escritorio", "{Escritorio", "{}", "{Otra}/x", "{dat}", "{app}/x"}) {
    EXPECT_EQ(Expand(text), text);
  }
}

TEST(ExpandSpecialFolder, AnUnknownFolderLeavesTheRest) {
  const auto unknown = [](Folder) { return std::string(); };
  EXPECT_EQ(ExpandSpecialFolder("{SysWow}/datos", unknown), "/datos");
}

TEST(ExpandSpecialFolder, AsksForNoFolderThatIsNotNamed) {
  int asked = 0;
  const auto count = [&asked](Folder) { return std::to_string(++asked); };
  ExpandSpecialFolder("/srv/{Escritorio}", count);
  EXPECT_EQ(asked, 0);
  ExpandSpecialFolder("{Descargas}", count);
  EXPECT_EQ(asked, 1);
}

TEST(ExpandSpecialFolder, TakesTheFoldersOfThisSystemUnlessTold) {
  EXPECT_EQ(ExpandSpecialFolder("{System}/x"), FolderPath(Folder::kSystem) + "/x");
}

}  // namespace
}  // namespace ambrelio::folders
