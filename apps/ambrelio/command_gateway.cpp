#include <fmt/format.h>

#include <fstream>
#include <limits>
#include <memory>

#include "ambrelio/platform/interruption.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"
#include "gateway.h"
#include "input_file.h"

namespace ambrelio::cli {
namespace {

constexpr char kGatewayDescription[] =
    R"help(Answers requests for tank levels as a mill's gateway of sensors would.

Examples:
  ambrelio gateway --port 9084 --script answers.jsonl
  ambrelio gateway --port 9084 --script examples/campana/journal.jsonl --json
  echo '{"tank":3,"answer":"12.5"}' | ambrelio gateway --port 9084 --script -

A mill whose Vardex.ini has PortUDP=9084 in its section SENSORES asks "3?" for
the level of tank 3. A line of the script is one answer of a tank:
  {"tank":3,"answer":"12.5"}
  {"tank":3,"answer":"13","delay":300,"copies":2}
  {"tank":4,"silence":true}
  {"tank":5,"answer":"NO"}
  {"tank":6,"bytes":"c3ff00"}
or the line of a journal that enters a level, whose answer is that level; other
lines of a journal are passed over. Each request takes the next answer of its
tank; the last one stays. A tank without lines answers NO: it has no sensor.
"delay" is in milliseconds; "bytes" are hexadecimal.

Each request gives one line. Ends after so many requests as told, or at Ctrl+C.
)help";

// The mill listens at the port above the gateway's.
constexpr int32_t kLastPort = 65534;

struct GatewayOptions {
  int32_t port = 0;
  std::string host = "127.0.0.1";
  std::string script;
  int32_t requests = 0;  // 0 for no end
  bool json = false;
};

GatewayScript ReadScript(const std::string& path, Console& console) {
  if (path == "-") return ReadGatewayScript(console.in, "standard input");
  std::ifstream file = OpenInput("script", path);
  return ReadGatewayScript(file, path);
}

std::string RequestLine(int16_t tank, const GatewayAnswer& answer, bool json) {
  if (json) return JsonLine(ScriptLine(tank, answer)) + '\n';
  return fmt::format("{}? -> {}\n", tank, DescribeAnswer(answer));
}

void Listen(Gateway& gateway, const GatewayOptions& options, Console& console) {
  const std::string place = fmt::format("{}:{}", options.host, options.port);
  try {
    gateway.Listen({options.host, options.port});
  } catch (const AutomationError& error) {
    throw Failure(ExitCode::kAutomationError,
                  fmt::format("the gateway cannot listen on {}: error {}: {}", place,
                              error.number(), error.description()));
  }
  console.err << "listening on " << place << std::endl;
}

void RunGateway(const GatewayOptions& options, Console& console) {
  const Gateway::Listener listener = {
      [&](int16_t tank, const GatewayAnswer& answer) {
        Write(console, RequestLine(tank, answer, options.json));
        Flush(console);
      },
      [&](const std::string& problem) { console.err << "ambrelio: " << problem << std::endl; }};
  Gateway gateway(*console.events, ReadScript(options.script, console), listener);
  const Interruption interruption;
  Listen(gateway, options, console);
  const auto done = [&] {
    const bool enough = options.requests > 0 && gateway.Requests() >= options.requests;
    return interruption.Interrupted() || (enough && !gateway.HasDelayedAnswers());
  };
  console.events->RunUntil(done, Milliseconds::max());
}

}  // namespace

void AddGateway(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("gateway", kGatewayDescription);
  auto options = std::make_shared<GatewayOptions>();
  command->add_option("--port", options->port, "The UDP port to listen at")
      ->required()
      ->check(CLI::Range(1, kLastPort))
      ->type_name("N");
  command->add_option("--host", options->host, "The address to listen at, 127.0.0.1 by default")
      ->type_name("ADDRESS");
  command->add_option("--script", options->script, "The answers, or - for standard input")
      ->required()
      ->type_name("FILE");
  command->add_option("--requests", options->requests, "End after so many requests")
      ->check(CLI::Range(1, std::numeric_limits<int32_t>::max()))
      ->type_name("N");
  command->add_flag("--json", options->json, "Print requests as the lines of a script");
  command->callback([options, &context] { RunGateway(*options, context.console); });
}

}  // namespace ambrelio::cli
