// A system table, written by the names of its columns.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/engine/jetfile/table_writer.h"

namespace ambrelio::jetfile {

// The values of some columns of a row.
using NamedValues = std::vector<std::pair<std::string_view, Variant>>;

class SystemTableWriter {
 public:
  // The table whose definition starts on that page. Raises Damage.
  SystemTableWriter(JetFile& file, uint32_t page) : file_(file), writer_(file, page) {}

  // What is not named is Null. Raises Damage for a column that the table does not have.
  void Insert(const NamedValues& values) { changes_.inserted.push_back(Named({}, values)); }
  // What is not named stays.
  void Update(RowPointer row, const NamedValues& values);
  void Delete(RowPointer row) { changes_.deleted.push_back(row); }
  // Makes all these changes.
  void Finish();

 private:
  // `row` with other values; no values are a row of Nulls.
  std::vector<Variant> Named(std::vector<Variant> row, const NamedValues& values) const;

  JetFile& file_;
  TableWriter writer_;
  TableChanges changes_;
};

}  // namespace ambrelio::jetfile
