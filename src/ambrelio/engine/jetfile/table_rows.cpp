#include "ambrelio/engine/jetfile/table_rows.h"

namespace ambrelio::jetfile {

using Mark = DataPageEditor::Mark;

std::optional<RowPointer> TableRows::MovedTo(RowPointer row) const {
  const DataPageEditor page = pages_.Edit(row.page);
  if (!page.SlotAt(row.row).moved) return std::nullopt;
  return ReadRowPointer(page.Row(row.row), 0);
}

bool TableRows::PutAt(RowPointer place, std::span<const uint8_t> bytes, Mark mark) {
  DataPageEditor page = pages_.Edit(place.page);
  if (!page.CanReplace(place.row, bytes.size())) return false;
  page.Replace(place.row, bytes, mark);
  pages_.Save(page);
  return true;
}

void TableRows::SetMoved(RowPointer row, RowPointer body) {
  Bytes pointer;
  Append(pointer, RowPointerBits(body), sizeof(uint32_t));
  PutAt(row, pointer, Mark::kMoved);
}

RowPointer TableRows::Add(std::span<const uint8_t> bytes) { return pages_.Add(bytes, Mark::kNone); }

// A row that moved goes home when it can, and never leaves a trail of pointers.
void TableRows::Replace(RowPointer row, std::span<const uint8_t> bytes) {
  const auto body = MovedTo(row);
  if (PutAt(row, bytes, Mark::kNone)) {
    if (body) pages_.Delete(*body);
    return;
  }
  if (body && PutAt(*body, bytes, Mark::kPointedTo)) return;
  SetMoved(row, pages_.Add(bytes, Mark::kPointedTo));
  if (body) pages_.Delete(*body);
}

void TableRows::Delete(RowPointer row) {
  const auto body = MovedTo(row);
  pages_.Delete(row);
  if (body) pages_.Delete(*body);
}

}  // namespace ambrelio::jetfile
