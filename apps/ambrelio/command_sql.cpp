#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "ambrelio/engine/engine.h"
#include "ambrelio/engine/explain.h"
#include "commands.h"
#include "plan_report.h"
#include "report.h"
#include "statement.h"
#include "table.h"

namespace ambrelio::cli {
namespace {

constexpr char kSqlDescription[] = R"help(Runs one SQL statement on a database.

Examples:
  ambrelio sql --app mill "select * from Depositos"
  ambrelio sql oliva.mdb "select TOLVA, sum(PARCIALPESO) from PESADA group by TOLVA" --csv
  ambrelio sql oliva.mdb --password secreta "update SOCIO set NOMSOC='Ana' where CODSOC=7"
  ambrelio sql --app mill --plan "select sum(PARCIALPESO) from ExtPesada where TOLVA=1"

A select, a union, or the name of a table or stored query gives its rows; an
action query the number of rows it changed. With --json that is the line that
journal gives. The database is opened as it is, without bringing it up to the
library's schema.

With --plan the statement is not carried out: shown is how the embedded engine
would go about it, with the rewrites it makes, the SQL that reaches SQLite, and
SQLite's plans. AMBRELIO_WITHOUT_REWRITES turns rewrites off, by a list of their
names or all. The database is opened for reading.
)help";

struct SqlOptions {
  MillOptions mill;
  std::string file;
  std::string statement;
  std::string password;
  bool plan = false;
  OutputForm form = OutputForm::kTable;
};

std::string CsvText(const StatementResult& result) {
  if (!result.has_rows) return CsvLine({"affected"}) + CsvLine({result.affected});
  std::string text = CsvLine({result.columns.begin(), result.columns.end()});
  for (const std::vector<Variant>& row : result.rows) text += CsvLine(row);
  return text;
}

std::string TableText(const StatementResult& result) {
  if (!result.has_rows) return fmt::format("Filas afectadas: {}\n", result.affected);
  Table table(result.columns);
  for (const std::vector<Variant>& row : result.rows) {
    std::vector<Table::Cell> cells(row.size());
    std::transform(row.begin(), row.end(), cells.begin(),
                   [](const Variant& value) { return CellOf(value); });
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

std::string Text(const StatementResult& result, OutputForm form) {
  if (form == OutputForm::kJson) return JsonLine(StatementJson(result)) + '\n';
  return form == OutputForm::kCsv ? CsvText(result) : TableText(result);
}

frame::DatabaseSettings WhichDatabase(Session& session, const SqlOptions& options) {
  if (!options.mill.app.empty()) return ReadSettings(session, options.mill);
  return {options.file, options.password};
}

// With --app, the first argument that stands alone is the statement already.
SqlOptions CheckArguments(SqlOptions options) {
  const bool has_app = !options.mill.app.empty();
  if (has_app && options.statement.empty()) options.file.swap(options.statement);
  if (options.statement.empty() || has_app != options.file.empty()) {
    throw Failure(ExitCode::kWrongInput, has_app ? "with --app, one statement is expected"
                                                 : "a database and one statement are expected");
  }
  if (has_app && !options.password.empty()) {
    throw Failure(ExitCode::kWrongInput, "--password goes with a database file, not with --app");
  }
  if (options.plan && options.form == OutputForm::kCsv) {
    throw Failure(ExitCode::kWrongInput, "--plan has no form as --csv");
  }
  return options;
}

void RunPlan(const SqlOptions& options, Context& context) {
  // Nothing is sent to the engine: its trace would be empty, and an engine that is traced does not
  // explain.
  TraceFile trace(context.trace_path);
  Session session;
  session.UseEngine(engine::Create());
  const auto database =
      OpenDatabase(session, WhichDatabase(session, options), Opening::kForReading);
  const embedded::Explanation explanation = engine::Explain(*database, options.statement);
  database->Close();
  Write(context.console, options.form == OutputForm::kJson ? JsonLine(PlanJson(explanation)) + '\n'
                                                           : PlanText(explanation));
  Flush(context.console);
  trace.Close();
}

void RunSql(const SqlOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  Session session;
  session.UseEngine(trace.MakeEngine());
  const auto database = OpenDatabase(session, WhichDatabase(session, options));
  const StatementResult result = RunStatement(*database, options.statement);
  database->Close();
  Write(context.console, Text(result, options.form));
  Flush(context.console);
  trace.Close();
}

}  // namespace

void AddSql(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("sql", kSqlDescription);
  auto options = std::make_shared<SqlOptions>();
  AddMillOptions(*command, options->mill);
  command->add_option("FILE", options->file, "The database; not with --app");
  command->add_option("STATEMENT", options->statement, "The statement");
  command->add_option("--password", options->password, "Password of FILE");
  command->add_flag("--plan", options->plan, "Show how the statement would be carried out");
  AddOutputOptions(*command, options->form);
  command->callback([options, &context] {
    const SqlOptions checked = CheckArguments(*options);
    if (checked.plan) return RunPlan(checked, context);
    RunSql(checked, context);
  });
}

}  // namespace ambrelio::cli
