// Changing what the catalogue lists: objects, and who may do what with them.
#pragma once

#include <string_view>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/system_table_writer.h"

namespace ambrelio::jetfile {

// An object to come.
struct NewObject {
  uint32_t id = 0;
  std::string name;
  ObjectType type = ObjectType::kTable;
  uint32_t flags = 0;
};

// The container of tables and queries. Raises Damage when there is none.
const CatalogueObject& TablesContainer(const Catalogue& catalogue);

// Raises 3125 for what is no name, and 3010 or 3012 when a table or query has it already; not for
// the name that an object has itself.
void RequireFreeName(const Catalogue& catalogue, std::string_view name,
                     const CatalogueObject* itself = nullptr);

// An id that no object has, for one that is no table.
uint32_t NextObjectId(const Catalogue& catalogue);

// Adds a table or a query to their container, with the rights that this gives to what is new in it.
void AddObject(JetFile& file, const Catalogue& catalogue, const NewObject& object, OleDate now);
// Takes an object out, with all rights on it.
void RemoveObject(JetFile& file, const CatalogueObject& object);
// Sets some values of an object's row, and the date of its last change.
void UpdateObject(JetFile& file, const CatalogueObject& object, NamedValues values, OleDate now);

// The table whose definition starts on a page. Raises 3251 for one of the system's, Damage when
// there is none.
CatalogueObject UserTable(const JetFile& file, uint32_t page);

}  // namespace ambrelio::jetfile
