// The keys of a table's rows in each of its indexes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/row.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

// A row's key in an index.
struct TableKey {
  Bytes bytes;
  bool has_null = false;

  friend bool operator==(const TableKey&, const TableKey&) = default;
};

class TableKeys {
 public:
  // Both must outlive this.
  TableKeys(const JetFile& file, const TableDefinition& definition);

  // Raises 3251 when the keys of an index cannot be made, as its texts have an order that is not
  // known.
  void CheckIndexes() const;
  // Whether an index has the column at a position of the definition's list.
  bool Use(size_t position) const;
  // By index: whether a row that is written anew has another value in one of its columns.
  std::vector<bool> Touched(const RowValues& before, const RowValues& after) const;
  // By index, of a row with a value for each of the definition's columns; nothing where the index
  // has no entry for it, or is not `wanted`. Raises 3058 for a Null that an index refuses, 3251 for
  // a value that cannot be in an index.
  std::vector<std::optional<TableKey>> Of(const std::vector<Variant>& values,
                                          const std::vector<bool>& wanted) const;
  // An index for people, with the names of the table and of its columns.
  std::string NameOf(size_t index) const;

 private:
  std::string TableName() const;

  const JetFile& file_;
  const TableDefinition& definition_;
  std::vector<std::vector<size_t>> positions_;  // of each index's columns, in the definition's list
};

}  // namespace ambrelio::jetfile
