#include "ambrelio/engine/embedded/jet/stored_values.h"

#include <cmath>
#include <string>

namespace ambrelio::embedded {

using dao::FieldType;
using jetfile::ColumnType;

namespace {

// As the storage shows it.
double Units(Currency money) { return static_cast<double>(money.ten_thousandths) / 10000; }

}  // namespace

std::optional<FieldType> FieldTypeOf(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
    case ColumnType::kInteger:
    case ColumnType::kLong:
    case ColumnType::kMoney:
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
    case ColumnType::kText:
    case ColumnType::kMemo:
      return static_cast<FieldType>(type);
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kGuid:
    case ColumnType::kNumeric:
    case ColumnType::kLongBinary:
      break;
  }
  return std::nullopt;
}

Variant ValueIn(const StorageStatement& row, int column, ColumnType type) {
  if (type == ColumnType::kBoolean) return row.Integer(column) != 0;
  if (row.IsNull(column)) return Variant::Null();
  switch (type) {
    case ColumnType::kByte:
      return static_cast<uint8_t>(row.Integer(column));
    case ColumnType::kInteger:
      return static_cast<int16_t>(row.Integer(column));
    case ColumnType::kLong:
      return static_cast<int32_t>(row.Integer(column));
    case ColumnType::kMoney:
      return Currency{std::llround(row.Real(column) * 10000)};
    case ColumnType::kSingle:
      return static_cast<float>(row.Real(column));
    case ColumnType::kDouble:
      return row.Real(column);
    case ColumnType::kDate:
      return OleDate::FromDays(row.Real(column));
    default:
      return std::string(row.Text(column));
  }
}

bool ShowsAs(const StorageStatement& row, int column, const Variant& value, ColumnType type) {
  if (type == ColumnType::kMoney && !value.is_null()) {
    return !row.IsNull(column) && row.Real(column) == Units(value.as<Currency>());
  }
  return ValueIn(row, column, type) == value;
}

}  // namespace ambrelio::embedded
