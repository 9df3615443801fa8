#include "journal_line.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "ambrelio/value/ascii.h"
#include "arguments.h"
#include "failure.h"
#include "json_value.h"

namespace ambrelio::cli {
namespace {

// An action's key, with the keys that may stand beside it and the one that must.
struct ActionKey {
  const char* name;
  std::array<const char*, 2> optional{};
  const char* required = nullptr;

  bool Takes(const std::string& key) const {
    const auto is_key = [&key](const char* known) { return known != nullptr && key == known; };
    return key == "m" || is_key(name) || is_key(required) ||
           std::any_of(optional.begin(), optional.end(), is_key);
  }
};
constexpr std::array kActions = {
    ActionKey{"pesada"},
    ActionKey{"call", {"args", "as"}},
    ActionKey{"let", {}, "value"},
    ActionKey{"wait"},
    ActionKey{"sql"},
};

const ActionKey& FindAction(const Json& line) {
  const ActionKey* found = nullptr;
  for (const ActionKey& action : kActions) {
    if (!line.contains(action.name)) continue;
    if (found != nullptr) {
      FailInput(std::string("both \"") + found->name + "\" and \"" + action.name + "\" are given");
    }
    found = &action;
  }
  if (found == nullptr) FailInput(R"(one of "pesada", "call", "let", "wait" and "sql" is needed)");
  return *found;
}

void CheckKeys(const Json& line, const ActionKey& action) {
  for (const auto& [key, value] : line.items()) {
    if (action.Takes(key)) continue;
    FailInput("the key \"" + key + "\" is unknown in a \"" + action.name + "\" line");
  }
  if (action.required != nullptr && !line.contains(action.required)) {
    FailInput(std::string("\"") + action.required + "\" is missing");
  }
}

std::optional<OleDate> MomentOf(const Json& line) {
  if (!line.contains("m")) return std::nullopt;
  const std::string& text = TextOf(line, "m");
  const std::optional<OleDate> moment = OleDate::FromIso(text);
  if (!moment) FailInput("\"m\" is no moment of the form YYYY-MM-DD HH:MM:SS: \"" + text + "\"");
  return moment;
}

Variant ValueOf(const Json& json) {
  return ToVariant(json, [](const std::string& name) { return std::make_shared<Reference>(name); });
}

bool IsRootMember(const std::string& name) {
  using automation::Access;
  const automation::Class* root = automation::FindClass("Trazabilidad");
  return automation::FindMember(*root, name, Access::kCall) != nullptr ||
         automation::FindMember(*root, name, Access::kLet) != nullptr;
}

// Takes the name of a kept object off the front of a path; "" when it starts at the root.
std::string TakeName(automation::Path& path) {
  const automation::PathStep& first = path.front();
  if (path.size() == 1 || first.has_arguments || IsRootMember(first.name)) return "";
  std::string name = first.name;
  path.erase(path.begin());
  return name;
}

// A name that paths can begin with and that means nothing else there.
std::string NameToKeep(const Json& line) {
  if (!line.contains("as")) return "";
  const std::string& name = TextOf(line, "as");
  const auto is_letter = [](char c) {
    return c == '_' || (AsciiLower(c) >= 'a' && AsciiLower(c) <= 'z') ||
           static_cast<unsigned char>(c) >= 0x80;
  };
  const bool is_name =
      !name.empty() && !IsDigit(name[0]) &&
      std::all_of(name.begin(), name.end(), [&](char c) { return IsDigit(c) || is_letter(c); });
  if (!is_name) FailInput("\"as\" must be a name of letters, digits and _: \"" + name + "\"");
  if (automation::SameName(name, "Trazabilidad") || IsRootMember(ReadPath(name).front().name)) {
    FailInput("\"as\" must not be a name of the object model: \"" + name + "\"");
  }
  return name;
}

WeighingLine ParseWeighing(const Json& line) {
  const Json& columns = line.at("pesada");
  if (!columns.is_object() || columns.empty()) {
    FailInput(R"("pesada" must be an object of columns and values)");
  }
  WeighingLine weighing;
  for (const auto& [name, value] : columns.items()) {
    if (value.is_structured()) FailInput("the column \"" + name + "\" must be a plain value");
    weighing.columns.emplace_back(name, ToVariant(value));
  }
  return weighing;
}

CallLine ParseCall(const Json& line) {
  automation::Arguments arguments;
  if (line.contains("args")) {
    if (!line["args"].is_array()) FailInput(R"("args" must be a list)");
    for (const Json& value : line["args"]) {
      arguments.push_back(value.is_null() ? std::nullopt : std::optional(ValueOf(value)));
    }
  }
  CallLine call = MakeCall(ReadPath(TextOf(line, "call")), std::move(arguments));
  call.from = TakeName(call.path);
  call.as = NameToKeep(line);
  return call;
}

LetLine ParseLet(const Json& line) {
  LetLine let{ReadPath(TextOf(line, "let")), ValueOf(line.at("value"))};
  let.from = TakeName(let.path);
  return let;
}

WaitLine ParseWait(const Json& line) {
  const Variant time = ToVariant(line.at("wait"));
  if (time.type() != VariantType::kLong || time.as<int32_t>() < 0) {
    FailInput(R"("wait" must be whole milliseconds from 0 to 2147483647)");
  }
  return {time.as<int32_t>()};
}

}  // namespace

CallLine MakeCall(automation::Path path, automation::Arguments beside) {
  automation::Arguments inside = std::exchange(path.back().arguments, {});
  if (!inside.empty() && !beside.empty()) {
    FailInput("arguments stand both in the path and beside it");
  }
  return {std::move(path), inside.empty() ? std::move(beside) : std::move(inside)};
}

JournalLine ParseJournalLine(std::string_view text) {
  const Json line = ParseJson(text);
  if (!line.is_object()) FailInput("a line must be a JSON object");
  const ActionKey& action = FindAction(line);
  CheckKeys(line, action);
  JournalLine parsed;
  parsed.moment = MomentOf(line);
  const std::string_view name = action.name;
  if (name == "pesada") parsed.action = ParseWeighing(line);
  if (name == "call") parsed.action = ParseCall(line);
  if (name == "let") parsed.action = ParseLet(line);
  if (name == "wait") parsed.action = ParseWait(line);
  if (name == "sql") parsed.action = SqlLine{TextOf(line, "sql")};
  return parsed;
}

}  // namespace ambrelio::cli
