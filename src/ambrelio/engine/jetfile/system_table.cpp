#include "ambrelio/engine/jetfile/system_table.h"

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {

Variant SystemTable::Value(std::string_view column) const {
  const ColumnDefinition* found = definition_.FindColumn(column);
  if (found == nullptr) FailType(column);
  return reader_.Value(*found);
}

void SystemTable::FailType(std::string_view column) const {
  throw Damage({definition_.page(), 0}, "a system table has no column " + std::string(column) +
                                            " of the type that it should have");
}

}  // namespace ambrelio::jetfile
