#include "ambrelio/platform/clock.h"
#include "ambrelio/value/locale.h"
#include "cli_test.h"
#include "gateway.h"
#include "support/interruptions.h"
#include "support/udp_ports.h"

namespace ambrelio::cli {
namespace {

using testing::StartsWith;

// A mill of three tanks, its gateway and the command on one loop: cycles begin at 2, 3, ... seconds
// and an answer is waited for half a second.
class SensorsCommand : public test::MillCliTest {
 protected:
  SensorsCommand() {
    SetUpIni("MaxTolvas", "4,2,3");
    SetSensors("PortUDP", std::to_string(port));
    SetSensors("TimeOut", "500");
    SetSensors("Periodo", "1000");
  }

  void StartGateway(const std::string& script) {
    std::istringstream lines(script);
    gateway = std::make_unique<Gateway>(
        *events, ReadGatewayScript(lines, "script"),
        Gateway::Listener{[](int16_t, const GatewayAnswer&) {},
                          [](const std::string& problem) { ADD_FAILURE() << problem; }});
    gateway->Listen({"127.0.0.1", port});
  }

  test::Outcome Sensors(std::vector<std::string> more) {
    more.insert(more.begin(), {"sensors", "--app", app});
    return test::RunCli(std::move(more), "", events);
  }

  // What it shows of a script in so many seconds.
  std::string Shown(const std::string& script, const std::string& seconds,
                    std::vector<std::string> more = {}) {
    StartGateway(script);
    more.insert(more.end(), {"--seconds", seconds});
    const auto outcome = Sensors(std::move(more));
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
  }

  const int32_t port = test::FreeUdpPortPair();
  ManualTicks ticks;
  std::shared_ptr<EventLoop> events = std::make_shared<EventLoop>(ticks);
  std::unique_ptr<Gateway> gateway;
  ManualClock clock{*OleDate::FromIso("2026-11-15 08:00:00")};
  ScopedClock scoped_clock{clock};
  ScopedLocale scoped_locale{Locale{}};
};

constexpr char kEveryState[] = R"({"tank":1,"answer":"12.5"}
{"tank":2,"answer":"NO"}
{"tank":3,"answer":"x%$"}
)";

TEST_F(SensorsCommand, ShowsTheFirstAnswerOfEveryTank) {
  EXPECT_EQ(Shown(kEveryState, "60"),
            "2026-11-15 08:00:00  depósito 1  lectura  12.5\n"
            "2026-11-15 08:00:00  depósito 2  sin sensor\n"
            "2026-11-15 08:00:00  depósito 3  error de lectura\n");
  EXPECT_EQ(ticks.Now(), Milliseconds(60000));
}

TEST_F(SensorsCommand, ShowsNothingBeforeTheFirstAnswer) { EXPECT_EQ(Shown(kEveryState, "1"), ""); }

TEST_F(SensorsCommand, ShowsEveryChangeOnce) {
  EXPECT_EQ(Shown(R"({"tank":1,"answer":"12.5"}
{"tank":1,"answer":"12.5"}
{"tank":1,"answer":"13"}
{"tank":1,"answer":"NO"}
{"tank":1,"answer":"no"}
)",
                  "20"),
            "2026-11-15 08:00:00  depósito 1  lectura  12.5\n"
            "2026-11-15 08:00:00  depósito 2  sin sensor\n"
            "2026-11-15 08:00:00  depósito 3  sin sensor\n"
            "2026-11-15 08:00:00  depósito 1  lectura  13\n"
            "2026-11-15 08:00:00  depósito 1  sin sensor\n"
            "2026-11-15 08:00:00  depósito 1  error de lectura\n");
}

TEST_F(SensorsCommand, TheMomentIsThatOfTheChange) {
  events->StartTimer(Milliseconds(2500),
                     [this] { clock.Set(*OleDate::FromIso("2026-11-15 08:00:05")); });
  SetUpIni("MaxTolvas", "4,2,1");
  EXPECT_EQ(Shown("{\"tank\":1,\"answer\":\"1\"}\n{\"tank\":1,\"answer\":\"2\"}\n", "4"),
            "2026-11-15 08:00:00  depósito 1  lectura  1\n"
            "2026-11-15 08:00:05  depósito 1  lectura  2\n");
}

TEST_F(SensorsCommand, SilenceIsAnError) {
  EXPECT_EQ(Shown("{\"tank\":1,\"answer\":\"1\"}\n{\"tank\":2,\"silence\":true}\n", "3"),
            "2026-11-15 08:00:00  depósito 1  lectura  1\n"
            "2026-11-15 08:00:00  depósito 2  error de lectura\n"
            "2026-11-15 08:00:00  depósito 3  sin sensor\n");
}

// An answer does not name its tank.
TEST_F(SensorsCommand, AnAnswerAfterTheTimeOutGoesToTheNextTank) {
  EXPECT_EQ(
      Shown("{\"tank\":1,\"answer\":\"10\",\"delay\":600}\n{\"tank\":2,\"silence\":true}\n", "3"),
      "2026-11-15 08:00:00  depósito 1  error de lectura\n"
      "2026-11-15 08:00:00  depósito 2  lectura  10\n"
      "2026-11-15 08:00:00  depósito 3  sin sensor\n");
}

TEST_F(SensorsCommand, AnAnswerWithinTheTimeOutIsTheTanks) {
  EXPECT_EQ(Shown("{\"tank\":1,\"answer\":\"10\",\"delay\":499}\n", "3"),
            "2026-11-15 08:00:00  depósito 1  lectura  10\n"
            "2026-11-15 08:00:00  depósito 2  sin sensor\n"
            "2026-11-15 08:00:00  depósito 3  sin sensor\n");
}

TEST_F(SensorsCommand, AnAnswerSentTwiceMovesAllByOneTank) {
  EXPECT_EQ(Shown("{\"tank\":1,\"answer\":\"7\",\"copies\":2}\n{\"tank\":2,\"answer\":\"8\"}\n"
                  "{\"tank\":3,\"answer\":\"9\"}\n",
                  "2"),
            "2026-11-15 08:00:00  depósito 1  lectura  7\n"
            "2026-11-15 08:00:00  depósito 2  lectura  7\n"
            "2026-11-15 08:00:00  depósito 3  lectura  8\n");
}

TEST_F(SensorsCommand, PrintsAnObjectALine) {
  EXPECT_EQ(
      Shown(kEveryState, "5", {"--json"}),
      R"({"momento":"2026-11-15 08:00:00","deposito":1,"estado":"hLecturaDisponible","lectura":12.5}
{"momento":"2026-11-15 08:00:00","deposito":2,"estado":"hNoHaySensor","lectura":null}
{"momento":"2026-11-15 08:00:00","deposito":3,"estado":"hErrorLectura","lectura":null}
)");
}

TEST_F(SensorsCommand, PrintsCommaSeparatedValues) {
  EXPECT_EQ(Shown(kEveryState, "5", {"--csv"}),
            "momento,deposito,estado,lectura\r\n"
            "2026-11-15 08:00:00,1,hLecturaDisponible,12.5\r\n"
            "2026-11-15 08:00:00,2,hNoHaySensor,\r\n"
            "2026-11-15 08:00:00,3,hErrorLectura,\r\n");
}

TEST_F(SensorsCommand, AScreenIsATableDrawnAnewInPlace) {
  SetUpIni("MaxTolvas", "4,2,2");
  StartGateway("{\"tank\":1,\"answer\":\"12.5\"}\n");
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  Console console{in, out, err};
  console.is_screen = true;
  console.events = events;
  EXPECT_EQ(cli::Run({"sensors", "--app", app, "--seconds", "60"}, console), ExitCode::kSuccess);
  const std::string heading =
      "Momento              Depósito  Estado      Lectura\n"
      "-------------------  --------  ----------  -------\n";
  EXPECT_EQ(out.str(),
            "Momento  Depósito  Estado  Lectura\n"
            "-------  --------  ------  -------\n"
            "-               1  -       -\n"
            "-               2  -       -\n"
            "\x1b[4A\x1b[J"
            "Momento              Depósito  Estado   Lectura\n"
            "-------------------  --------  -------  -------\n"
            "2026-11-15 08:00:00         1  lectura     12.5\n"
            "-                           2  -              -\n"
            "\x1b[4A\x1b[J" +
                heading +
                "2026-11-15 08:00:00         1  lectura        12.5\n"
                "2026-11-15 08:00:00         2  sin sensor        -\n");
}

TEST_F(SensorsCommand, AScreenGetsLinesForProgramsWhenTold) {
  StartGateway(kEveryState);
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  Console console{in, out, err};
  console.is_screen = true;
  console.events = events;
  EXPECT_EQ(cli::Run({"sensors", "--app", app, "--seconds", "2", "--json"}, console),
            ExitCode::kSuccess);
  EXPECT_THAT(out.str(), StartsWith("{\"momento\":"));
}

TEST_F(SensorsCommand, EndsAtASignal) {
  StartGateway("");
  for (const auto& interrupt : test::Interruptions()) {
    events->StartTimer(Milliseconds(5000), interrupt);
    EXPECT_EQ(Sensors({}).code, 0);
  }
  EXPECT_EQ(ticks.Now(), Milliseconds(10000));
}

TEST_F(SensorsCommand, WithoutSensorsItSaysWhichKeysWouldNameThem) {
  SetSensors("PortUDP", "");
  const auto outcome = Sensors({"--seconds", "5"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err,
            "ambrelio: no sensors are configured: neither ActiveX nor PortUDP is set in section "
            "SENSORES of Vardex.ini\n");
}

TEST_F(SensorsCommand, AnAutomationObjectThatNobodyOffersIsNamed) {
  SetSensors("ActiveX", "Sondas.Lector");
  const auto outcome = Sensors({"--seconds", "5"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err,
            "ambrelio: the automation object 'Sondas.Lector' of the sensors cannot be created\n");
}

TEST_F(SensorsCommand, AHostThatDoesNotResolveIsAnErrorWhenItIsAsked) {
  SetSensors("PortUDP", "sondas.invalid:" + std::to_string(port));
  const auto outcome = Sensors({"--seconds", "5"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "ambrelio: error 11001: Host not found: sondas.invalid\n");
  EXPECT_EQ(ticks.Now(), Milliseconds(2000));
}

TEST_F(SensorsCommand, APortThatIsTakenIsAnError) {
  const auto other = MakeUdpSocket(*events);
  other->Bind({"127.0.0.1", port + 1}, [](const std::string&, const Endpoint&) {});
  const auto outcome = Sensors({"--seconds", "5"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err,
            "ambrelio: error 10048: Address in use: UDP port " + std::to_string(port + 1) + "\n");
}

TEST_F(SensorsCommand, HelpStartsWithExamples) {
  const auto help = test::RunCli({"sensors", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_LT(help.out.find("Examples:"), help.out.find("Usage: ambrelio sensors"));
}

TEST_F(SensorsCommand, WrongArgumentsAreCodeTwo) {
  for (const std::vector<std::string>& more :
       std::vector<std::vector<std::string>>{{"--seconds", "0"},
                                             {"--seconds", "-1"},
                                             {"--seconds", "x"},
                                             {"--json", "--csv"},
                                             {"more"}}) {
    const auto outcome = Sensors(more);
    EXPECT_EQ(outcome.code, 2) << testing::PrintToString(more);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("ambrelio: "));
  }
  EXPECT_EQ(test::RunCli({"sensors"}).code, 2);
}

TEST_F(SensorsCommand, AJournalThatWaitsSeesTheReadings) {
  StartGateway(kEveryState);
  const auto outcome = test::RunCli({"journal", "--app", app, "-"},
                                    R"j({"call":"hayLecturaNivel(1)"}
{"m":"2026-11-15 07:00:00","call":"Tolva(1).Descargar(1,1)"}
{"wait":2000}
{"call":"hayLecturaNivel(1)"}
{"call":"LecturaNivel(1)","as":"level"}
{"call":"Deposito(1).EntradaNivel","args":["2026-11-15 08:00:00",{"ref":"level"},500]}
{"call":"hayLecturaNivel(3)"}
{"call":"LecturaNivel(2)"}
)j",
                                    events);
  EXPECT_EQ(outcome.out,
            "{\"result\":0}\n{\"result\":true}\n{\"result\":{\"empty\":true}}\n{\"result\":3}\n{"
            "\"result\":12.5}\n"
            "{\"result\":true}\n{\"result\":2}\n{\"result\":null}\n");
  EXPECT_EQ(Query("select Nivel from Niveles"), R"({"result":[[12]]})");
}

}  // namespace
}  // namespace ambrelio::cli
