#include "ambrelio/frame/settings.h"

#include <gtest/gtest.h>

#include "ambrelio/kestro/tools.h"
#include "ambrelio/platform/program_folder.h"
#include "ambrelio/platform/well_known_folders.h"
#include "ambrelio/value/automation_error.h"
#include "support/temp_folder.h"

namespace ambrelio::frame {
namespace {

using kestro::IniFile;
using kestro::Tools;
using Folder = WellKnownFolder;

class Settings : public ::testing::Test {
 protected:
  void Write(const std::string& where, const std::string& file, const std::string& key,
             const std::string& value) {
    IniFile(Tools::CombinePath(where, file), "GENERAL").Write(key, value);
  }
  void WriteClient(const std::string& key, const std::string& value) {
    Write(host, "CLIEN.INI", key, value);
  }
  void WriteVardex(const std::string& key, const std::string& value) {
    Write(host, "Vardex.ini", key, value);
  }
  DatabaseSettings Load() { return LoadGeneralSettings(session, host); }
  void ExpectCounts(int hoppers, int intermediate_hoppers, int tanks) {
    Load();
    EXPECT_EQ(session.hopper_count, hoppers);
    EXPECT_EQ(session.intermediate_hopper_count, intermediate_hoppers);
    EXPECT_EQ(session.tank_count, tanks);
  }

  test::TempFolder folder;
  std::string host = folder.Folder("host");
  std::string net = folder.Folder("net");
  Session session;
};

// --- where Vardex.ini is

TEST_F(Settings, LieInTheApplicationPath) {
  WriteVardex("BaseDatos", "here.mdb");
  HostIni ini = OpenHostIni(host, false);
  ini.file.SetSection("GENERAL");
  EXPECT_EQ(ini.folder, host);
  EXPECT_EQ(ini.file.Read("BaseDatos"), "here.mdb");
}

TEST_F(Settings, LieInTheNetworkFolderForASlave) {
  WriteClient("Esclavo", "true");
  WriteClient("NetPath", net);
  Write(net, "Vardex.ini", "BaseDatos", "there.mdb");
  HostIni ini = OpenHostIni(host, false);
  ini.file.SetSection("GENERAL");
  EXPECT_EQ(ini.folder, net);
  EXPECT_EQ(ini.file.Read("BaseDatos"), "there.mdb");
}

TEST_F(Settings, LieInTheNetworkFolderForTheNetworkedEdition) {
  WriteClient("Esclavo", "0");
  WriteClient("NetPath", net);
  EXPECT_EQ(OpenHostIni(host, true).folder, net);
}

TEST_F(Settings, TheNetworkFolderAloneMakesNoSlave) {
  WriteClient("NetPath", net);
  EXPECT_EQ(OpenHostIni(host, false).folder, host);
}

// --- counts

TEST_F(Settings, CountHoppersIntermediateHoppersAndTanks) {
  WriteVardex("MaxTolvas", "4,2,6");
  ExpectCounts(4, 2, 6);
}

TEST_F(Settings, CountOneTankWhenNothingIsSaid) { ExpectCounts(0, 0, 1); }

TEST_F(Settings, AnEmptyCountSetsBackWhatWasReadBefore) {
  WriteVardex("MaxTolvas", "4,2,6");
  Load();
  WriteVardex("MaxTolvas", "");
  ExpectCounts(0, 0, 1);
}

TEST_F(Settings, MissingCountsAreZeroButForOneTank) {
  WriteVardex("MaxTolvas", "4");
  ExpectCounts(4, 0, 1);
  WriteVardex("MaxTolvas", "4,2");
  ExpectCounts(4, 2, 1);
}

TEST_F(Settings, ZeroTanksAreOne) {
  WriteVardex("MaxTolvas", "4,2,0");
  ExpectCounts(4, 2, 1);
}

TEST_F(Settings, NegativeCountsAreKept) {
  WriteVardex("MaxTolvas", "-4,-2,-6");
  ExpectCounts(-4, -2, -6);
}

TEST_F(Settings, CountsAreTheLeadingNumbers) {
  WriteVardex("MaxTolvas", " 4 tolvas, 2x ,6.5,9");
  ExpectCounts(4, 2, 6);
  WriteVardex("MaxTolvas", "cuatro,,7.5");
  ExpectCounts(0, 0, 8);
}

TEST_F(Settings, ACountAbove16BitsRaises) {
  WriteVardex("MaxTolvas", "4,32768,6");
  try {
    Load();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 6);
    EXPECT_EQ(error.description(), "Overflow: MaxTolvas=4,32768,6");
  }
  WriteVardex("MaxTolvas", "32767,32767,32767");
  ExpectCounts(32767, 32767, 32767);
}

// --- path of the database

TEST_F(Settings, NameTheDatabaseByDefault) {
  EXPECT_EQ(Load().path, Tools::CombinePath(host, "oliva.mdb"));
}

TEST_F(Settings, NameTheDatabaseAndItsFolder) {
  WriteVardex("BaseDatos", "molino.mdb");
  WriteVardex("RutaBaseDatos", net);
  EXPECT_EQ(Load().path, Tools::CombinePath(net, "molino.mdb"));
}

TEST_F(Settings, ASlaveTakesTheDatabaseFromTheNetworkFolder) {
  WriteClient("Esclavo", "1");
  WriteClient("NetPath", net);
  EXPECT_EQ(Load().path, Tools::CombinePath(net, "oliva.mdb"));
}

TEST_F(Settings, ASlaveMayStillBeSentElsewhere) {
  WriteClient("Esclavo", "1");
  WriteClient("NetPath", net);
  Write(net, "Vardex.ini", "RutaBaseDatos", folder.path());
  EXPECT_EQ(Load().path, folder.File("oliva.mdb"));
}

TEST_F(Settings, TheNetworkedEditionIgnoresTheFolder) {
  WriteClient("NetPath", net);
  Write(net, "Vardex.ini", "RutaBaseDatos", folder.path());
  session.vardex3 = true;
  EXPECT_EQ(Load().path, Tools::CombinePath(net, "oliva.mdb"));
}

TEST_F(Settings, MacrosStandForTheLibraryAndTheHost) {
  WriteVardex("RutaBaseDatos", "{app}");
  EXPECT_EQ(Load().path, Tools::CombinePath(ProgramFolder(), "oliva.mdb"));
  WriteVardex("RutaBaseDatos", "{dat}");
  EXPECT_EQ(Load().path, Tools::CombinePath(host, "oliva.mdb"));
}

TEST_F(Settings, ALabelStandsForAFolderOfTheSystem) {
  WriteVardex("RutaBaseDatos", "{Temporal}/x");
  EXPECT_EQ(Load().path, Tools::CombinePath(FolderPath(Folder::kTemporary) + "/x", "oliva.mdb"));
  WriteVardex("RutaBaseDatos", "{Mis documentos}");
  EXPECT_EQ(Load().path, Tools::CombinePath(FolderPath(Folder::kDocuments), "oliva.mdb"));
}

TEST_F(Settings, ALabelInTheNameOfTheDatabaseIsNone) {
  WriteVardex("BaseDatos", "{Temporal}");
  EXPECT_EQ(Load().path, Tools::CombinePath(host, "{Temporal}"));
}

TEST(ExpandPathMacros, TakesALabelAtTheStartOnly) {
  const std::string system = FolderPath(Folder::kSystem);
  EXPECT_EQ(ExpandPathMacros("{System}/{dat}/{System}", "/host"), system + "//host/{System}");
  EXPECT_EQ(ExpandPathMacros("{dat}{System}", "/host"), "/host{System}");
  EXPECT_EQ(ExpandPathMacros("{system}/x", "/host"), "{system}/x");
}

TEST(ExpandPathMacros, DoesNotTakeTheApplicationPathForALabel) {
  EXPECT_EQ(ExpandPathMacros("{dat}/x", "{System}"), "{System}/x");
}

TEST(ExpandPathMacros, ReplacesEveryOccurrence) {
  EXPECT_EQ(ExpandPathMacros("{dat}/a/{dat}", "/host"), "/host/a//host");
  EXPECT_EQ(ExpandPathMacros("x{app}{dat}", "/host"), "x" + ProgramFolder() + "/host");
}

TEST(ExpandPathMacros, MindsTheCase) {
  EXPECT_EQ(ExpandPathMacros("{App}/{DAT}", "/host"), "{App}/{DAT}");
}

TEST(ExpandPathMacros, LeavesOtherRoutesAlone) {
  EXPECT_EQ(ExpandPathMacros("", "/host"), "");
  EXPECT_EQ(ExpandPathMacros("/srv/almazara", "/host"), "/srv/almazara");
}

// --- password

TEST_F(Settings, HoldNoPasswordByDefault) { EXPECT_EQ(Load().password, ""); }

TEST_F(Settings, HoldAFramedEncodedPassword) {
  WriteVardex("PassworDB", "<" + Tools::Encode("Jaén 2026") + ">");
  EXPECT_EQ(Load().password, "Jaén 2026");
}

TEST_F(Settings, HoldWhatFramePasswordMakes) {
  WriteVardex(kPasswordKey, FramePassword("Jaén 2026"));
  EXPECT_EQ(Load().password, "Jaén 2026");
}

TEST(UnframePassword, GivesNothingForTextThatHoldsNone) {
  EXPECT_EQ(UnframePassword(FramePassword("secreto")), "secreto");
  EXPECT_EQ(UnframePassword(FramePassword("")), "");
  for (const char* stored : {"", "x", "xx", "ññ", "<secreto>"}) {
    EXPECT_EQ(UnframePassword(stored), std::nullopt) << stored;
  }
}

TEST_F(Settings, TheFrameIsOfCharactersNotOfBytes) {
  WriteVardex("PassworDB", "ñ" + Tools::Encode("secreto") + "ñ");
  EXPECT_EQ(Load().password, "secreto");
}

TEST_F(Settings, FewerThanThreeCharactersAreNoPassword) {
  for (const char* stored : {"x", "xx", "ñ", "ññ"}) {
    WriteVardex("PassworDB", stored);
    EXPECT_EQ(Load().password, "") << stored;
  }
}

TEST_F(Settings, AnUndecodablePasswordIsNone) {
  WriteVardex("PassworDB", "<secreto>");
  EXPECT_EQ(Load().password, "");
}

}  // namespace
}  // namespace ambrelio::frame
