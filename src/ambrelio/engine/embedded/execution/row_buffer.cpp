#include "ambrelio/engine/embedded/execution/row_buffer.h"

#include <sqlite3.h>

#include <cmath>
#include <limits>
#include <string_view>

#include "ambrelio/value/automation_error.h"

namespace ambrelio::embedded {

void RowBuffer::Append(const StorageStatement& statement, int first) {
  const int end = first + static_cast<int>(columns_->size());
  for (int i = first; i < end; ++i) {
    Cell& cell = cells_.emplace_back();
    switch (sqlite3_column_type(statement.raw(), i)) {
      case SQLITE_INTEGER:
        cell.held = Held::kInteger;
        cell.integer = statement.Integer(i);
        break;
      case SQLITE_FLOAT:
        cell.held = Held::kReal;
        cell.real = statement.Real(i);
        break;
      case SQLITE_NULL:
        break;
      default: {
        const std::string_view text = statement.Text(i);
        cell.held = Held::kText;
        cell.length = static_cast<uint32_t>(text.size());
        cell.offset = texts_.size();
        texts_ += text;
      }
    }
  }
}

void RowBuffer::Clear() {
  cells_.clear();
  texts_.clear();
}

namespace {

template <class T>
T InRange(int64_t value) {
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
    Raise(RuntimeError::kOverflow);
  }
  return static_cast<T>(value);
}

constexpr double kBeyondWhole = 9.2e18;

}  // namespace

Variant RowBuffer::Whole(const Cell& cell, ValueType type) const {
  int64_t value = cell.integer;
  if (cell.held == Held::kReal) {
    if (!(std::fabs(cell.real) < kBeyondWhole)) Raise(RuntimeError::kOverflow);
    value = std::llrint(cell.real);  // the default mode: an exact half to the even one
  }
  switch (type) {
    case ValueType::kByte:
      return InRange<uint8_t>(value);
    case ValueType::kInteger:
      return InRange<int16_t>(value);
    default:
      return InRange<int32_t>(value);
  }
}

Variant RowBuffer::Value(size_t row, size_t column) const {
  const Cell& cell = cells_[row * columns_->size() + column];
  const ValueType type = (*columns_)[column].type;
  if (cell.held == Held::kNull) return Variant::Null();
  if (cell.held == Held::kText) return std::string_view(texts_).substr(cell.offset, cell.length);
  const double real = cell.held == Held::kReal ? cell.real : static_cast<double>(cell.integer);
  if (!std::isfinite(real)) Raise(RuntimeError::kOverflow);
  switch (type) {
    case ValueType::kBoolean:
      return real != 0;
    case ValueType::kByte:
    case ValueType::kInteger:
    case ValueType::kLong:
      return Whole(cell, type);
    case ValueType::kCurrency:
      return Currency{std::llround(real * 10000)};
    case ValueType::kSingle:
      return static_cast<float>(real);
    case ValueType::kDate:
      return OleDate::FromDays(real);
    default:
      return real;
  }
}

}  // namespace ambrelio::embedded
