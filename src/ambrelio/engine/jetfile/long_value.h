// Memos and OLE objects: in their row, in a row of a page of their own kind, or in a chain of such.
#pragma once

#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

enum class LongValueKind : uint8_t { kInline, kOneRow, kChain };

// Where a row keeps what of a long value.
struct LongValueLayout {
  static constexpr uint32_t kLengthBits = 0x3FFFFFFF;
  static constexpr uint32_t kInlineBit = 0x80000000;
  static constexpr uint32_t kOneRowBit = 0x40000000;
  static constexpr size_t kPointerAt = 4;
  static constexpr size_t kStampAt = 8;
  static constexpr size_t kInlineAt = 12;
  static constexpr size_t kNextBytes = 4;  // of a row of a chain
};

// What a row holds of a long value.
struct LongValueDefinition {
  LongValueKind kind = LongValueKind::kInline;
  size_t length = 0;
  RowPointer first;
  uint32_t stamp = 0;
  ByteView inline_bytes;
};
// No bytes at all are an empty value. Raises Damage.
LongValueDefinition ParseLongValue(ByteView bytes);

struct LongValue {
  Bytes bytes;
  std::vector<RowPointer> rows;  // that it takes, in order
};
// Raises Damage when the value is not whole, or its rows go in a circle.
LongValue ReadLongValue(const JetFile& file, ByteView bytes);

}  // namespace ambrelio::jetfile
