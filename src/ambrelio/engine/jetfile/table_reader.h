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

// The value of a column of any row.
Variant ReadValue(const JetFile& file, const Row& row, const ColumnDefinition& column);

}  // namespace ambrelio::jetfile
