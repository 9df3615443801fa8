#include "ambrelio/engine/jetfile/long_value_writer.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/text.h"
#include "ambrelio/engine/jetfile/values.h"

namespace ambrelio::jetfile {
namespace {

constexpr size_t kLongestInline = 64;
constexpr size_t kLongestInOneRow = 3816;
// Of a chain, what one row holds beside the pointer to the next.
constexpr size_t kChainedBytes = 4072;

LongValueMaps MapsOf(const TableDefinition& definition, uint16_t column) {
  const auto found =
      std::find_if(definition.long_values.begin(), definition.long_values.end(),
                   [column](const LongValueMaps& maps) { return maps.column == column; });
  return found == definition.long_values.end() ? LongValueMaps{} : *found;
}

Bytes Definition(size_t length, uint32_t kind, RowPointer first) {
  Bytes definition;
  Append(definition, length | kind, LongValueLayout::kPointerAt);
  Append(definition, RowPointerBits(first), sizeof(uint32_t));
  Append(definition, 0, LongValueLayout::kInlineAt - LongValueLayout::kStampAt);
  return definition;
}

Bytes InlineDefinition(std::span<const uint8_t> value) {
  Bytes definition = Definition(value.size(), LongValueLayout::kInlineBit, {});
  Append(definition, value);
  return definition;
}

}  // namespace

LongValueWriter::LongValueWriter(JetFile& file, const TableDefinition& definition, uint16_t column)
    : file_(file),
      pages_(file, kOwnerLongValues, MapsOf(definition, column).owned,
             MapsOf(definition, column).free_space) {}

Bytes LongValueWriter::Placeholder(std::span<const uint8_t> value) {
  return value.size() <= kLongestInline ? InlineDefinition(value) : Definition(0, 0, {});
}

Bytes LongValueWriter::Write(std::span<const uint8_t> value) {
  if (value.size() <= kLongestInline) return InlineDefinition(value);
  if (value.size() <= kLongestInOneRow) {
    const RowPointer row = pages_.Add(value, DataPageEditor::Mark::kNone);
    return Definition(value.size(), LongValueLayout::kOneRowBit, row);
  }
  return Definition(value.size(), 0, WriteChain(value));
}

// From its end, as each row names the next.
RowPointer LongValueWriter::WriteChain(std::span<const uint8_t> value) {
  RowPointer next;
  while (!value.empty()) {
    const size_t rest = value.size() % kChainedBytes;
    const auto piece = value.last(rest != 0 ? rest : kChainedBytes);
    Bytes row;
    Append(row, RowPointerBits(next), LongValueLayout::kNextBytes);
    Append(row, piece);
    next = pages_.AddOnNewPage(row);
    value = value.first(value.size() - piece.size());
  }
  return next;
}

void LongValueWriter::Free(std::span<const uint8_t> definition) {
  for (const RowPointer row : ReadLongValue(file_, {definition, {}}).rows) pages_.Delete(row);
}

Bytes EncodeLongValue(const ColumnDefinition& column, const Variant& value) {
  Bytes bytes = EncodeValue(column, value);
  const bool chained = bytes.size() > kLongestInOneRow;
  // Only what has a row for itself, or lies in that of its column, is ever compressed.
  if (!chained || column.type != ColumnType::kMemo) return bytes;
  return ColumnBytes(value.as<std::string>(), false);
}

}  // namespace ambrelio::jetfile
