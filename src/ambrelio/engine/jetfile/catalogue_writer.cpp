#include "ambrelio/engine/jetfile/catalogue_writer.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/system_table.h"
#include "ambrelio/engine/jetfile/table_design.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;

constexpr size_t kBuiltInAccount = 2;       // bytes; other accounts have more
constexpr uint32_t kCreatorMask = 0xF00FE;  // the mask that tells the account of whoever creates
constexpr uint32_t kFullRights = 0xFFEFF;
constexpr uint32_t kTopBit = 0x80000000;

int32_t Signed(uint32_t number) { return static_cast<int32_t>(number); }

const CatalogueObject& ObjectOf(const Catalogue& catalogue, ObjectType type,
                                std::string_view name) {
  const CatalogueObject* object = catalogue.Find(type, name);
  if (object != nullptr) return *object;
  throw Damage({kObjectsPage, 0}, "the catalogue has no object " + std::string(name));
}

// The account that owns whatever a user makes.
const std::string& UserAccount(const Catalogue& catalogue) {
  return ObjectOf(catalogue, ObjectType::kDocument, "MSysDb").owner;
}

// What the container passes on to its objects, the owner's rights first.
std::vector<AccessRight> RightsOn(const Catalogue& catalogue, uint32_t id) {
  const std::string& owner = UserAccount(catalogue);
  const uint32_t container = TablesContainer(catalogue).id;
  std::vector<AccessRight> rights{{id, owner, kFullRights, false}};
  for (const AccessRight& right : catalogue.rights) {
    const bool stands_for_owner =
        right.account.size() == kBuiltInAccount && right.mask == kCreatorMask;
    if (right.object != container || !right.inheritable || stands_for_owner) continue;
    if (right.account != owner) rights.push_back({id, right.account, right.mask, false});
  }
  return rights;
}

}  // namespace

const CatalogueObject& TablesContainer(const Catalogue& catalogue) {
  return ObjectOf(catalogue, ObjectType::kContainer, "Tables");
}

void RequireFreeName(const Catalogue& catalogue, std::string_view name,
                     const CatalogueObject* itself) {
  RequireName(name);
  const uint32_t container = TablesContainer(catalogue).id;
  const Bytes wanted = NameKey(name);
  for (const CatalogueObject& object : catalogue.objects) {
    if (object.parent != container) continue;
    if (itself != nullptr && object.id == itself->id) continue;
    if (NameKey(object.name) != wanted) continue;
    dao::Raise(object.type == ObjectType::kQuery ? DaoError::kObjectExists : DaoError::kTableExists,
               dao::source::kDatabase, std::string(name));
  }
}

uint32_t NextObjectId(const Catalogue& catalogue) {
  uint32_t last = kTopBit;
  for (const CatalogueObject& object : catalogue.objects) last = std::max(last, object.id);
  return last + 1;
}

void AddObject(JetFile& file, const Catalogue& catalogue, const NewObject& object, OleDate now) {
  SystemTableWriter objects(file, kObjectsPage);
  objects.Insert({{"Id", Signed(object.id)},
                  {"ParentId", Signed(TablesContainer(catalogue).id)},
                  {"Name", object.name},
                  {"Type", static_cast<int16_t>(object.type)},
                  {"DateCreate", now},
                  {"DateUpdate", now},
                  {"Owner", UserAccount(catalogue)},
                  {"Flags", Signed(object.flags)}});
  objects.Finish();
  SystemTableWriter rights(file, file.header().rights_table());
  for (const AccessRight& right : RightsOn(catalogue, object.id)) {
    rights.Insert({{"ObjectId", Signed(right.object)},
                   {"SID", right.account},
                   {"ACM", Signed(right.mask)},
                   {"FInheritable", right.inheritable}});
  }
  rights.Finish();
}

void RemoveObject(JetFile& file, const CatalogueObject& object) {
  SystemTableWriter objects(file, kObjectsPage);
  objects.Delete(object.row);
  objects.Finish();
  const uint32_t page = file.header().rights_table();
  SystemTableWriter rights(file, page);
  SystemTable reader(file, page);
  while (reader.Next()) {
    if (reader.Long("ObjectId") == Signed(object.id)) rights.Delete(reader.identity());
  }
  rights.Finish();
}

void UpdateObject(JetFile& file, const CatalogueObject& object, NamedValues values, OleDate now) {
  values.emplace_back("DateUpdate", now);
  SystemTableWriter objects(file, kObjectsPage);
  objects.Update(object.row, values);
  objects.Finish();
}

CatalogueObject UserTable(const JetFile& file, uint32_t page) {
  std::optional<CatalogueObject> found = FindTable(file, page);
  if (!found) throw Damage({page, 0}, "the catalogue has no table that is defined here");
  if (found->system()) {
    Refuse(DaoError::kNotSupported,
           "The table '" + found->name + "' is the system's and cannot be changed.");
  }
  return *std::move(found);
}

}  // namespace ambrelio::jetfile
