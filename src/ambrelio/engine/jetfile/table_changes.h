// Changes of a table's rows, and what they come to: found out before anything is changed.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "ambrelio/engine/jetfile/row.h"
#include "ambrelio/engine/jetfile/row_pointer.h"
#include "ambrelio/engine/jetfile/table_keys.h"

namespace ambrelio::jetfile {

// Rows that change together. Values are in the order of TableDefinition::columns, each with the
// alternative of its column's type (see values.h) or Null.
struct TableChanges {
  std::vector<RowPointer> deleted;
  std::vector<std::pair<RowPointer, std::vector<Variant>>> updated;
  std::vector<std::vector<Variant>> inserted;
};

// A row as it was, or as it is to be.
struct RowSide {
  std::vector<Variant> values;  // of long values only those that an index has
  RowValues stored;
  std::map<size_t, Bytes> long_values;        // to be written yet, by the column's position
  std::vector<std::optional<TableKey>> keys;  // by index; nothing where there is none to change
};

struct RowChange {
  RowPointer row;                 // none before it is inserted
  std::optional<RowSide> before;  // nothing for a row to be inserted
  std::optional<RowSide> after;   // nothing for a row to be deleted

  // Whether there is nothing to write.
  bool nothing() const;
  // The key that leaves an index, and the one that comes into it; null for none.
  const TableKey* OldKey(size_t index) const;
  const TableKey* NewKey(size_t index) const;
};

class ChangePlanner {
 public:
  // All must outlive this.
  ChangePlanner(const JetFile& file, const TableDefinition& definition, const TableKeys& keys)
      : file_(file), definition_(definition), keys_(keys) {}

  // In the order of deletions, updates, insertions. Raises what TableWriter::Apply raises for
  // single rows.
  std::vector<RowChange> Plan(const TableChanges& changes) const;

 private:
  RowChange PlanOne(RowPointer row, const std::vector<Variant>* values) const;
  RowSide Read(RowPointer row) const;
  RowSide Make(const std::vector<Variant>& values, const RowSide* before) const;
  void MakeValue(size_t position, const Variant& value, const std::optional<Bytes>& before,
                 RowSide& side) const;
  bool HoldsAlready(const ColumnDefinition& column, const Bytes& stored,
                    const Variant& value) const;

  const JetFile& file_;
  const TableDefinition& definition_;
  const TableKeys& keys_;
};

}  // namespace ambrelio::jetfile
