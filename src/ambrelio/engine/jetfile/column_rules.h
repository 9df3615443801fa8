// What the properties of a table say about its columns, and changing it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/system_table_writer.h"

namespace ambrelio::jetfile {

struct ColumnRules {
  bool required = false;
  bool allow_zero_length = false;
  std::string default_value;  // an expression; "" for none
};

struct RulesOfColumn {
  std::string column;
  ColumnRules rules;
};

// Raises 3265 when the table has no such column.
ColumnRules ReadRules(const JetFile& file, uint32_t table, std::string_view column);
// All other properties stay byte for byte, and `now` becomes the date of the table's last change. A
// change that raises leaves the file as it was.
void SetRules(JetFile& file, uint32_t table, const std::vector<RulesOfColumn>& columns,
              OleDate now);

// The properties of a table in its row of the catalogue when a column has gone, or has another
// name; nothing when that leaves them as they are.
NamedValues PropertiesWithoutColumn(const JetFile& file, const CatalogueObject& table,
                                    std::string_view column);
NamedValues PropertiesWithColumnRenamed(const JetFile& file, const CatalogueObject& table,
                                        std::string_view column, std::string_view name);

}  // namespace ambrelio::jetfile
