#include "ambrelio/engine/jetfile/catalogue.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/system_table.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

CatalogueObject ObjectOf(const SystemTable& table) {
  CatalogueObject object;
  object.id = static_cast<uint32_t>(table.Long("Id"));
  object.parent = static_cast<uint32_t>(table.Long("ParentId"));
  object.name = table.Text("Name");
  object.type = static_cast<ObjectType>(table.Integer("Type"));
  object.created = table.Date("DateCreate");
  object.updated = table.Date("DateUpdate");
  object.owner = table.Text("Owner");
  object.flags = static_cast<uint32_t>(table.Long("Flags"));
  const std::string properties = table.Text("LvProp");
  object.properties.assign(properties.begin(), properties.end());
  object.row = table.identity();
  return object;
}

AccessRight RightOf(const SystemTable& table) {
  return {static_cast<uint32_t>(table.Long("ObjectId")), table.Text("SID"),
          static_cast<uint32_t>(table.Long("ACM")), table.Flag("FInheritable")};
}

RelationshipColumn RelationshipOf(const SystemTable& table) {
  return {table.Text("szRelationship"),
          static_cast<uint32_t>(table.Long("grbit")),
          table.Long("ccolumn"),
          table.Long("icolumn"),
          table.Text("szObject"),
          table.Text("szColumn"),
          table.Text("szReferencedObject"),
          table.Text("szReferencedColumn"),
          table.identity()};
}

template <class Item>
std::vector<Item> ReadAll(const JetFile& file, uint32_t page, Item (*item)(const SystemTable&)) {
  std::vector<Item> items;
  SystemTable table(file, page);
  while (table.Next()) items.push_back(item(table));
  return items;
}

// The definition of a system table. Page 0 of the older format does not say where it is.
uint32_t SystemTablePage(const std::vector<CatalogueObject>& objects, std::string_view name) {
  const auto found = std::find_if(objects.begin(), objects.end(), [name](const auto& object) {
    return object.type == ObjectType::kTable && object.name == name;
  });
  if (found != objects.end()) return found->definition_page();
  throw Damage({kObjectsPage, 0}, "the catalogue has no table " + std::string(name));
}

}  // namespace

std::vector<const CatalogueObject*> Catalogue::UserObjects(ObjectType type) const& {
  std::vector<const CatalogueObject*> found;
  for (const CatalogueObject& object : objects) {
    if (object.type == type && !object.system()) found.push_back(&object);
  }
  return found;
}

const CatalogueObject* Catalogue::Find(ObjectType type, std::string_view name) const& {
  const std::string wanted = UpperCase(name);
  const auto found = std::find_if(objects.begin(), objects.end(), [&](const auto& object) {
    return object.type == type && UpperCase(object.name) == wanted;
  });
  return found == objects.end() ? nullptr : &*found;
}

Catalogue ReadCatalogue(const JetFile& file) {
  Catalogue catalogue;
  catalogue.objects = ReadAll(file, kObjectsPage, ObjectOf);
  catalogue.rights = ReadAll(file, SystemTablePage(catalogue.objects, "MSysACEs"), RightOf);
  catalogue.relationships =
      ReadAll(file, SystemTablePage(catalogue.objects, "MSysRelationships"), RelationshipOf);
  return catalogue;
}

std::optional<CatalogueObject> FindTable(const JetFile& file, uint32_t page) {
  SystemTable objects(file, kObjectsPage);
  while (objects.Next()) {
    const auto id = static_cast<uint32_t>(objects.Long("Id"));
    if ((id & CatalogueObject::kPageOfId) != page) continue;
    CatalogueObject object = ObjectOf(objects);
    if (object.type == ObjectType::kTable) return object;
  }
  return std::nullopt;
}

}  // namespace ambrelio::jetfile
