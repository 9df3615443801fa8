// Memos and OLE objects: in their row, in a row of a page of their own kind, or in a chain of such.
#pragma once

#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

enum class LongValueKind : uint8_t { kInline, kOneRow, kChain };

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
