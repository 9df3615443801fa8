#include <memory>

#include "ambrelio/engine/convert.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"

namespace ambrelio::cli {
namespace {

constexpr char kConvertDescription[] =
    R"help(Copies a database into a new file, of its own form or the other.

Examples:
  ambrelio convert oliva.mdb oliva.sqlite
  ambrelio convert oliva.sqlite copia.mdb --password secreta

The new file is one of Jet (Access 2000 to 2003) when its name ends in .mdb, and
one of the embedded engine otherwise. Tables go along with their rows, rules and
indexes, and so do stored queries and the password. What cannot go along is
printed: columns of types that are not known here, linked tables, relationships.
The old file is only read, and the new one must not exist yet.

The exit code is 0 when everything went along, 1 when something did not, 3 when a
file cannot be opened, read or made.
)help";

struct ConvertOptions {
  std::string from;
  std::string to;
  std::string password;
};

std::vector<std::string> Convert(const ConvertOptions& options) {
  try {
    return engine::Convert(options.from, options.to, options.password);
  } catch (const AutomationError& error) {
    throw Failure(ExitCode::kFileProblem, error.description());
  }
}

void RunConvert(const ConvertOptions& options, Context& context) {
  const std::vector<std::string> left_out = Convert(options);
  for (const std::string& what : left_out) {
    Write(context.console, "No se ha copiado: " + what + "\n");
  }
  Flush(context.console);
  if (!left_out.empty()) context.exit_code = ExitCode::kAutomationError;
}

}  // namespace

void AddConvert(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("convert", kConvertDescription);
  auto options = std::make_shared<ConvertOptions>();
  command->add_option("FROM", options->from, "The database that is copied")->required();
  command->add_option("TO", options->to, "The new file")->required();
  command->add_option("--password", options->password, "Password of FROM");
  command->callback([options, &context] { RunConvert(*options, context); });
}

}  // namespace ambrelio::cli
