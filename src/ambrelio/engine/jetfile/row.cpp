#include "ambrelio/engine/jetfile/row.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {
namespace {

constexpr auto kRecordTooLarge = static_cast<dao::DaoError>(3047);
constexpr size_t kJet4CountBytes = 2;
constexpr size_t kJet3CountBytes = 1;
// Even a table of flags has rows with this much of a fixed area.
constexpr size_t kLeastFixedArea = 2;

size_t MaskBytes(size_t columns) { return (columns + 7) / 8; }

size_t FixedArea(const TableDefinition& definition) {
  size_t size = kLeastFixedArea;
  for (const ColumnDefinition& column : definition.columns) {
    if (!column.fixed() || column.type == ColumnType::kBoolean) continue;
    size = std::max<size_t>(size, column.fixed_offset + column.length);
  }
  return size;
}

}  // namespace

Row::Row(ByteView bytes, const TableDefinition& definition, bool jet4) : bytes_(bytes) {
  fixed_start_ = jet4 ? kJet4CountBytes : kJet3CountBytes;
  column_count_ = jet4 ? bytes.U16(0) : bytes.U8(0);
  const size_t mask_bytes = MaskBytes(column_count_);
  if (bytes.size() < fixed_start_ + mask_bytes) {
    throw Damage(bytes.PlaceOf(0), "the row is shorter than the marks of its " +
                                       std::to_string(column_count_) + " columns");
  }
  mask_at_ = bytes.size() - mask_bytes;
  if (!HasVariablePart(definition)) return;
  if (jet4) {
    ReadJet4Offsets();
  } else {
    ReadJet3Offsets();
  }
}

// A row written before its table had a variable column has no place for one.
bool Row::HasVariablePart(const TableDefinition& definition) const {
  if (definition.variable_mark == 0) return false;
  return std::none_of(
      definition.columns.begin(), definition.columns.end(), [this](const ColumnDefinition& column) {
        return !column.fixed() && column.variable_index == 0 && column.number >= column_count_;
      });
}

void Row::ReadJet4Offsets() {
  const ByteView before_mask = bytes_.Part(0, mask_at_);
  if (mask_at_ < fixed_start_ + 4) {
    throw Damage(bytes_.PlaceOf(0), "the row is too short for variable columns");
  }
  const size_t count = before_mask.U16(mask_at_ - 2);
  if (2 * count + 4 > mask_at_ - fixed_start_) {
    throw Damage(bytes_.PlaceOf(mask_at_ - 2),
                 "the row is too short for its " + std::to_string(count) + " variable columns");
  }
  const size_t table_start = mask_at_ - 4 - 2 * count;
  for (size_t i = 0; i <= count; ++i) offsets_.push_back(bytes_.U16(mask_at_ - 4 - 2 * i));
  CheckOffsets(table_start);
}

// Offsets are bytes here; beside them stands, for each further 256 bytes, the first of the variable
// columns that lie beyond them.
void Row::ReadJet3Offsets() {
  const size_t jumps = (bytes_.size() - 1) / 256;
  if (mask_at_ < fixed_start_ + 1 + jumps + 1) {
    throw Damage(bytes_.PlaceOf(0), "the row is too short for variable columns");
  }
  const size_t count = bytes_.U8(mask_at_ - 1);
  if (count + 2 + jumps > mask_at_ - fixed_start_) {
    throw Damage(bytes_.PlaceOf(mask_at_ - 1),
                 "the row is too short for its " + std::to_string(count) + " variable columns");
  }
  const size_t first = mask_at_ - 2 - jumps;
  size_t jump = 0;
  for (size_t i = 0; i <= count; ++i) {
    while (jump < jumps && bytes_.U8(mask_at_ - 2 - jump) == i) ++jump;
    offsets_.push_back(bytes_.U8(first - i) + 256 * jump);
  }
  CheckOffsets(first - count);
}

void Row::CheckOffsets(size_t table_start) const {
  size_t before = fixed_start_;
  for (const size_t offset : offsets_) {
    if (offset < before || offset > table_start) {
      throw Damage(bytes_.PlaceOf(table_start),
                   "a variable column does not lie within its row in its order");
    }
    before = offset;
  }
}

bool Row::Bit(uint16_t number) const {
  if (number >= column_count_) return false;
  return (bytes_.U8(mask_at_ + number / 8) >> (number % 8) & 1) != 0;
}

std::optional<ByteView> Row::Value(const ColumnDefinition& column) const {
  if (!Bit(column.number)) return std::nullopt;
  if (column.fixed()) {
    const size_t end = offsets_.empty() ? mask_at_ : offsets_.front();
    return bytes_.Part(0, end).Part(fixed_start_ + column.fixed_offset, column.length);
  }
  const size_t index = column.variable_index;
  if (index + 1 >= offsets_.size()) return std::nullopt;
  return bytes_.Part(offsets_[index], offsets_[index + 1] - offsets_[index]);
}

Bytes EncodeRow(const TableDefinition& definition, const RowValues& values) {
  Bytes row;
  Append(row, definition.column_mark, kJet4CountBytes);
  row.resize(kJet4CountBytes + FixedArea(definition));
  std::vector<const Bytes*> variable(definition.variable_mark, nullptr);
  Bytes mask(MaskBytes(definition.column_mark));
  for (size_t i = 0; i < definition.columns.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    if (!values[i]) continue;
    mask.at(column.number / 8) |= static_cast<uint8_t>(1U << (column.number % 8));
    if (column.type == ColumnType::kBoolean) continue;
    if (!column.fixed()) {
      variable.at(column.variable_index) = &*values[i];
    } else {
      std::copy(values[i]->begin(), values[i]->end(),
                row.begin() + static_cast<std::ptrdiff_t>(kJet4CountBytes + column.fixed_offset));
    }
  }
  if (definition.variable_mark > 0) {
    std::vector<size_t> starts;
    for (const Bytes* value : variable) {
      starts.push_back(row.size());
      if (value != nullptr) Append(row, *value);
    }
    Append(row, row.size(), 2);
    for (auto start = starts.rbegin(); start != starts.rend(); ++start) Append(row, *start, 2);
    Append(row, starts.size(), 2);
  }
  Append(row, mask);
  if (row.size() > kLongestRow) {
    Refuse(kRecordTooLarge,
           "The record is too large: it would take " + std::to_string(row.size()) + " bytes.");
  }
  return row;
}

}  // namespace ambrelio::jetfile
