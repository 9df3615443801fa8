#include "gateway.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "failure.h"

namespace ambrelio::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

GatewayScript Script(const std::string& lines) {
  std::istringstream input(lines);
  return ReadGatewayScript(input, "script");
}

// The next `count` answers of a tank, as people see them.
std::vector<std::string> Answers(GatewayScript script, int16_t tank, int count) {
  std::vector<std::string> answers;
  for (int i = 0; i < count; ++i) answers.push_back(DescribeAnswer(script.Next(tank)));
  return answers;
}

TEST(GatewayScript, GivesTheAnswersOfATankInOrderAndTheLastForEver) {
  const GatewayScript script = Script(R"({"tank":3,"answer":"12.5"}
{"tank":4,"answer":"7"}
{"tank":3,"answer":"13"}
)");
  EXPECT_THAT(Answers(script, 3, 4), ElementsAre("12.5", "13", "13", "13"));
  EXPECT_THAT(Answers(script, 4, 2), ElementsAre("7", "7"));
}

TEST(GatewayScript, ATankWithoutLinesHasNoSensor) {
  EXPECT_THAT(Answers(Script(""), 1, 2), ElementsAre("NO", "NO"));
  EXPECT_THAT(Answers(Script("\n  \r\n{\"tank\":2,\"answer\":\"1\"}\n"), 1, 1), ElementsAre("NO"));
}

TEST(GatewayScript, ReadsEveryKindOfAnswer) {
  const GatewayScript script = Script(R"({"tank":1,"answer":"x%$"}
{"tank":1,"answer":""}
{"tank":1,"bytes":"c3FF00"}
{"tank":1,"silence":true}
{"tank":1,"answer":"5","delay":300}
{"tank":1,"answer":"5","copies":2}
{"tank":1,"bytes":"","copies":3,"delay":1}
{"tank":1,"answer":"ñ€"}
)");
  EXPECT_THAT(Answers(script, 1, 8),
              ElementsAre("x%$", "0x", "0xc3ff00", "(silence)", "5 (after 300 ms)", "5 (2 copies)",
                          "0x (after 1 ms, 3 copies)", "0xf180"));
}

TEST(GatewayScript, TakesTheLevelsOfAJournal) {
  const GatewayScript script = Script(R"j({"m":"2025-11-03 23:02:00","pesada":{"TOLVA":1}}
{"m":"2025-11-03 23:02:00","call":"Deposito(2).EntradaNivel","args":[null,805]}
{"tank":2,"answer":"806"}
{"call":"Deposito(2).Entradanivel(, 807.25)"}
{"call":"Trazabilidad.Deposito(2).EntradaNivel","args":["2025-11-03 23:02:00",808.0,5]}
{"call":"Deposito(2).Nombre"}
{"wait":5}
)j");
  EXPECT_THAT(Answers(script, 2, 5), ElementsAre("805", "806", "807.25", "808", "808"));
}

TEST(GatewayScript, PassesReadingsWithoutALevelBy) {
  const GatewayScript script = Script(R"j({"call":"Deposito(2).EntradaNivel","args":[null,-1,500]}
{"call":"Deposito(2).EntradaNivel","args":[null,null,500]}
{"call":"Deposito(2).EntradaNivel"}
{"call":"Deposito(2).EntradaNivel","args":[null,{"ref":"r"}]}
{"call":"Deposito.EntradaNivel","args":[null,1]}
{"call":"Deposito(0).EntradaNivel","args":[null,1]}
{"call":"Deposito(32768).EntradaNivel","args":[null,1]}
{"call":"r.EntradaNivel","args":[null,1]}
{"call":"Deposito(2).EntradaDensidad","args":[0.9,1]}
)j");
  EXPECT_THAT(Answers(script, 2, 1), ElementsAre("NO"));
  EXPECT_THAT(Answers(script, 1, 1), ElementsAre("NO"));
}

TEST(GatewayScript, WritesItsOwnLines) {
  for (const char* line :
       {R"({"tank":3,"answer":"12.5"})", R"({"tank":32767,"answer":"NO","delay":300})",
        R"({"tank":1,"answer":"","copies":2})", R"({"tank":1,"bytes":"c3ff00","delay":2147483647})",
        R"({"tank":4,"silence":true})"}) {
    const auto tank = static_cast<int16_t>(Json::parse(line)["tank"].get<int>());
    GatewayScript script = Script(line);
    EXPECT_EQ(JsonLine(ScriptLine(tank, script.Next(tank))), line);
  }
}

struct MalformedScript {
  const char* name;
  const char* line;
  const char* problem;
};

class MalformedScriptLine : public testing::TestWithParam<MalformedScript> {};

TEST_P(MalformedScriptLine, IsNamedWithItsNumber) {
  try {
    Script("{\"tank\":1,\"answer\":\"NO\"}\n\n" + std::string(GetParam().line) + "\n");
    FAIL() << "accepted";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kWrongInput);
    EXPECT_THAT(failure.what(), testing::StartsWith("script:3: "));
    EXPECT_THAT(failure.what(), HasSubstr(GetParam().problem));
  }
}

INSTANTIATE_TEST_SUITE_P(
    GatewayScript, MalformedScriptLine,
    testing::Values(
        MalformedScript{"NoJson", "tank 3", "not JSON"},
        MalformedScript{"NoObject", "[3]", "a line must be a JSON object"},
        MalformedScript{"NoTank", R"({"answer":"1"})", "\"tank\" is missing"},
        MalformedScript{"TankZero", R"({"tank":0,"answer":"1"})",
                        "\"tank\" must be a whole number from 1 to 32767"},
        MalformedScript{"TankTooHigh", R"({"tank":32768,"answer":"1"})", "\"tank\" must be"},
        MalformedScript{"TankText", R"({"tank":"3","answer":"1"})", "\"tank\" must be"},
        MalformedScript{"TankBroken", R"({"tank":1.5,"answer":"1"})", "\"tank\" must be"},
        MalformedScript{"TankTwice", R"({"tank":1,"tank":1,"answer":"1"})", "given twice"},
        MalformedScript{"NoAnswer", R"({"tank":1})", "one of \"answer\", \"bytes\""},
        MalformedScript{"TwoAnswers", R"({"tank":1,"answer":"1","bytes":"00"})",
                        "both \"answer\" and \"bytes\" are given"},
        MalformedScript{"AnswerNumber", R"({"tank":1,"answer":12.5})", "\"answer\" must be text"},
        MalformedScript{"AnswerOfManyBytes", R"({"tank":1,"answer":"水"})", "Windows-1252"},
        MalformedScript{"BytesOdd", R"({"tank":1,"bytes":"c"})", "two digits for each byte"},
        MalformedScript{"BytesNoDigits", R"({"tank":1,"bytes":"zz"})", "hexadecimal digits"},
        MalformedScript{"BytesNumber", R"({"tank":1,"bytes":12})", "\"bytes\" must be text"},
        MalformedScript{"SilenceFalse", R"({"tank":1,"silence":false})",
                        "\"silence\" must be true"},
        MalformedScript{"SilenceLater", R"({"tank":1,"silence":true,"delay":1})",
                        "the key \"delay\" is unknown beside \"silence\""},
        MalformedScript{"DelayNegative", R"({"tank":1,"answer":"1","delay":-1})",
                        "\"delay\" must be a whole number from 0 to 2147483647"},
        MalformedScript{"DelayText", R"({"tank":1,"answer":"1","delay":"1"})", "\"delay\" must be"},
        MalformedScript{"CopiesZero", R"({"tank":1,"answer":"1","copies":0})",
                        "\"copies\" must be a whole number from 1 to 1000"},
        MalformedScript{"CopiesTooMany", R"({"tank":1,"answer":"1","copies":1001})",
                        "\"copies\" must be"},
        MalformedScript{"UnknownKey", R"({"tank":1,"answer":"1","later":1})",
                        "the key \"later\" is unknown beside \"answer\""},
        MalformedScript{"JournalLine", R"({"call":"Deposito(2"})", "at position 11 of the path"}),
    [](const auto& test) { return test.param.name; });

// A gateway and one who asks it, on one loop.
class AskingAGateway : public testing::Test {
 protected:
  void Start(const std::string& lines) {
    gateway = std::make_unique<Gateway>(
        loop, Script(lines),
        Gateway::Listener{[this](int16_t tank, const GatewayAnswer& answer) {
                            requests.push_back(std::to_string(tank) + " " + DescribeAnswer(answer));
                          },
                          [this](const std::string& problem) { problems.push_back(problem); }});
    gateway->Listen({"127.0.0.1", 0});
    client->Bind({"127.0.0.1", 0}, [this](const std::string& bytes, const Endpoint& sender) {
      answers.push_back(bytes);
      EXPECT_EQ(sender, (Endpoint{"127.0.0.1", gateway->Port()}));
    });
  }

  void Ask(const std::string& request) {
    client->Send({"127.0.0.1", gateway->Port()}, request);
    loop.RunUntilIdle();
  }

  ManualTicks ticks;
  EventLoop loop{ticks};
  std::unique_ptr<DatagramSocket> client = MakeUdpSocket(loop);
  std::unique_ptr<Gateway> gateway;
  std::vector<std::string> answers;   // that came back
  std::vector<std::string> requests;  // as the gateway tells of them
  std::vector<std::string> problems;
};

TEST_F(AskingAGateway, GivesTheNextAnswerOfTheTank) {
  Start("{\"tank\":3,\"answer\":\"12.5\"}\n{\"tank\":3,\"bytes\":\"c3ff00\"}\n");
  Ask("3?");
  Ask("32767?");
  Ask("3?");
  EXPECT_THAT(answers, ElementsAre("12.5", "NO", std::string("\xC3\xFF\0", 3)));
  EXPECT_THAT(requests, ElementsAre("3 12.5", "32767 NO", "3 0xc3ff00"));
  EXPECT_EQ(gateway->Requests(), 3);
}

TEST_F(AskingAGateway, AnswersNothingButRequests) {
  Start("");
  for (const char* text : {"", "?", "3", "0?", "-3?", "+3?", "03?", " 3?", "3 ?", "3?\n", "3??",
                           "32768?", "99999999999?", "3.5?", "tank?"}) {
    Ask(text);
    EXPECT_EQ(problems.size(), 1U) << text;
    problems.clear();
  }
  EXPECT_THAT(answers, IsEmpty());
  EXPECT_THAT(requests, IsEmpty());
  EXPECT_EQ(gateway->Requests(), 0);
}

TEST_F(AskingAGateway, TellsWhatWasNoRequest) {
  Start("");
  Ask("\xC1"
      "a\n");
  Ask(std::string(41, 'x'));
  const std::string sender = "127.0.0.1:" + std::to_string(client->LocalPort());
  EXPECT_THAT(problems,
              ElementsAre("no request from " + sender + ": \"Áa\\n\"",
                          "no request from " + sender + ": \"" + std::string(40, 'x') + "\"..."));
}

TEST_F(AskingAGateway, IsSilent) {
  Start("{\"tank\":3,\"silence\":true}\n");
  Ask("3?");
  EXPECT_THAT(answers, IsEmpty());
  EXPECT_THAT(requests, ElementsAre("3 (silence)"));
  EXPECT_FALSE(gateway->HasDelayedAnswers());
}

TEST_F(AskingAGateway, AnswersAfterTheDelay) {
  Start("{\"tank\":3,\"answer\":\"1\",\"delay\":300}\n{\"tank\":3,\"answer\":\"2\"}\n");
  Ask("3?");
  EXPECT_TRUE(gateway->HasDelayedAnswers());
  Ask("3?");
  EXPECT_THAT(answers, ElementsAre("2"));
  loop.RunFor(Milliseconds(299));
  EXPECT_EQ(answers.size(), 1U);
  loop.RunFor(Milliseconds(1));
  EXPECT_THAT(answers, ElementsAre("2", "1"));
  EXPECT_FALSE(gateway->HasDelayedAnswers());
}

TEST_F(AskingAGateway, SendsCopies) {
  Start("{\"tank\":3,\"answer\":\"1\",\"copies\":3}\n");
  Ask("3?");
  EXPECT_THAT(answers, ElementsAre("1", "1", "1"));
  EXPECT_EQ(gateway->Requests(), 1);
}

TEST_F(AskingAGateway, MayGoBeforeItsAnswersHaveLeft) {
  Start("{\"tank\":3,\"answer\":\"1\",\"delay\":300}\n");
  Ask("3?");
  gateway.reset();
  loop.RunFor(Milliseconds(1000));
  EXPECT_THAT(answers, IsEmpty());
}

TEST_F(AskingAGateway, TellsOfAnAnswerThatCannotBeSentAndGoesOn) {
  Start(R"({"tank":3,"bytes":")" + std::string(2 * 65508, '0') + "\"}\n");
  Ask("3?");
  Ask("4?");
  EXPECT_THAT(problems, ElementsAre(HasSubstr("cannot be sent: error 10040: ")));
  EXPECT_THAT(answers, ElementsAre("NO"));
}

TEST_F(AskingAGateway, RefusesAPortThatIsTaken) {
  Start("");
  Gateway second(loop, Script(""), {});
  try {
    second.Listen({"127.0.0.1", gateway->Port()});
    FAIL() << "listens";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 10048);
  }
}

}  // namespace
}  // namespace ambrelio::cli
