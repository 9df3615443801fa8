// Changing the rows of a table, with its long values, its indexes and its counters.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "ambrelio/engine/jetfile/index_writer.h"
#include "ambrelio/engine/jetfile/long_value_writer.h"
#include "ambrelio/engine/jetfile/table_changes.h"
#include "ambrelio/engine/jetfile/table_rows.h"

namespace ambrelio::jetfile {

// One table of Jet 4, for the changes of one commit: it keeps what it knows of the file.
class TableWriter {
 public:
  // Reads the definition that starts on a page. The file must outlive the writer. Raises Damage.
  TableWriter(JetFile& file, uint32_t definition_page);

  const TableDefinition& definition() const { return *definition_; }

  // Raises 3251, with names and reason, when the table has an index of an unknown order or a column
  // of a type that cannot be written.
  void CheckWritable() const;

  // Makes all changes or, when it raises one of these, none: 3022 for a key that another row has,
  // 3058 for a Null in a key that needs values, 3047 for a row that is too long, 3163 for a text or
  // binary longer than its column, 3167 for a row that is not there, 13 for a value of another
  // type, 3251 for a value that cannot be in an index. Keys may pass from row to row. Indexes and
  // long values that do not change are left alone, and a row that stays the same changes nothing.
  // Raises Damage, after which the file's changes are worth nothing. Gives the inserted rows, in
  // order.
  std::vector<RowPointer> Apply(const TableChanges& changes);
  RowPointer Insert(const std::vector<Variant>& values);
  void Update(RowPointer row, const std::vector<Variant>& values);
  void Delete(RowPointer row);

  // Brings the definition's counters of rows and autonumbers up to date, once after all changes.
  void Finish();

 private:
  void CheckUnique(size_t index, const std::vector<RowChange>& changes) const;
  void RemoveKeys(const std::vector<RowChange>& changes);
  void AddKeys(const std::vector<RowChange>& changes);
  void Store(RowChange& change);
  void WriteLongValues(RowSide& side);
  void FreeLongValues(const RowChange& change);
  void Count(const RowChange& change);
  LongValueWriter& LongValues(size_t position);

  JetFile& file_;
  std::unique_ptr<TableDefinition> definition_;  // with the counters as they will be
  TableKeys keys_;
  bool writable_ = false;  // was found to be
  TableRows rows_;
  std::vector<IndexWriter> indexes_;
  std::map<size_t, LongValueWriter> long_values_;
};

}  // namespace ambrelio::jetfile
