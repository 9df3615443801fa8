#include "run.h"

#include "cli_test.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CommandLine : public test::CliTest {
 protected:
  static std::vector<std::string> Commands() {
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out};
    Context context{console};
    CLI::App app;
    Declare(app, context);
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](CLI::App*) { return true; })) {
      names.push_back(command->get_name());
    }
    return names;
  }
};

TEST_F(CommandLine, HelpStartsWithExamplesAndEndsWithExitCodes) {
  const auto help = test::RunCli({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(help.err, "");
  EXPECT_LT(help.out.find("Examples:"), help.out.find("Usage:"));
  EXPECT_LT(help.out.find("Usage:"), help.out.find("Exit codes:"));
}

TEST_F(CommandLine, HelpListsCommandsInOneLineEach) {
  const auto help = test::RunCli({"--help"});
  EXPECT_THAT(help.out, HasSubstr("Replays a journal: the events of a mill"));
  EXPECT_THAT(help.out, Not(HasSubstr("ambrelio journal --app mill -\n")));
}

TEST_F(CommandLine, EveryCommandHasItsOwnHelp) {
  for (const std::string& command : Commands()) {
    const auto help = test::RunCli({command, "--help"});
    EXPECT_EQ(help.code, 0) << command;
    EXPECT_LT(help.out.find("Examples:"), help.out.find("Usage: ambrelio " + command)) << help.out;
    EXPECT_THAT(help.out, HasSubstr("  ambrelio " + command + " ")) << "no example of its own";
  }
}

TEST_F(CommandLine, TellsItsVersion) {
  const auto version = test::RunCli({"--version"});
  EXPECT_EQ(version.code, 0);
  EXPECT_EQ(version.out, "ambrelio " AMBRELIO_VERSION "\n");
}

TEST_F(CommandLine, WrongArgumentsAreCodeTwo) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"walk"},
      {"create"},
      {"create", "--app"},
      {"create", "--app", app, "more"},
      {"journal", "--app", app},
      {"journal", "--app", app, "a", "b"},
      {"journal", "--app", app, "a", "--fast"},
      {"call", "--app", app},
      {"sql", "--app", app},
      {"sql", "--app", app, "a.mdb", "select 1"},
      {"sql", "select 1"},
      {"sql", "a.mdb", "select 1", "more"},
      {"sql", "a.mdb", "select 1", "--json", "--csv"},
      {"sql", "--app", app, "select 1", "--password", "x"},
      {"--trace"},
      {"frob", "create", "--app", app},
  };
  for (const auto& arguments : wrong) {
    const auto outcome = test::RunCli(arguments);
    EXPECT_EQ(outcome.code, 2) << testing::PrintToString(arguments) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("ambrelio: ")) << testing::PrintToString(arguments);
  }
}

TEST_F(CommandLine, AnUnknownCommandIsNamed) {
  EXPECT_THAT(test::RunCli({"frob"}).err, HasSubstr("not expected: frob"));
}

TEST_F(CommandLine, AMissingApplicationFolderIsAFileProblem) {
  const std::string none = folder.File("none");
  const std::vector<std::vector<std::string>> commands = {{"create", "--app", none},
                                                          {"journal", "--app", none, "-"},
                                                          {"call", "--app", none, "BaseAbierta"},
                                                          {"sql", "--app", none, "select 1"}};
  for (const auto& arguments : commands) {
    const auto outcome = test::RunCli(arguments);
    EXPECT_EQ(outcome.code, 3) << arguments[0];
    EXPECT_EQ(outcome.err, "ambrelio: the application folder '" + none + "' does not exist\n");
  }
}

TEST_F(CommandLine, ADatabaseThatDoesNotOpenSaysWhy) {
  const std::vector<std::vector<std::string>> commands = {{"journal", "--app", app, "-"},
                                                          {"call", "--app", app, "BaseAbierta"},
                                                          {"sql", "--app", app, "select 1"}};
  for (const auto& arguments : commands) {
    const auto outcome = test::RunCli(arguments, "{\"call\":\"BaseAbierta\"}\n");
    EXPECT_EQ(outcome.code, 3) << arguments[0];
    EXPECT_EQ(outcome.out, "") << arguments[0];
    EXPECT_THAT(outcome.err, HasSubstr("'" + database() + "' cannot be opened: error 3024: "))
        << arguments[0];
  }
}

TEST_F(CommandLine, AWrongPasswordIsNamed) {
  SetUpIni("PassworDB", "x" + kestro::Tools::Encode("secreta") + "x");
  Create();
  SetUpIni("PassworDB", "x" + kestro::Tools::Encode("otra") + "x");
  const auto outcome = test::RunCli({"journal", "--app", app, "-"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("error 3031"));
}

TEST_F(CommandLine, ACountBeyondSixteenBitsIsAnAutomationError) {
  SetUpIni("MaxTolvas", "40000");
  for (const auto& arguments : {std::vector<std::string>{"create", "--app", app},
                                std::vector<std::string>{"journal", "--app", app, "-"}}) {
    const auto outcome = test::RunCli(arguments);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, StartsWith("ambrelio: error 6: "));
  }
}

TEST_F(CommandLine, ATraceThatCannotBeWrittenStopsBeforeAnythingRuns) {
  const std::string trace = folder.File("none/trace.jsonl");
  const auto outcome = test::RunCli({"--trace", trace, "create", "--app", app});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("the trace file '" + trace + "' cannot be written: No such"));
  EXPECT_FALSE(std::filesystem::exists(database()));
}

TEST_F(CommandLine, ATraceReplacesNothingButAnEarlierTrace) {
  Create();
  const std::string before = test::ReadText(database());
  const std::string journal = folder.File("journal.jsonl");
  const std::string line = "{\"sql\":\"select \\\"us\\\":1\"}\n";
  test::WriteText(journal, line);
  for (const std::string& precious : {database(), journal}) {
    const auto outcome = test::RunCli({"--trace", precious, "sql", "--app", app, "select 1"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "ambrelio: '" + precious + "' exists already and is no trace; it is left as it is\n");
  }
  EXPECT_EQ(test::ReadText(database()), before);
  EXPECT_EQ(test::ReadText(journal), line);
}

TEST_F(CommandLine, ATraceThatDoesNotFitIsAnError) {
  Create();
  const auto outcome =
      test::RunCli({"--trace", "/dev/full", "call", "--app", app, "Deposito(1).Nombre"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_THAT(outcome.err, HasSubstr("/dev/full"));
}

TEST_F(CommandLine, EveryCommandWritesItsStatementsToTheTrace) {
  const std::string trace = folder.File("trace.jsonl");
  const auto traced = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--trace", trace});
    const auto outcome = test::RunCli(arguments, "{\"call\":\"Deposito(2).Nombre\"}\n");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return test::ReadText(trace);
  };
  test::RunCli({"--trace", trace, "create", "--app", app});
  EXPECT_TRUE(std::filesystem::exists(trace));
  EXPECT_THAT(traced({"journal", "--app", app, "-"}),
              HasSubstr("\"select Nombre from Depositos where Codigo=2\""));
  EXPECT_THAT(traced({"call", "--app", app, "Deposito(3).Nombre"}),
              HasSubstr("\"select Nombre from Depositos where Codigo=3\""));
  EXPECT_THAT(traced({"sql", "--app", app, "delete from SOCIO"}),
              HasSubstr("{\"sql\":\"delete from SOCIO\",\"affected\":0,"));
}

}  // namespace
}  // namespace ambrelio::cli
