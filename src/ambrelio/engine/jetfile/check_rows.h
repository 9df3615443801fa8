// The rules of one table's data: its pages, rows, long values and counters. What the rows say that
// indexes must say, too, is handed on.
#pragma once

#include <map>
#include <optional>
#include <set>

#include "ambrelio/engine/jetfile/data_page.h"
#include "ambrelio/engine/jetfile/page_owners.h"
#include "ambrelio/engine/jetfile/row.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

// A row as an index sees it.
struct KeyedRow {
  RowPointer row;
  std::vector<Variant> values;  // of the index's columns
};

class RowsCheck {
 public:
  // All must outlive the check. `name` is the table's.
  RowsCheck(const JetFile& file, const std::string& name, const TableDefinition& definition,
            PageOwners& owners, Findings& findings)
      : file_(file), name_(name), definition_(definition), owners_(owners), findings_(findings) {}

  // Gives the rows of each index, in the order of TableDefinition::indexes; nothing when not all of
  // them could be read.
  std::optional<std::vector<std::vector<KeyedRow>>> Run();

 private:
  void CheckPage(uint32_t page);
  void CheckMoves();
  // Whether all rows could be read.
  bool CheckRows(std::vector<std::vector<KeyedRow>>& keyed);
  void CheckValue(const Row& row, const ColumnDefinition& column);
  void CheckLongValue(const ColumnDefinition& column, ByteView bytes);
  void CheckLongValuePages();
  void CheckCounters(size_t row_count);
  void CheckFreeBytes(const DataPage& page);

  const JetFile& file_;
  const std::string& name_;
  const TableDefinition& definition_;
  PageOwners& owners_;
  Findings& findings_;
  std::map<RowPointer, RowPointer> heads_;    // where a row moved to, and from where
  std::set<RowPointer> bodies_;               // slots that only a pointer reaches
  std::map<uint16_t, UsageMap> column_maps_;  // of long values, by column
  std::map<RowPointer, int> references_;      // to rows of long values
  std::optional<int32_t> greatest_autonumber_;
};

}  // namespace ambrelio::jetfile
