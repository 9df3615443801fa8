// The program itself, as a shell runs it.
#include <sys/wait.h>

#include <cstdlib>

#include "cli_test.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;

class Program : public test::MillCliTest {
 protected:
  // Runs a shell command in which $AMBRELIO and $APP stand for the program and the application
  // folder; standard error is caught unless the command sends it elsewhere.
  test::Outcome Shell(const std::string& command) {
    const std::string out = folder.File("out");
    const std::string err = folder.File("err");
    const std::string whole = "AMBRELIO='" AMBRELIO_PROGRAM "'; APP='" + app + "'; { " + command +
                              "; } > '" + out + "' 2> '" + err + "'";
    const int status = std::system(whole.c_str());
    return {WEXITSTATUS(status), test::ReadText(out), test::ReadText(err)};
  }
};

TEST_F(Program, RunsACommand) {
  const auto outcome = Shell("$AMBRELIO call --app $APP MaximoTolvas");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "4\n");
}

TEST_F(Program, GivesTheExitCodes) {
  EXPECT_EQ(Shell("$AMBRELIO call --app $APP 'Deposito(99).Nombre'").code, 1);
  EXPECT_EQ(Shell("$AMBRELIO walk").code, 2);
  EXPECT_EQ(Shell("$AMBRELIO create --app $APP").code, 3);
}

TEST_F(Program, AnswersEachLineOfAPipeAtOnce) {
  // The reader of the results feeds the next line only after the first result came.
  const auto outcome = Shell(
      "cd '" + folder.path() +
      "'; mkfifo in; $AMBRELIO journal --app $APP - < in | "
      "{ exec 3> in; echo '{\"call\":\"MaximoTolvas\"}' >&3; read first; "
      "echo '{\"call\":\"BaseAbierta\"}' >&3; exec 3>&-; read second; echo \"$first $second\"; }");
  EXPECT_EQ(outcome.out, "{\"result\":4} {\"result\":true}\n");
}

TEST_F(Program, AFullDiskIsNamed) {
  const auto outcome = Shell("$AMBRELIO call --app $APP MaximoTolvas > /dev/full");
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(
      outcome.err,
      "ambrelio: the results cannot be written to standard output: No space left on device\n");
}

TEST_F(Program, AFullDiskUnderHelpIsNamed) {
  const auto outcome = Shell("$AMBRELIO --help > /dev/full");
  EXPECT_EQ(outcome.code, 3);
}

TEST_F(Program, ACreationThatIsKilledLeavesNoHalfDatabase) {
  // The limit for the size of files kills the program while it fills the database.
  const auto outcome = Shell(
      "rm $APP/oliva.mdb; (ulimit -c 0; ulimit -f 100; exec $AMBRELIO create --app $APP "
      "--masters '" AMBRELIO_SOURCE_DIR
      "/examples/campana'); test $? -gt 128 && "
      "test ! -e $APP/oliva.mdb && $AMBRELIO create --app $APP");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(Query("select * from SOCIO"), R"({"result":[]})");
}

TEST_F(Program, AReaderThatWentAwayIsNamed) {
  const auto outcome = Shell(
      "{ for i in $(seq 60); do sleep 0.05; echo '{\"call\":\"MaximoTolvas\"}'; done | "
      "$AMBRELIO journal --app $APP -; echo code $? >&2; } | head -n 1");
  EXPECT_THAT(outcome.err, HasSubstr("Broken pipe\ncode 3\n"));
}

TEST_F(Program, ReplaysTheBeginningOfTheExampleSeasonWithoutAnError) {
  SetUpIni("MaxTolvas", "4,2,12");
  const auto outcome = Shell("head -n 1500 '" AMBRELIO_SOURCE_DIR
                             "/examples/campana/journal.jsonl' | $AMBRELIO journal --app $APP -");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.lines().size(), 1500U);
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("\"error\"")));

  EXPECT_EQ(Shell("$AMBRELIO deposito --app $APP --csv").lines().size(), 13U);
  EXPECT_EQ(Shell("$AMBRELIO deposito --app $APP 9 --por socio --csv").out,
            Shell("$AMBRELIO call --app $APP 'Deposito(9).Composicion' 1 --csv").out);
  EXPECT_EQ(Shell("$AMBRELIO historia niveles --app $APP --desde 2025-11-01 --hasta 2025-11-15 "
                  "--deposito 9 --csv | tail -n +2")
                .lines()
                .size(),
            std::stoul(Shell("$AMBRELIO sql --app $APP \"select count(*) from Niveles where "
                             "Deposito=9 and Momento between #11/1/2025# and #11/16/2025#\" "
                             "--csv | tail -n 1")
                           .out));
}

}  // namespace
}  // namespace ambrelio::cli
