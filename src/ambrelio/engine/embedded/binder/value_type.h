// The static type of an expression: DAO's field types, and the type of Null.
#pragma once

#include <cstdint>

#include "ambrelio/dao/definitions.h"

namespace ambrelio::embedded {

// The numbers are those of dao::FieldType.
enum class ValueType : int16_t {
  kNull = 0,
  kBoolean = 1,
  kByte = 2,
  kInteger = 3,
  kLong = 4,
  kCurrency = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kText = 10,
  kMemo = 12,
};

ValueType TypeOf(dao::FieldType type);
// A column that only holds Null is delivered as Text.
dao::FieldType FieldTypeOf(ValueType type);

bool IsText(ValueType type);
// Boolean to Double.
bool IsNumber(ValueType type);
// Byte, Integer, Long.
bool IsWhole(ValueType type);

// The type that holds values of both: of a union's column, of IIf and Nz.
ValueType Wider(ValueType a, ValueType b);
// The type of a + b, a - b and a * b for operands that are not both text.
ValueType SumType(ValueType a, ValueType b, bool subtract);
ValueType ProductType(ValueType a, ValueType b);

// What Field.Size says of a type: bytes, or characters of a Text.
int32_t SizeOf(ValueType type);

}  // namespace ambrelio::embedded
