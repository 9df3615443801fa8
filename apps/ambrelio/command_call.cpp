#include <memory>

#include "ambrelio/value/automation_error.h"
#include "arguments.h"
#include "call_report.h"
#include "commands.h"
#include "journal.h"
#include "report.h"

namespace ambrelio::cli {
namespace {

constexpr char kCallDescription[] =
    R"help(Calls one member of the object model and prints what it gives.

Examples:
  ambrelio call --app mill "Deposito(3).Composicion" 1
  ambrelio call --app mill "Deposito(3).Historial" --json
  ambrelio call --app mill "Tolva(2).Descargar" 3 1 0.6
  ambrelio call --app mill "Deposito(3).EntradaNivel" "2025-11-03 12:00:00" - 1500
  ambrelio call --app mill "Deposito(3).NuevoVaciado" 0 500 - '[2,"L-1",7,3,"Jaén"]'

Arguments are numbers with a point, text, dates (YYYY-MM-DD HH:MM:SS), - for one
that is left out, and lists or quoted text in JSON. They may also stand in the
path: "Tolva(2).Descargar(3, 1, 0.6)". Write -- before text that starts with -.
With --json the result is the line that journal gives for the call.
)help";

struct CallOptions {
  MillOptions mill;
  std::string path;
  std::vector<std::string> arguments;
  OutputForm form = OutputForm::kTable;
};

automation::Arguments ParseArguments(const automation::Member& member,
                                     const std::vector<std::string>& texts) {
  automation::Arguments arguments;
  for (size_t i = 0; i < texts.size(); ++i) {
    const auto wanted =
        i < member.arguments.size() ? member.arguments[i].type : automation::ValueType::kVariant;
    arguments.push_back(ParseArgument(texts[i], wanted));
  }
  return arguments;
}

std::string CallText(Mill& mill, const automation::Path& path, const CallOptions& options) {
  const auto owner = automation::Owner(mill.root(), path);
  const auto& member = automation::MemberOf(*owner, path.back().name, automation::Access::kCall);
  const CallLine call = MakeCall(path, ParseArguments(member, options.arguments));
  const auto result = automation::Call(*owner, member, PrepareArguments(member, call.arguments));
  switch (options.form) {
    case OutputForm::kTable:
      return CallReport(owner->ClassName(), member, result);
    case OutputForm::kJson:
      return JsonLine(CallJson(result)) + '\n';
    case OutputForm::kCsv:
      return CallCsv(owner->ClassName(), member, result);
  }
  return {};
}

void RunCall(const CallOptions& options, Context& context) {
  const automation::Path path = ReadPath(options.path);
  TraceFile trace(context.trace_path);
  {
    Mill mill(options.mill, trace.MakeEngine(), context.console);
    try {
      Write(context.console, CallText(mill, path, options));
    } catch (const AutomationError& error) {
      if (options.form == OutputForm::kJson) {
        Write(context.console, JsonLine(ErrorJson(error)) + '\n');
      }
      throw;
    }
  }
  Flush(context.console);
  trace.Close();
}

}  // namespace

void AddCall(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("call", kCallDescription);
  auto options = std::make_shared<CallOptions>();
  AddMillOptions(*command, options->mill)->required();
  command->add_option("PATH", options->path, "The member, as Deposito(3).Nivel(4).Litros")
      ->required();
  command->add_option("ARG", options->arguments, "Its arguments");
  AddOutputOptions(*command, options->form);
  command->callback([options, &context] { RunCall(*options, context); });
}

}  // namespace ambrelio::cli
