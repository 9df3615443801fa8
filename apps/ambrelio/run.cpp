#include "run.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "ambrelio/value/automation_error.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

constexpr char kProgramDescription[] = R"help(Ambrelio keeps the traceability of an olive-oil mill.

Examples:
  ambrelio create --app mill --masters examples/campana
  ambrelio journal --app mill examples/campana/journal.jsonl > results.jsonl
  ambrelio call --app mill "Deposito(3).Composicion" 1
  ambrelio deposito --app mill 3 --por socio
  ambrelio historia vaciados --app mill --desde 2025-11-01 --csv
  ambrelio sql --app mill "select * from Depositos" --csv
  ambrelio --trace statements.jsonl call --app mill "Deposito(3).LitrosActual"
)help";

constexpr char kFooter[] = R"help("ambrelio COMMAND --help" tells more of a command.

Exit codes:
  0  done
  1  the library or the database engine raised an error; check: something is wrong;
     convert: something could not be copied
  2  wrong arguments, or malformed input
  3  a file, folder or database cannot be read, written or opened)help";

// Lists a subcommand by the first line of its description; the rest is for its own help.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_subcommand(const CLI::App* command) const override {
    const std::string description = command->get_description();
    std::ostringstream line;
    CLI::detail::format_help(line, command->get_name(),
                             description.substr(0, description.find('\n')), column_width_);
    return line.str();
  }
};

// For an argument that may be repeated, CLI11 takes [1,2] apart. A blank in front keeps the list of
// a call whole and means nothing to JSON.
void KeepListsWhole(std::vector<std::string>& arguments) {
  const auto call = std::find(arguments.begin(), arguments.end(), "call");
  for (auto argument = call; argument != arguments.end(); ++argument) {
    if (!argument->starts_with('[')) continue;
    const std::string& before = *(argument - 1);
    if (before != "--app" && before != "--trace") argument->insert(0, " ");
  }
}

// Help and version are no failures: CLI11 reports them as exceptions with code 0.
ExitCode TellParseError(const CLI::App& app, const CLI::ParseError& error, Console& console) {
  if (error.get_exit_code() == 0) {
    app.exit(error, console.out, console.err);
    Flush(console);
    return ExitCode::kSuccess;
  }
  console.err << fmt::format("ambrelio: {}\nTry ambrelio --help.\n", error.what());
  return ExitCode::kWrongInput;
}

}  // namespace

void Declare(CLI::App& app, Context& context) {
  app.description(kProgramDescription);
  app.set_version_flag("--version", "ambrelio " AMBRELIO_VERSION);
  app.add_option("--trace", context.trace_path,
                 "Write every statement sent to the engine to a file, one JSON object a line")
      ->type_name("FILE");
  app.allow_windows_style_options(false);
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kFooter);
  app.fallthrough();
  // Not required of the parser, which would not name a command that it does not know.
  app.callback([&app] {
    if (app.get_subcommands().empty()) throw CLI::RequiredError::Subcommand(1);
  });
  AddCreate(app, context);
  AddJournal(app, context);
  AddCall(app, context);
  AddSql(app, context);
  AddCheck(app, context);
  AddConvert(app, context);
  AddSensors(app, context);
  AddGateway(app, context);
  AddDeposito(app, context);
  AddVaciado(app, context);
  AddTolva(app, context);
  AddDescarga(app, context);
  AddHistoria(app, context);
  AddReferentes(app, context);
  AddPassword(app, context);
}

CLI::Option* AddMillOptions(CLI::App& command, MillOptions& options) {
  command.add_flag("--vardex3", options.vardex3,
                   "The host is the networked edition: settings come from its network folder");
  return command.add_option("--app", options.app, "The mill's application folder, with CLIEN.INI")
      ->type_name("DIR");
}

ExitCode Run(std::vector<std::string> arguments, Console& console) {
  Context context{console};
  CLI::App app("", "ambrelio");
  try {
    Declare(app, context);
    KeepListsWhole(arguments);
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes them from the end
    try {
      app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
      return TellParseError(app, error, console);
    }
    return context.exit_code;
  } catch (const Failure& failure) {
    console.err << fmt::format("ambrelio: {}\n", failure.what());
    return failure.code();
  } catch (const AutomationError& error) {
    console.err << fmt::format("ambrelio: error {}: {}\n", error.number(), error.description());
    return ExitCode::kAutomationError;
  } catch (const std::exception& error) {
    console.err << fmt::format("ambrelio: {}\n", error.what());
    return ExitCode::kAutomationError;
  }
}

}  // namespace ambrelio::cli
