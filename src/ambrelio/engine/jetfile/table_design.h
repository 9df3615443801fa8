// Designing tables: their columns and indexes as someone wishes them, and what the definition says
// of them. Nothing here touches a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

struct NewColumn {
  std::string name;
  ColumnType type = ColumnType::kText;
  uint16_t length = 0;  // the most characters of a Text, bytes of a Binary; 0 otherwise
  bool autonumber = false;
  std::optional<uint16_t> ordinal;  // behind all others without
};

struct NewIndex {
  std::string name;
  bool primary = false;  // which makes it unique and required
  bool unique = false;
  bool ignore_nulls = false;
  bool required = false;
  std::vector<std::pair<std::string, bool /*ascending*/>> columns;
};

// The order of the texts of new columns, as definitions and page 0 have it.
inline constexpr uint16_t kGeneralOrder = 0x0409;

// What more the format has no room for.
inline constexpr size_t kMostColumns = 255;
inline constexpr size_t kMostIndexes = 32;
inline constexpr size_t kMostKeyColumns = 10;
inline constexpr size_t kLongestName = 64;  // characters

// Raises 3125 for what no object, column or index may be called.
void RequireName(std::string_view name);

// What the names of objects and indexes are told apart and ordered by: two of one key are the same
// to the indexes of the catalogue.
Bytes NameKey(std::string_view name);

// A table without columns and pages; `kind` is one of TableDefinition's.
TableDefinition NewDefinition(uint8_t kind);

// Adds a column and gives its number, which stays when columns before it go. Raises 3125 for its
// name, 3191 when there is one, 3259 for a type or length that it cannot have, 3190 when there have
// been too many in the life of the table.
uint16_t DesignColumn(TableDefinition& definition, const NewColumn& column, uint16_t language);

// Gives a column another name and place. Raises 3125, 3191.
void RedesignColumn(TableDefinition& definition, uint16_t number, std::string_view name,
                    uint16_t ordinal);

// A tree that a new index needs; the same for all indexes over the same columns with the same
// rules. Raises 3409 for a column that is not there or cannot be in a key, 3001 for too many.
IndexDefinition DesignIndex(const TableDefinition& definition, const NewIndex& index);

// Adds a tree, and a name for it. Raises 3125, 3283 for a second primary key, 3284 when there is an
// index of that name, 3001 for too many.
void AddIndex(TableDefinition& definition, const NewIndex& index, const IndexDefinition& tree);

// Null when there is none. Names are compared without case.
const IndexName* FindIndexName(const TableDefinition& definition, std::string_view name);

}  // namespace ambrelio::jetfile
