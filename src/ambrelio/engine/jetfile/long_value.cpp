#include "ambrelio/engine/jetfile/long_value.h"

#include <set>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/data_page.h"

namespace ambrelio::jetfile {
namespace {

DataPage LongValuePage(const JetFile& file, RowPointer row) {
  DataPage page(file.Read(row.page), row.page, file.format());
  if (page.owner() != kOwnerLongValues) {
    throw Damage({row.page, 4}, "a page of long values is expected here");
  }
  if (page.SlotAt(row.row).deleted()) {
    throw Damage(page.PlaceOfSlot(row.row), "a long value that is in use was deleted");
  }
  return page;
}

void ReadOneRow(const JetFile& file, const LongValueDefinition& definition, LongValue& value) {
  const DataPage page = LongValuePage(file, definition.first);
  const ByteView row = page.Row(definition.first.row);
  if (row.size() < definition.length) {
    throw Damage(row.PlaceOf(0), "a long value of " + std::to_string(definition.length) +
                                     " bytes has " + std::to_string(row.size()) + " only");
  }
  value.bytes = row.Part(0, definition.length).Copy();
  value.rows.push_back(definition.first);
}

void ReadChain(const JetFile& file, const LongValueDefinition& definition, LongValue& value) {
  std::set<RowPointer> seen;
  for (RowPointer next = definition.first; value.bytes.size() < definition.length;) {
    if (next.none()) {
      const RowPointer last = value.rows.empty() ? RowPointer{} : value.rows.back();
      throw Damage({last.page, 0}, "a long value ends after " + std::to_string(value.bytes.size()) +
                                       " of " + std::to_string(definition.length) + " bytes");
    }
    const DataPage page = LongValuePage(file, next);
    const ByteView row = page.Row(next.row);
    if (!seen.insert(next).second) {
      throw Damage(row.PlaceOf(0), "the rows of a long value go in a circle");
    }
    value.rows.push_back(next);
    next = ReadRowPointer(row, 0);
    const ByteView data = row.From(LongValueLayout::kNextBytes);
    const size_t wanted = std::min(data.size(), definition.length - value.bytes.size());
    Append(value.bytes, data.Part(0, wanted).bytes());
  }
}

}  // namespace

LongValueDefinition ParseLongValue(ByteView bytes) {
  LongValueDefinition definition;
  if (bytes.empty()) return definition;
  const uint32_t bits = bytes.U32(0);
  definition.length = bits & LongValueLayout::kLengthBits;
  if ((bits & LongValueLayout::kInlineBit) != 0) {
    definition.inline_bytes = bytes.Part(LongValueLayout::kInlineAt, definition.length);
    return definition;
  }
  definition.kind =
      (bits & LongValueLayout::kOneRowBit) != 0 ? LongValueKind::kOneRow : LongValueKind::kChain;
  definition.first = ReadRowPointer(bytes, LongValueLayout::kPointerAt);
  definition.stamp = bytes.U32(LongValueLayout::kStampAt);
  return definition;
}

LongValue ReadLongValue(const JetFile& file, ByteView bytes) {
  const LongValueDefinition definition = ParseLongValue(bytes);
  LongValue value;
  switch (definition.kind) {
    case LongValueKind::kInline:
      value.bytes = definition.inline_bytes.Copy();
      break;
    case LongValueKind::kOneRow:
      ReadOneRow(file, definition, value);
      break;
    case LongValueKind::kChain:
      ReadChain(file, definition, value);
      break;
  }
  return value;
}

}  // namespace ambrelio::jetfile
