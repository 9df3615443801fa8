#include "journal_line.h"

#include <algorithm>
#include <array>
#include <utility>

#include "failure.h"
#include "json_value.h"

namespace ambrelio::cli {
namespace {

[[noreturn]] void Fail(const std::string& problem) {
  throw Failure(ExitCode::kWrongInput, problem);
}

// An action's key, with the key that may stand beside it.
struct ActionKey {
  const char* name;
  const char* companion;
  bool companion_required;
};
constexpr std::array kActions = {
    ActionKey{"pesada", nullptr, false},
    ActionKey{"call", "args", false},
    ActionKey{"let", "value", true},
    ActionKey{"sql", nullptr, false},
};

const ActionKey& FindAction(const Json& line) {
  const ActionKey* found = nullptr;
  for (const ActionKey& action : kActions) {
    if (!line.contains(action.name)) continue;
    if (found != nullptr) {
      Fail(std::string("both \"") + found->name + "\" and \"" + action.name + "\" are given");
    }
    found = &action;
  }
  if (found == nullptr) Fail(R"(one of "pesada", "call", "let" and "sql" is needed)");
  return *found;
}

void CheckKeys(const Json& line, const ActionKey& action) {
  for (const auto& [key, value] : line.items()) {
    const bool known = key == "m" || key == action.name ||
                       (action.companion != nullptr && key == action.companion);
    if (!known) Fail("the key \"" + key + "\" is unknown in a \"" + action.name + "\" line");
  }
  if (action.companion_required && !line.contains(action.companion)) {
    Fail(std::string("\"") + action.companion + "\" is missing");
  }
}

const std::string& TextOf(const Json& line, const char* key) {
  const Json& value = line.at(key);
  if (!value.is_string()) Fail(std::string("\"") + key + "\" must be text");
  return value.get_ref<const std::string&>();
}

std::optional<OleDate> MomentOf(const Json& line) {
  if (!line.contains("m")) return std::nullopt;
  const std::string& text = TextOf(line, "m");
  const std::optional<OleDate> moment = OleDate::FromIso(text);
  if (!moment) Fail("\"m\" is no moment of the form YYYY-MM-DD HH:MM:SS: \"" + text + "\"");
  return moment;
}

automation::Path PathOf(const Json& line, const char* key) {
  try {
    return automation::ParsePath(TextOf(line, key));
  } catch (const automation::PathError& error) {
    Fail(error.what());
  }
}

WeighingLine ParseWeighing(const Json& line) {
  const Json& columns = line.at("pesada");
  if (!columns.is_object() || columns.empty()) {
    Fail(R"("pesada" must be an object of columns and values)");
  }
  WeighingLine weighing;
  for (const auto& [name, value] : columns.items()) {
    if (value.is_structured()) Fail("the column \"" + name + "\" must be a plain value");
    weighing.columns.emplace_back(name, ToVariant(value));
  }
  return weighing;
}

CallLine ParseCall(const Json& line) {
  automation::Arguments arguments;
  if (line.contains("args")) {
    if (!line["args"].is_array()) Fail(R"("args" must be a list)");
    for (const Json& value : line["args"]) {
      arguments.push_back(value.is_null() ? std::nullopt : std::optional(ToVariant(value)));
    }
  }
  return MakeCall(PathOf(line, "call"), std::move(arguments));
}

LetLine ParseLet(const Json& line) {
  LetLine let{PathOf(line, "let"), ToVariant(line.at("value"))};
  if (let.path.back().has_arguments) Fail("a property that is set takes no arguments");
  return let;
}

}  // namespace

CallLine MakeCall(automation::Path path, automation::Arguments beside) {
  automation::Arguments inside = std::exchange(path.back().arguments, {});
  if (!inside.empty() && !beside.empty()) {
    Fail("arguments stand both in the path and beside it");
  }
  return {std::move(path), inside.empty() ? std::move(beside) : std::move(inside)};
}

JournalLine ParseJournalLine(std::string_view text) {
  const Json line = ParseJson(text);
  if (!line.is_object()) Fail("a line must be a JSON object");
  const ActionKey& action = FindAction(line);
  CheckKeys(line, action);
  JournalLine parsed;
  parsed.moment = MomentOf(line);
  const std::string_view name = action.name;
  if (name == "pesada") parsed.action = ParseWeighing(line);
  if (name == "call") parsed.action = ParseCall(line);
  if (name == "let") parsed.action = ParseLet(line);
  if (name == "sql") parsed.action = SqlLine{TextOf(line, "sql")};
  return parsed;
}

}  // namespace ambrelio::cli
