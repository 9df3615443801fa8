// A table made for a test: its definition, its maps, empty indexes and what the catalogue says.
#pragma once

#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/table_writer.h"

namespace ambrelio::jetfile {

// A column of that type, as numbers and order come.
struct MadeColumn {
  std::string name;
  ColumnType type = ColumnType::kLong;
  uint16_t length = 0;  // bytes, of what has no size of its own
  uint8_t extra_flags = 0;
};

// An index over columns by their places in the list.
struct MadeIndex {
  std::vector<uint16_t> columns;
  uint8_t flags = 0;
};

// Gives the page of the definition.
uint32_t MakeTable(JetFile& file, const std::string& name, const std::vector<MadeColumn>& columns,
                   const std::vector<MadeIndex>& indexes);

}  // namespace ambrelio::jetfile
