#include "ambrelio/value/variant.h"

namespace ambrelio {

std::string TypeName(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
      return "Empty";
    case VariantType::kNull:
      return "Null";
    case VariantType::kBoolean:
      return "Boolean";
    case VariantType::kByte:
      return "Byte";
    case VariantType::kInteger:
      return "Integer";
    case VariantType::kLong:
      return "Long";
    case VariantType::kSingle:
      return "Single";
    case VariantType::kDouble:
      return "Double";
    case VariantType::kCurrency:
      return "Currency";
    case VariantType::kDate:
      return "Date";
    case VariantType::kText:
      return "String";
    case VariantType::kArray:
      return "Variant()";
    case VariantType::kObject:
      return value.object() ? value.object()->ClassName() : "Nothing";
  }
  return "Unknown";
}

}  // namespace ambrelio
