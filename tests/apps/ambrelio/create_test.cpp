#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class CreateCommand : public test::CliTest {
 protected:
  // Writes the three master files into a folder and gives its path.
  std::string Masters(const std::string& members = "CODSOC,NOMSOC\n1,Ana\n2,\"Gil, hijos\"\n") {
    std::string masters = folder.Folder("masters");
    test::WriteText(masters + "/socios.csv", members);
    test::WriteText(masters + "/productos.csv", "CODPRO,NOMPRO\n1,Picual\n");
    test::WriteText(masters + "/municipios.csv", "CODMUN,NOMMUN\n1,Jaén\n");
    return masters;
  }
  test::Outcome CreateWith(const std::string& masters) {
    return test::RunCli({"create", "--app", app, "--masters", masters});
  }
};

TEST_F(CreateCommand, MakesEveryTable) {
  Create();
  for (const char* table : {"PESADA", "SOCIO", "PRODUCTO", "MUNICIPIO", "Descargas", "Vaciados",
                            "detVaciados", "Niveles", "Capacidad", "Depositos", "Clientes",
                            "Transportistas", "splitDescar", "split"}) {
    EXPECT_EQ(Query("select * from " + std::string(table)), R"({"result":[]})");
  }
}

TEST_F(CreateCommand, PutsTheDatabaseWhereTheSettingsSay) {
  SetUpIni("BaseDatos", "molino.mdb");
  SetUpIni("RutaBaseDatos", "{dat}/datos");
  const std::string data = folder.Folder("mill/datos");
  const auto outcome = test::RunCli({"create", "--app", app});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, test::Within(data, "molino.mdb") + " created\n");
  EXPECT_TRUE(std::filesystem::exists(data + "/molino.mdb"));
}

TEST_F(CreateCommand, UsesTheNetworkFolderOfTheNetworkedEdition) {
  const std::string net = folder.Folder("net");
  kestro::IniFile(app + "/CLIEN.INI", "GENERAL").Write("NetPath", net);
  const auto outcome = test::RunCli({"create", "--app", app, "--vardex3"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(std::filesystem::exists(net + "/oliva.mdb"));
}

TEST_F(CreateCommand, ProtectsTheDatabaseWithThePassword) {
  SetUpIni("PassworDB", "x" + kestro::Tools::Encode("secreta") + "x");
  Create();
  EXPECT_EQ(test::RunCli({"sql", database(), "select * from SOCIO"}).code, 3);
  EXPECT_EQ(test::RunCli({"sql", database(), "select * from SOCIO", "--password", "secreta"}).code,
            0);
}

TEST_F(CreateCommand, NeverOverwrites) {
  test::WriteText(database(), "mine");
  const auto outcome = test::RunCli({"create", "--app", app});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.err, "ambrelio: '" + database() + "' exists already; it is left as it is\n");
  EXPECT_EQ(test::ReadText(database()), "mine");
}

TEST_F(CreateCommand, NeverOverwritesALinkThatLeadsNowhere) {
  std::error_code refused;
  std::filesystem::create_symlink(folder.File("elsewhere"), database(), refused);
  if (refused) GTEST_SKIP() << "no links here: " << refused.message();
  EXPECT_EQ(test::RunCli({"create", "--app", app}).code, 3);
  EXPECT_TRUE(std::filesystem::is_symlink(database()));
  EXPECT_FALSE(std::filesystem::exists(folder.File("elsewhere")));
}

TEST_F(CreateCommand, AMissingDataFolderIsAFileProblem) {
  SetUpIni("RutaBaseDatos", folder.File("none"));
  const auto outcome = test::RunCli({"create", "--app", app});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("cannot be created: error 3044"));
}

TEST_F(CreateCommand, LoadsTheMasters) {
  const auto outcome = CreateWith(Masters());
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("SOCIO: 2 rows\nPRODUCTO: 1 rows\nMUNICIPIO: 1 rows\n"));
  EXPECT_EQ(Query("select * from SOCIO order by CODSOC"),
            R"({"result":[[1,"Ana"],[2,"Gil, hijos"]]})");
  EXPECT_EQ(Query("select NOMMUN from MUNICIPIO"), R"({"result":[["Jaén"]]})");
}

TEST_F(CreateCommand, LoadsTheMastersOfTheExampleSeason) {
  const auto outcome = CreateWith(AMBRELIO_SOURCE_DIR "/examples/campana");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(Query("select count(*) from SOCIO"), R"({"result":[[238]]})");
}

TEST_F(CreateCommand, AMalformedMasterNamesFileAndLineAndLeavesNoDatabase) {
  const std::string masters = Masters("CODSOC,NOMSOC\n1,Ana\nx,Luis\n");
  const auto outcome = CreateWith(masters);
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err, HasSubstr(test::Within(masters, "socios.csv") + ":3: "));
  EXPECT_EQ(outcome.out, "");
  EXPECT_FALSE(std::filesystem::exists(database()));
  EXPECT_EQ(CreateWith(Masters()).code, 0) << "a second attempt starts afresh";
}

TEST_F(CreateCommand, AFolderInPlaceOfAMasterIsAFileProblem) {
  const std::string masters = Masters();
  std::filesystem::remove(masters + "/municipios.csv");
  folder.Folder("masters/municipios.csv");
  const auto outcome = CreateWith(masters);
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err,
              HasSubstr(test::Within(masters, "municipios.csv") + ": the file cannot be read"));
  EXPECT_FALSE(std::filesystem::exists(database()));
}

TEST_F(CreateCommand, TheLogOfAFormerDatabaseIsLeftAsItIs) {
  test::WriteText(database() + "-wal", "committed rows");
  const auto outcome = test::RunCli({"create", "--app", app});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr(database() + "-wal' exists already"));
  EXPECT_EQ(test::ReadText(database() + "-wal"), "committed rows");
}

TEST_F(CreateCommand, LeavesNothingBesidesTheDatabase) {
  EXPECT_EQ(CreateWith(Masters("no such column\n")).code, 2);
  Create();
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(app)) {
    files.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(files, testing::UnorderedElementsAre("Vardex.ini", "oliva.mdb"));
}

TEST_F(CreateCommand, AMissingMasterStopsBeforeTheDatabaseIsMade) {
  const std::string masters = Masters();
  std::filesystem::remove(masters + "/productos.csv");
  const auto outcome = CreateWith(masters);
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.err,
            "ambrelio: '" + test::Within(masters, "productos.csv") + "' does not exist\n");
  EXPECT_FALSE(std::filesystem::exists(database()));
}

}  // namespace
}  // namespace ambrelio::cli
