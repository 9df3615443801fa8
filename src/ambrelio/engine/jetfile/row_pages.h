// The pages that hold the rows of one table, or the long values of one column: finding room in
// them, taking new ones and giving empty ones back. For the changes of one commit.
#pragma once

#include <optional>
#include <set>

#include "ambrelio/engine/jetfile/data_page_editor.h"

namespace ambrelio::jetfile {

class RowPages {
 public:
  // `owner` is what the pages themselves say. The maps list the pages, and those with room to
  // spare; the oldest files have columns without them. The file must outlive this.
  RowPages(JetFile& file, uint32_t owner, RowPointer owned, RowPointer free_space)
      : file_(file), owner_(owner), owned_(owned), free_space_(free_space) {}

  // Raises Damage when it is not one of the owner's.
  DataPageEditor Edit(uint32_t page) const;
  // Of a page of which rows may have become smaller: one without rows is given back.
  void Save(DataPageEditor& page);

  RowPointer Add(std::span<const uint8_t> row, DataPageEditor::Mark mark);
  // The row has its page for itself until others find the room behind it.
  RowPointer AddOnNewPage(std::span<const uint8_t> row);
  void Delete(RowPointer row);

 private:
  DataPageEditor PageWithRoom(size_t size);
  std::optional<DataPageEditor> TryPage(uint32_t number, size_t size);
  DataPageEditor NewPage();
  std::set<uint32_t>& Roomy();
  void SetRoomy(uint32_t page, bool roomy);
  void Release(uint32_t page);

  JetFile& file_;
  uint32_t owner_;
  RowPointer owned_;
  RowPointer free_space_;
  uint32_t last_page_ = 0;                   // where a row was added last
  std::optional<std::set<uint32_t>> roomy_;  // what the map of free space says
  std::set<uint32_t> untried_;               // those of them where no row was refused yet
};

}  // namespace ambrelio::jetfile
