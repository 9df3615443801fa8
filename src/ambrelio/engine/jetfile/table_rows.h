// The rows of a table as bytes: a row keeps its pointer for life, wherever its bytes may go.
#pragma once

#include "ambrelio/engine/jetfile/row_pages.h"
#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

class TableRows {
 public:
  // The file must outlive this. For the changes of one commit.
  TableRows(JetFile& file, const TableDefinition& definition)
      : pages_(file, definition.page(), definition.owned_map, definition.free_space_map) {}

  RowPointer Add(std::span<const uint8_t> bytes);
  // Of a row that is there. Raises Damage.
  void Replace(RowPointer row, std::span<const uint8_t> bytes);
  void Delete(RowPointer row);

 private:
  // Where the bytes are of a row that moved; nothing for one at home.
  std::optional<RowPointer> MovedTo(RowPointer row) const;
  // Whether the bytes found room there, in the place of those that they replace.
  bool PutAt(RowPointer place, std::span<const uint8_t> bytes, DataPageEditor::Mark mark);
  void SetMoved(RowPointer row, RowPointer body);

  RowPages pages_;
};

}  // namespace ambrelio::jetfile
