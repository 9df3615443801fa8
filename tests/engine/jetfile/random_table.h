// A table that is changed at random, beside a model of it.
#pragma once

#include "engine/jetfile/table_model.h"

namespace ambrelio::jetfile {

class RandomTable {
 public:
  // The table whose definition starts on a page. The file must outlive this.
  RandomTable(JetFile& file, uint32_t page, uint32_t seed)
      : file_(file), page_(page), writer_(file, page), random_(seed), rows_(ReadRows(file, page)) {}

  bool IsWritable() const;
  size_t column_count() const { return writer_.definition().columns.size(); }
  // Rows inserted, updated and deleted, one or some at a time. A change that is refused must leave
  // every page as it is.
  void ChangeSome(size_t times);
  // That the file holds what the model holds.
  void ExpectRows() const;

 private:
  void Plan();
  std::vector<Variant> Changed(std::vector<Variant> values);
  void Apply();

  JetFile& file_;
  uint32_t page_;
  TableWriter writer_;
  RandomValues random_;
  TableRowValues rows_;
  TableChanges changes_;
};

}  // namespace ambrelio::jetfile
