#include "journal.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "ambrelio/platform/characters.h"
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

Json Done() { return {{"result", ToJson(Variant())}}; }

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

Json JournalPlayer::CarryOut(const JournalLine& line) {
  std::optional<ManualClock> clock;
  std::optional<ScopedClock> scope;
  if (line.moment) scope.emplace(clock.emplace(*line.moment));
  try {
    return std::visit([this](const auto& action) { return Act(action); }, line.action);
  } catch (const AutomationError& error) {
    return ErrorJson(error);
  }
}

Json JournalPlayer::Act(const WeighingLine& weighing) {
  host::StoreWeighing(mill_.session(), weighing.columns);
  return {{"result", true}};
}

Json JournalPlayer::Act(const CallLine& call) {
  const std::string name = LowerCase(call.as);
  try {
    const automation::CallResult done = Call(call);
    if (!name.empty()) kept_[name] = done.result;
    return CallJson(done);
  } catch (const AutomationError&) {
    kept_.erase(name);  // or later lines would act on what an earlier call gave
    throw;
  }
}

Json JournalPlayer::Act(const LetLine& let) {
  const auto owner = Owner(let.from, let.path);
  automation::Arguments arguments = let.path.back().arguments;
  arguments.emplace_back(Resolve(let.value));
  const auto& member = automation::MemberOf(*owner, let.path.back().name, Access::kLet);
  automation::Call(*owner, member, PrepareArguments(member, std::move(arguments)));
  return Done();
}

Json JournalPlayer::Act(const WaitLine& wait) {
  mill_.session().Events().RunFor(Milliseconds(wait.milliseconds));
  return Done();
}

Json JournalPlayer::Act(const SqlLine& sql) {
  return StatementJson(RunStatement(mill_.session().Database(), sql.statement));
}

automation::CallResult JournalPlayer::Call(const CallLine& call) const {
  const auto owner = Owner(call.from, call.path);
  automation::Arguments arguments = call.arguments;
  for (auto& argument : arguments) {
    if (argument) argument = Resolve(*argument);
  }
  const auto& member = automation::MemberOf(*owner, call.path.back().name, Access::kCall);
  return automation::Call(*owner, member, PrepareArguments(member, std::move(arguments)));
}

const Variant& JournalPlayer::Kept(const std::string& name) const {
  const auto found = kept_.find(LowerCase(name));
  if (found == kept_.end()) Raise(RuntimeError::kObjectRequired, name);
  return found->second;
}

Variant JournalPlayer::Resolve(const Variant& value) const {
  if (value.is_array()) {
    Variant::Array resolved;
    for (const Variant& element : value.array()) resolved.push_back(Resolve(element));
    return resolved;
  }
  if (!value.is_object()) return value;
  const auto reference = std::dynamic_pointer_cast<Reference>(value.object());
  return reference == nullptr ? value : Kept(reference->name());
}

std::shared_ptr<Object> JournalPlayer::Owner(const std::string& from,
                                             const automation::Path& path) const {
  if (from.empty()) return automation::Owner(mill_.root(), path);
  const Variant& start = Kept(from);
  if (!start.is_object()) Raise(RuntimeError::kObjectRequired, from);
  if (start.object() == nullptr) Raise(RuntimeError::kObjectNotSet, from);
  return automation::Owner(start.object(), path);
}

int Replay(Mill& mill, std::istream& input, const ReplayOptions& options, Console& console) {
  JournalPlayer player(mill);
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
    Write(console, JsonLine(player.CarryOut(*line)) + '\n');
    if (options.flush_each) Flush(console);
    progress.Show(number);
  }
  if (input.bad()) throw Failure(ExitCode::kFileProblem, options.name + " cannot be read further");
  Flush(console);
  return malformed;
}

}  // namespace ambrelio::cli
