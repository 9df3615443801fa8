// The rows of a table, in the order of page and slot.
#pragma once

#include <optional>
#include <vector>

#include "ambrelio/engine/jetfile/data_page.h"
#include "ambrelio/engine/jetfile/row.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

class TableReader {
 public:
  // Both must outlive the reader. Raises Damage.
  TableReader(const JetFile& file, const TableDefinition& definition);
  // Only the rows whose place is on one of these pages of the table's.
  TableReader(const JetFile& file, const TableDefinition& definition, std::vector<uint32_t> pages);

  // Goes to the next row; false behind the last. Raises Damage, after which the next call goes on
  // behind what is damaged.
  bool Next();
  // Makes one row current, whatever Next goes on with. Raises Damage when there is none.
  void MoveTo(RowPointer row);

  // Of the current row: where it is to all the world, wherever it may have moved.
  RowPointer identity() const { return identity_; }
  // Where its bytes are.
  RowPointer body() const { return body_; }
  const Row& row() const { return *row_; }
  // The value of a column, read in whole.
  Variant Value(const ColumnDefinition& column) const;

 private:
  void TakeRow(const DataPage& page, RowPointer identity);

  const JetFile& file_;
  const TableDefinition& definition_;
  std::vector<uint32_t> pages_;
  size_t next_page_ = 0;
  std::optional<DataPage> page_;
  size_t next_slot_ = 0;
  std::optional<DataPage> body_page_;
  std::optional<Row> row_;
  RowPointer identity_;
  RowPointer body_;
};

// A data page of a table: raises Damage when it is another's.
DataPage ReadTablePage(const JetFile& file, const TableDefinition& definition, uint32_t page);
// The same of a page that has been read.
DataPage TablePage(const JetFile& file, const TableDefinition& definition, uint32_t page,
                   Page bytes);

// Where the bytes of a row are: in its own place, or where it moved to.
struct RowBody {
  DataPage page;
  RowPointer at;
};

// Of a row in a slot of `head`, which must be one of its own and not deleted. Raises Damage.
RowBody FollowRow(const JetFile& file, const TableDefinition& definition, const DataPage& head,
                  uint8_t row);

// The same of a row by its pointer; nothing when it is not there any more, whatever there is now.
std::optional<RowBody> FindRow(const JetFile& file, const TableDefinition& definition,
                               RowPointer row);

// The value of a column of any row.
Variant ReadValue(const JetFile& file, const Row& row, const ColumnDefinition& column);

}  // namespace ambrelio::jetfile
