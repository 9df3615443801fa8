#include <fstream>
#include <memory>

#include "commands.h"
#include "input_file.h"
#include "journal.h"

namespace ambrelio::cli {
namespace {

constexpr char kJournalDescription[] =
    R"help(Replays a journal: the events of a mill, one JSON object a line.

Examples:
  ambrelio journal --app mill examples/campana/journal.jsonl > results.jsonl
  echo '{"call":"Deposito(3).LitrosActual"}' | ambrelio journal --app mill -

A line is one of
  {"m":"2025-11-03 08:04:09","pesada":{"COOPERATIVA":1,"TOLVA":2,"PARCIALPESO":1840.0}}
  {"m":"2025-11-03 09:30:00","call":"Tolva(2).Descargar","args":[3,1,0.6]}
  {"m":"2025-11-03 09:31:00","let":"Deposito(3).Nombre","value":"Norte"}
  {"m":"2025-11-03 09:31:30","wait":2500}
  {"m":"2025-11-03 09:32:00","sql":"select count(*) from PESADA"}
"m" is the moment that the library's clock shows; without it the clock is the
system's. In "args", null leaves an argument out, and text of the form
YYYY-MM-DD HH:MM:SS is a date where one is wanted. "wait" lets so many
milliseconds pass, in which the level sensors are polled.

A call may keep what it gives under a name, until the end of the replay:
  {"call":"NuevoReferente(1)","as":"r"}
  {"let":"r.Nombre","value":"Aceites del Sur"}
  {"let":"r.Info(2)","value":"mornings only"}
  {"call":"GuardarReferente","args":[1,{"ref":"r"}]}
Paths that begin with the name start there; {"ref":"r"} is the value itself.

Each line gives one: {"result":...}, with "args":[...] when the member changed
one, or {"error":3061,"description":"..."}. A select gives its rows, an action
the number of rows it changed. Empty is {"empty":true}, Nothing {"nothing":true},
an object {"object":"Descarga"}.

A malformed line is reported with its number and nothing of it is carried out;
the replay stops there.
)help";

struct JournalOptions {
  MillOptions mill;
  std::string file;
  bool keep_going = false;
};

void RunJournal(const JournalOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  const bool from_input = options.file == "-";
  std::ifstream file;
  if (!from_input) file = OpenInput("journal", options.file);
  int malformed = 0;
  {
    Mill mill(options.mill, trace.MakeEngine(), context.console);
    const ReplayOptions replay{from_input ? "standard input" : options.file, options.keep_going,
                               /*flush_each=*/from_input};
    malformed = Replay(mill, from_input ? context.console.in : file, replay, context.console);
  }
  trace.Close();
  if (malformed > 0) context.exit_code = ExitCode::kWrongInput;
}

}  // namespace

void AddJournal(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("journal", kJournalDescription);
  auto options = std::make_shared<JournalOptions>();
  AddMillOptions(*command, options->mill)->required();
  command->add_option("FILE", options->file, "The journal, or - for standard input")->required();
  command->add_flag("--keep-going", options->keep_going,
                    "Go on after a malformed line; the exit code is 2 all the same");
  command->callback([options, &context] { RunJournal(*options, context); });
}

}  // namespace ambrelio::cli
