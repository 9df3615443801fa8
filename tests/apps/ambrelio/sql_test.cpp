#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SqlCommand : public test::MillCliTest {
 protected:
  void SetUp() override {
    MillCliTest::SetUp();
    Out({"insert into SOCIO (CODSOC, NOMSOC) values (7, 'Núñez, \"el Alto\"')"});
    Out({"insert into SOCIO (CODSOC, NOMSOC) values (12, Null)"});
    Out({"insert into SOCIO (CODSOC, NOMSOC) values (13, '')"});
  }
  std::string Out(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"sql", database()});
    const auto outcome = test::RunCli(std::move(arguments));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.out;
  }
};

TEST_F(SqlCommand, PrintsATable) {
  EXPECT_EQ(Out({"select CODSOC, NOMSOC from SOCIO where CODSOC<13 order by CODSOC"}),
            "CODSOC  NOMSOC\n"
            "------  ----------------\n"
            "     7  Núñez, \"el Alto\"\n"
            "    12  (nulo)\n");
}

TEST_F(SqlCommand, PrintsTheHeadingsOfNoRows) {
  EXPECT_EQ(Out({"select CODSOC from SOCIO where CODSOC=1"}), "CODSOC\n------\n");
}

TEST_F(SqlCommand, PrintsRowsAffected) {
  EXPECT_EQ(Out({"update SOCIO set NOMSOC='Ana' where CODSOC>7"}), "Filas afectadas: 2\n");
}

TEST_F(SqlCommand, PrintsJson) {
  EXPECT_EQ(Out({"select * from SOCIO order by CODSOC", "--json"}),
            R"({"result":[[7,"Núñez, \"el Alto\""],[12,null],[13,""]]})"
            "\n");
  EXPECT_EQ(Out({"delete from SOCIO", "--json"}), "{\"result\":3}\n");
}

TEST_F(SqlCommand, PrintsCsvAsTheStandardHasIt) {
  EXPECT_EQ(Out({"select NOMSOC, CODSOC from SOCIO order by CODSOC", "--csv"}),
            "NOMSOC,CODSOC\r\n"
            "\"Núñez, \"\"el Alto\"\"\",7\r\n"
            ",12\r\n"
            "\"\",13\r\n");
  EXPECT_EQ(Out({"delete from SOCIO", "--csv"}), "affected\r\n3\r\n");
}

TEST_F(SqlCommand, TakesTheDatabaseOfAMill) {
  const auto outcome = test::RunCli({"sql", "--app", app, "select count(*) as n from SOCIO"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "n\n-\n3\n");
}

TEST_F(SqlCommand, AStatementMayStartWithABracketOrBlanks) {
  EXPECT_THAT(Out({"  \n select CODSOC from [SOCIO] where [CODSOC]=7"}), HasSubstr("7"));
}

TEST_F(SqlCommand, AnEngineErrorIsCodeOne) {
  const auto outcome = test::RunCli({"sql", database(), "select * from Nada"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, StartsWith("ambrelio: error 3078: "));
}

TEST_F(SqlCommand, AMissingDatabaseIsAFileProblem) {
  const auto outcome = test::RunCli({"sql", folder.File("none.mdb"), "select 1"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("cannot be opened: error 3024: "));
}

TEST_F(SqlCommand, AFileThatIsNoDatabaseIsAFileProblem) {
  const std::string file = folder.File("notes.mdb");
  test::WriteText(file, std::string(5000, 'x'));
  const auto outcome = test::RunCli({"sql", file, "select 1"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("cannot be opened: error 3343: "));
}

}  // namespace
}  // namespace ambrelio::cli
