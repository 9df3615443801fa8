#include "json_value.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <set>
#include <vector>

#include "ambrelio/value/convert.h"
#include "failure.h"

namespace ambrelio::cli {
namespace {

constexpr int kMostLevels = 64;

// The double that prints as the float does: 0.1, not 0.10000000149011612.
double Widen(float value) {
  std::array<char, 32> text{};
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  double wide = value;
  std::from_chars(text.data(), end, wide);
  return wide;
}

Json ArrayToJson(const Variant::Array& array) {
  Json json = Json::array();
  for (const Variant& element : array) json.push_back(ToJson(element));
  return json;
}

Json ObjectToJson(const Variant::ObjectPtr& object) {
  if (object == nullptr) return {{"nothing", true}};
  return {{"object", object->ClassName()}};
}

// Whole numbers of 32 bits are a Long, all others a Double.
Variant NumberToVariant(const Json& json) {
  using Limits = std::numeric_limits<int32_t>;
  const bool is_long = json.is_number_unsigned()
                           ? json.get<uint64_t>() <= static_cast<uint64_t>(Limits::max())
                           : json.is_number_integer() && json.get<int64_t>() >= Limits::min() &&
                                 json.get<int64_t>() <= Limits::max();
  if (is_long) return json.get<int32_t>();
  return json.get<double>();
}

bool IsReference(const Json& json) {
  return json.size() == 1 && json.contains("ref") && json["ref"].is_string();
}

Variant ObjectToVariant(const Json& json, const ReferenceReader& references) {
  static const Json empty = {{"empty", true}};
  static const Json nothing = {{"nothing", true}};
  if (json == empty) return {};
  if (json == nothing) return Variant::Nothing();
  if (references && IsReference(json)) return references(json["ref"].get<std::string>());
  FailInput("the object " + JsonLine(json) + " is no value; the only ones are " +
            (references ? R"({"empty":true}, {"nothing":true} and {"ref":"name"})"
                        : R"({"empty":true} and {"nothing":true})"));
}

}  // namespace

Json ToJson(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
      return {{"empty", true}};
    case VariantType::kNull:
      return nullptr;
    case VariantType::kBoolean:
      return value.as<bool>();
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
      return ToLong(value);
    case VariantType::kSingle:
      return Widen(value.as<float>());
    case VariantType::kDouble:
    case VariantType::kCurrency:
      return ToDouble(value);
    case VariantType::kDate:
      return value.as<OleDate>().Iso();
    case VariantType::kText:
      return value.as<std::string>();
    case VariantType::kArray:
      return ArrayToJson(value.array());
    case VariantType::kObject:
      return ObjectToJson(value.object());
  }
  return nullptr;
}

Variant ToVariant(const Json& json, const ReferenceReader& references) {
  switch (json.type()) {
    case Json::value_t::null:
      return Variant::Null();
    case Json::value_t::boolean:
      return json.get<bool>();
    case Json::value_t::string:
      return json.get<std::string>();
    case Json::value_t::object:
      return ObjectToVariant(json, references);
    case Json::value_t::array: {
      Variant::Array array;
      for (const Json& element : json) array.push_back(ToVariant(element, references));
      return array;
    }
    default:
      return NumberToVariant(json);
  }
}

Json ParseJson(std::string_view text) {
  // To the library a NUL is the end of the text, whatever follows.
  if (text.find('\0') != std::string_view::npos) FailInput("not JSON: there is a NUL character");
  std::vector<std::set<std::string>> keys;  // of each object that is open
  const auto check = [&keys](int depth, Json::parse_event_t event, const Json& parsed) {
    if (depth > kMostLevels) FailInput("the JSON is nested too deeply");
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key &&
        !keys.back().insert(parsed.get<std::string>()).second) {
      FailInput("the key " + JsonLine(parsed) + " is given twice");
    }
    return true;
  };
  try {
    return Json::parse(text, check);
  } catch (const Json::exception& error) {
    // The library's own prefix ("[json.exception.parse_error.101] ") says nothing to a reader.
    const std::string what = error.what();
    FailInput("not JSON: " + what.substr(what.find("] ") + 2));
  }
}

const std::string& TextOf(const Json& object, const char* key) {
  const Json& value = object.at(key);
  if (!value.is_string()) FailInput(std::string("\"") + key + "\" must be text");
  return value.get_ref<const std::string&>();
}

std::string JsonLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json ErrorJson(const AutomationError& error) {
  return {{"error", error.number()}, {"description", error.description()}};
}

}  // namespace ambrelio::cli
