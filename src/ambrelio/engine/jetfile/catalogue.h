// What the database holds: its objects, who may do what with them, and the queries' parts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::jetfile {

enum class ObjectType : int16_t {
  kTable = 1,
  kDocument = 2,
  kContainer = 3,
  kOdbcTable = 4,
  kQuery = 5,
  kLinkedTable = 6,
  kRelationship = 8,
};

// A row of MSysObjects.
struct CatalogueObject {
  static constexpr uint32_t kSystemFlags = 0x80000002;

  uint32_t id = 0;  // of a table, the page of its definition
  uint32_t parent = 0;
  std::string name;
  ObjectType type = ObjectType::kTable;
  OleDate created;
  OleDate updated;
  std::string owner;  // bytes that stand for an account
  uint32_t flags = 0;
  Bytes properties;  // see properties.h
  RowPointer row;

  static constexpr uint32_t kPageOfId = 0x00FFFFFF;

  bool system() const { return (flags & kSystemFlags) != 0; }
  uint32_t definition_page() const { return id & kPageOfId; }
};

// A row of MSysACEs: what an account may do with an object.
struct AccessRight {
  uint32_t object = 0;
  std::string account;
  uint32_t mask = 0;
  bool inheritable = false;
};

// A row of MSysRelationships: one pair of columns.
struct RelationshipColumn {
  static constexpr uint32_t kNotEnforced = 0x2;

  std::string name;
  uint32_t flags = 0;
  int32_t column_count = 0;
  int32_t position = 0;
  std::string table;  // the child's
  std::string column;
  std::string referenced_table;  // the parent's
  std::string referenced_column;
  RowPointer row;

  bool enforced() const { return (flags & kNotEnforced) == 0; }
};

struct Catalogue {
  std::vector<CatalogueObject> objects;  // in the order of their rows
  std::vector<AccessRight> rights;
  std::vector<RelationshipColumn> relationships;

  // The objects of a type, system ones excepted. They are the catalogue's own, which must stay.
  std::vector<const CatalogueObject*> UserObjects(ObjectType type) const&;
  std::vector<const CatalogueObject*> UserObjects(ObjectType type) const&& = delete;
  // Null when there is none of that name, whatever its case.
  const CatalogueObject* Find(ObjectType type, std::string_view name) const&;
  const CatalogueObject* Find(ObjectType type, std::string_view name) const&& = delete;
};

// Raises Damage.
Catalogue ReadCatalogue(const JetFile& file);

// The table whose definition starts on a page, without reading the rest. Raises Damage.
std::optional<CatalogueObject> FindTable(const JetFile& file, uint32_t page);

}  // namespace ambrelio::jetfile
