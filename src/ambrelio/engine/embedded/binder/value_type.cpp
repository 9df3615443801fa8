#include "ambrelio/engine/embedded/binder/value_type.h"

#include <algorithm>

namespace ambrelio::embedded {

ValueType TypeOf(dao::FieldType type) { return static_cast<ValueType>(type); }

dao::FieldType FieldTypeOf(ValueType type) {
  return type == ValueType::kNull ? dao::FieldType::kText : static_cast<dao::FieldType>(type);
}

bool IsText(ValueType type) { return type == ValueType::kText || type == ValueType::kMemo; }

bool IsNumber(ValueType type) { return type >= ValueType::kBoolean && type <= ValueType::kDouble; }

bool IsWhole(ValueType type) { return type >= ValueType::kByte && type <= ValueType::kLong; }

namespace {

// The wider of two numbers: the later in the order of the enumeration, except that neither a Single
// nor a Currency holds every value of what stands before it.
ValueType WiderNumber(ValueType a, ValueType b) {
  const ValueType low = std::min(a, b);
  const ValueType high = std::max(a, b);
  if (high == ValueType::kSingle && (low == ValueType::kLong || low == ValueType::kCurrency)) {
    return ValueType::kDouble;
  }
  return high;
}

// The type in which a value takes part in arithmetic.
ValueType ArithmeticOperand(ValueType type) {
  if (type == ValueType::kBoolean) return ValueType::kInteger;
  return IsText(type) ? ValueType::kDouble : type;
}

}  // namespace

ValueType Wider(ValueType a, ValueType b) {
  if (a == b || b == ValueType::kNull) return a;
  if (a == ValueType::kNull) return b;
  if (IsText(a) || IsText(b)) {
    return a == ValueType::kMemo || b == ValueType::kMemo ? ValueType::kMemo : ValueType::kText;
  }
  if (a == ValueType::kDate || b == ValueType::kDate) return ValueType::kDate;
  return WiderNumber(a, b);
}

ValueType SumType(ValueType a, ValueType b, bool subtract) {
  a = ArithmeticOperand(a);
  b = ArithmeticOperand(b);
  if (a == ValueType::kDate && b == ValueType::kDate) {
    return subtract ? ValueType::kDouble : ValueType::kDate;
  }
  return Wider(a, b);
}

ValueType ProductType(ValueType a, ValueType b) {
  a = ArithmeticOperand(a);
  b = ArithmeticOperand(b);
  if (a == ValueType::kDate || b == ValueType::kDate) return ValueType::kDouble;
  return Wider(a, b);
}

int32_t SizeOf(ValueType type) {
  switch (type) {
    case ValueType::kBoolean:
    case ValueType::kByte:
      return 1;
    case ValueType::kInteger:
      return 2;
    case ValueType::kLong:
    case ValueType::kSingle:
      return 4;
    case ValueType::kCurrency:
    case ValueType::kDouble:
    case ValueType::kDate:
      return 8;
    case ValueType::kMemo:
      return 0;
    case ValueType::kNull:
    case ValueType::kText:
      return 255;
  }
  return 0;
}

}  // namespace ambrelio::embedded
