#include "arguments.h"

#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "ambrelio/value/ascii.h"
#include "failure.h"
#include "json_value.h"

namespace ambrelio::cli {
namespace {

using automation::Argument;
using automation::Arguments;
using automation::ValueType;

bool TakesDates(ValueType type) { return type == ValueType::kDate || type == ValueType::kVariant; }

std::optional<Variant> ParsePlainNumber(std::string_view text) {
  const char* const end = text.data() + text.size();
  int32_t whole = 0;
  const auto as_whole = std::from_chars(text.data(), end, whole);
  if (as_whole.ec == std::errc() && as_whole.ptr == end) return Variant(whole);
  double number = 0;
  const auto as_double = std::from_chars(text.data(), end, number);
  const bool is_number =
      as_double.ec == std::errc() && as_double.ptr == end && std::isfinite(number);
  return is_number ? std::optional<Variant>(number) : std::nullopt;
}

}  // namespace

automation::Path ReadPath(std::string_view text) {
  try {
    automation::Path path = automation::ParsePath(text);
    std::string& member = path.front().name;
    if (automation::SameName(member, "IniciarCampana")) member = "IniciarCampaña";
    return path;
  } catch (const automation::PathError& error) {
    throw Failure(ExitCode::kWrongInput, error.what());
  }
}

Arguments PrepareArguments(const automation::Member& member, Arguments arguments) {
  for (size_t i = 0; i < member.arguments.size(); ++i) {
    const Argument& declared = member.arguments[i];
    if (i >= arguments.size()) {
      if (!declared.output) break;
      arguments.emplace_back();
    }
    std::optional<Variant>& argument = arguments[i];
    if (!argument && declared.output) argument = automation::FreshVariable(declared.type);
    if (argument && argument->is_text() && TakesDates(declared.type)) {
      if (const auto moment = OleDate::FromIso(argument->as<std::string>())) argument = *moment;
    }
  }
  return arguments;
}

std::optional<OleDate> ParseMoment(std::string_view text) {
  std::string iso(text);
  if (iso.size() == 10) iso += " 00:00:00";
  if (iso.size() == 19 && iso[10] == 'T') iso[10] = ' ';
  return OleDate::FromIso(iso);
}

std::optional<Variant> ParseArgument(std::string_view text, ValueType wanted) {
  if (text == "-") return std::nullopt;
  const std::string_view trimmed = TrimBlanks(text);
  if (!trimmed.empty() && std::string_view("[{\"").find(trimmed[0]) != std::string_view::npos) {
    return ToVariant(ParseJson(text));
  }
  if (wanted == ValueType::kText) return Variant(text);
  if (TakesDates(wanted)) {
    if (const auto moment = ParseMoment(text)) return Variant(*moment);
  }
  if (auto number = ParsePlainNumber(text)) return number;
  return Variant(text);
}

}  // namespace ambrelio::cli
