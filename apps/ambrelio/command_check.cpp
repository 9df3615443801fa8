#include <algorithm>
#include <memory>

#include "ambrelio/engine/check.h"
#include "ambrelio/value/automation_error.h"
#include "commands.h"
#include "report.h"

namespace ambrelio::cli {
namespace {

constexpr char kCheckDescription[] =
    R"help(Checks a database file, and prints what is wrong with it.

Examples:
  ambrelio check oliva.mdb
  ambrelio check oliva.mdb --password secreta --json

A file of the embedded engine is checked by SQLite, and its catalogue beside the
tables it describes. A file of Jet (Access 97 to 2003) is held against the rules
of its format: the owners of all pages, definitions, rows, long values, counters,
indexes with their keys, catalogue. A finding names page and offset where they
are known. The file is only read.

The exit code is 0 for a sound file, 1 when there are findings, 3 for a file that
cannot be opened at all.
)help";

struct CheckOptions {
  std::string file;
  std::string password;
  OutputForm form = OutputForm::kTable;
};

template <class T>
Variant NumberOrNull(const std::optional<T>& number) {
  if (!number) return Variant::Null();
  return static_cast<int32_t>(std::min<uint64_t>(*number, INT32_MAX));
}

Report FindingsReport(const std::vector<engine::CheckFinding>& findings) {
  Report report{
      {{"pagina", "Página"}, {"desplazamiento", "Desplazamiento"}, {"hallazgo", "Hallazgo"}}, {}};
  for (const engine::CheckFinding& finding : findings) {
    report.rows.push_back(
        {NumberOrNull(finding.page), NumberOrNull(finding.offset), Variant(finding.text)});
  }
  return report;
}

std::vector<engine::CheckFinding> Check(const CheckOptions& options) {
  try {
    return engine::CheckFile(options.file, options.password);
  } catch (const AutomationError& error) {
    throw Failure(ExitCode::kFileProblem, error.description());
  }
}

void RunCheck(const CheckOptions& options, Context& context) {
  const auto findings = Check(options);
  if (findings.empty() && options.form == OutputForm::kTable) {
    Write(context.console, "Sin hallazgos\n");
  } else {
    Write(context.console, Render(FindingsReport(findings), options.form));
  }
  Flush(context.console);
  if (!findings.empty()) context.exit_code = ExitCode::kAutomationError;
}

}  // namespace

void AddCheck(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("check", kCheckDescription);
  auto options = std::make_shared<CheckOptions>();
  command->add_option("FILE", options->file, "The database")->required();
  command->add_option("--password", options->password, "Password of FILE");
  AddOutputOptions(*command, options->form);
  command->callback([options, &context] { RunCheck(*options, context); });
}

}  // namespace ambrelio::cli
