#include "journal.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "ambrelio/platform/clock.h"
#include "arguments.h"
#include "failure.h"
#include "statement.h"

namespace ambrelio::cli {
namespace {

using automation::Access;

Json ArgumentsJson(const automation::Arguments& arguments) {
  Json json = Json::array();
  for (const auto& argument : arguments) json.push_back(argument ? ToJson(*argument) : Json());
  return json;
}

Json CarryOut(Mill& mill, const WeighingLine& weighing) {
  host::StoreWeighing(mill.session(), weighing.columns);
  return {{"result", true}};
}

Json CarryOut(Mill& mill, const CallLine& call) {
  const auto owner = automation::Owner(mill.root(), call.path);
  const auto& member = automation::MemberOf(*owner, call.path.back().name, Access::kCall);
  return CallJson(automation::Call(*owner, member, PrepareArguments(member, call.arguments)));
}

Json CarryOut(Mill& mill, const LetLine& let) {
  const auto owner = automation::Owner(mill.root(), let.path);
  const auto& member = automation::MemberOf(*owner, let.path.back().name, Access::kLet);
  automation::Call(*owner, member, PrepareArguments(member, {let.value}));
  return {{"result", ToJson(Variant())}};
}

Json CarryOut(Mill& mill, const SqlLine& sql) {
  return StatementJson(RunStatement(mill.session().Database(), sql.statement));
}

// Shows on a terminal how far the replay is.
class Progress {
 public:
  explicit Progress(Console& console) : console_(console) {}
  ~Progress() {
    if (shown_) console_.err << "\r\x1b[K" << std::flush;
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(size_t lines) {
    constexpr size_t kEvery = 100;
    if (!console_.shows_progress || lines % kEvery != 0) return;
    console_.err << fmt::format("\r{} lines", lines) << std::flush;
    shown_ = true;
  }

 private:
  Console& console_;
  bool shown_ = false;
};

}  // namespace

Json CallJson(const automation::CallResult& call) {
  Json json = {{"result", ToJson(call.result)}};
  if (call.AnyChanged()) json["args"] = ArgumentsJson(call.arguments);
  return json;
}

Json CarryOut(Mill& mill, const JournalLine& line) {
  std::optional<ManualClock> clock;
  std::optional<ScopedClock> scope;
  if (line.moment) scope.emplace(clock.emplace(*line.moment));
  try {
    return std::visit([&mill](const auto& action) { return CarryOut(mill, action); }, line.action);
  } catch (const AutomationError& error) {
    return ErrorJson(error);
  }
}

int Replay(Mill& mill, std::istream& input, const ReplayOptions& options, Console& console) {
  Progress progress(console);
  int malformed = 0;
  std::string text;
  for (size_t number = 1; std::getline(input, text); ++number) {
    if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
    std::optional<JournalLine> line;
    try {
      line = ParseJournalLine(text);
    } catch (const Failure& failure) {
      ++malformed;
      console.err << fmt::format("{}:{}: {}\n", options.name, number, failure.what());
      if (!options.keep_going) break;
      continue;
    }
    Write(console, JsonLine(CarryOut(mill, *line)) + '\n');
    if (options.flush_each) Flush(console);
    progress.Show(number);
  }
  if (input.bad()) throw Failure(ExitCode::kFileProblem, options.name + " cannot be read further");
  Flush(console);
  return malformed;
}

}  // namespace ambrelio::cli
