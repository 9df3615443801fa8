#include "ambrelio/value/automation_error.h"
#include "gateway_fixture.h"

namespace ambrelio::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(GatewayCommand, PrintsALineForEachRequest) {
  int moment = 0;
  for (const char* request : {"3?", "4?", "5?", "6?", "7?", "3?"}) {
    AskAt(Milliseconds(++moment), request);
  }
  const auto outcome = Gateway(kGatewayScript, {"--requests", "6"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.out,
            "3? -> 12.5\n4? -> (silence)\n5? -> NO\n6? -> 0xc3ff00\n7? -> 805\n"
            "3? -> 13 (after 300 ms, 2 copies)\n");
  EXPECT_EQ(outcome.err, Listening());
}

TEST_F(GatewayCommand, PrintsTheLinesOfAScriptAsJson) {
  int moment = 0;
  for (const char* request : {"3?", "4?", "6?", "3?"}) AskAt(Milliseconds(++moment), request);
  const auto outcome = Gateway(kGatewayScript, {"--requests", "4", "--json"});
  EXPECT_EQ(outcome.out,
            "{\"tank\":3,\"answer\":\"12.5\"}\n{\"tank\":4,\"silence\":true}\n"
            "{\"tank\":6,\"bytes\":\"c3ff00\"}\n"
            "{\"tank\":3,\"answer\":\"13\",\"delay\":300,\"copies\":2}\n");
}

TEST_F(GatewayCommand, EndsWhenTheLastAnswerHasLeft) {
  AskAt(Milliseconds(1), "3?");
  const auto outcome =
      Gateway("{\"tank\":3,\"answer\":\"1\",\"delay\":300}\n", {"--requests", "1"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(ticks.Now(), Milliseconds(301));
  events->RunUntilIdle();
  EXPECT_THAT(answers, ElementsAre("1"));
}

TEST_F(GatewayCommand, TellsWhatWasNoRequestAndDoesNotCountIt) {
  AskAt(Milliseconds(1), "hello");
  AskAt(Milliseconds(2), "3?");
  const auto outcome = Gateway("", {"--requests", "1"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.out, "3? -> NO\n");
  EXPECT_EQ(outcome.err, Listening() + "ambrelio: no request from 127.0.0.1:" +
                             std::to_string(client->LocalPort()) + ": \"hello\"\n");
  events->RunUntilIdle();
  EXPECT_THAT(answers, ElementsAre("NO"));
}

TEST_F(GatewayCommand, FollowsTheExampleSeason) {
  AskAt(Milliseconds(1), "2?");
  AskAt(Milliseconds(2), "7?");
  const auto outcome = test::RunCli({"gateway", "--port", Port(), "--requests", "2", "--script",
                                     AMBRELIO_SOURCE_DIR "/examples/campana/journal.jsonl"},
                                    "", events);
  EXPECT_EQ(outcome.out, "2? -> 805\n7? -> 1026\n");
}

TEST_F(GatewayCommand, AMalformedScriptIsNamedWithItsLine) {
  const auto outcome = Gateway("{\"tank\":1,\"answer\":\"1\"}\n{\"tank\":0,\"answer\":\"1\"}\n");
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err,
            "ambrelio: standard input:2: \"tank\" must be a whole number from 1 to 32767\n");
  const std::string file = folder.File("script.jsonl");
  test::WriteText(file, "nonsense\n");
  const auto from_file = test::RunCli({"gateway", "--port", Port(), "--script", file});
  EXPECT_EQ(from_file.code, 2);
  EXPECT_THAT(from_file.err, StartsWith("ambrelio: " + file + ":1: not JSON"));
}

TEST_F(GatewayCommand, AScriptThatCannotBeReadIsAFileProblem) {
  const std::string none = folder.File("none");
  const auto outcome = test::RunCli({"gateway", "--port", Port(), "--script", none});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.err,
            "ambrelio: the script '" + none + "' cannot be read: No such file or directory\n");
}

TEST_F(GatewayCommand, APortThatIsTakenIsNamed) {
  const auto other = MakeUdpSocket(*events);
  other->Bind({"127.0.0.1", port}, [](const std::string&, const Endpoint&) {});
  const auto outcome = Gateway("");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "ambrelio: the gateway cannot listen on 127.0.0.1:" + Port() +
                             ": error 10048: Address in use: UDP port " + Port() + "\n");
}

TEST_F(GatewayCommand, AHostThatDoesNotResolveIsNamed) {
  const auto outcome = Gateway("", {"--host", "gateway.invalid"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "ambrelio: the gateway cannot listen on gateway.invalid:" + Port() +
                             ": error 11001: Host not found: gateway.invalid\n");
}

TEST_F(GatewayCommand, HelpStartsWithExamples) {
  const auto help = test::RunCli({"gateway", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_LT(help.out.find("Examples:"), help.out.find("Usage: ambrelio gateway"));
}

TEST_F(GatewayCommand, WrongArgumentsAreCodeTwo) {
  const std::vector<std::vector<std::string>> wrong = {
      {"gateway", "--script", "-"},
      {"gateway", "--port", Port()},
      {"gateway", "--port", "0", "--script", "-"},
      {"gateway", "--port", "65535", "--script", "-"},
      {"gateway", "--port", "65536", "--script", "-"},
      {"gateway", "--port", "-1", "--script", "-"},
      {"gateway", "--port", "http", "--script", "-"},
      {"gateway", "--port", Port(), "--script", "-", "--requests", "0"},
      {"gateway", "--port", Port(), "--script", "-", "--requests", "all"},
      {"gateway", "--port", Port(), "--script", "-", "more"},
      {"gateway", "--port", Port(), "--script", "-", "--csv"},
  };
  for (const auto& arguments : wrong) {
    const auto outcome = test::RunCli(arguments);
    EXPECT_EQ(outcome.code, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("ambrelio: ")) << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, testing::Not(HasSubstr("listening")));
  }
}

TEST_F(GatewayCommand, OutputThatFailsEndsIt) {
  AskAt(Milliseconds(1), "3?");
  std::istringstream in;
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  std::ostringstream err;
  Console console{in, out, err};
  console.events = events;
  EXPECT_EQ(cli::Run({"gateway", "--port", Port(), "--script", "-"}, console),
            ExitCode::kFileProblem);
  EXPECT_THAT(err.str(), HasSubstr("cannot be written to standard output"));
}

TEST_F(GatewayProgram, AnswersAndEndsAfterItsRequests) {
  const auto child = Start({"--requests", "2"});
  EXPECT_EQ(Ask("3?"), "12.5");
  std::string line;
  ASSERT_TRUE(child->ReadLine(line)) << "each line comes at once";
  EXPECT_EQ(line, "3? -> 12.5");
  EXPECT_EQ(Ask("7?"), "805");
  ASSERT_TRUE(child->ReadLine(line));
  EXPECT_EQ(line, "7? -> 805");
  EXPECT_EQ(child->Wait(), 0);
}

}  // namespace
}  // namespace ambrelio::cli
