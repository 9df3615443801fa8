#include "ambrelio/host/sql_literal.h"

#include <array>
#include <charconv>
#include <cmath>

#include "ambrelio/data/sql_text.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::host {
namespace {

std::string ShortestText(double value) {
  if (!std::isfinite(value)) Raise(RuntimeError::kOverflow);
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return {buffer.data(), end};
}

std::string QuotedText(const std::string& text) {
  std::string literal = "'";
  for (const char c : text) {
    literal += c;
    if (c == '\'') literal += c;
  }
  return literal + "'";
}

}  // namespace

std::string SqlLiteral(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      return "Null";
    case VariantType::kBoolean:
      return value.as<bool>() ? "True" : "False";
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong:
      return std::to_string(ToLong(value));
    case VariantType::kSingle:
    case VariantType::kDouble:
    case VariantType::kCurrency:
      return ShortestText(ToDouble(value));
    case VariantType::kDate:
      return data::SqlDate(value.as<OleDate>());
    case VariantType::kText:
      return QuotedText(value.as<std::string>());
    case VariantType::kArray:
    case VariantType::kObject:
      break;
  }
  Raise(RuntimeError::kTypeMismatch);
}

}  // namespace ambrelio::host
