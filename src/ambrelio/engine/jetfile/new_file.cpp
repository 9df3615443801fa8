#include "ambrelio/engine/jetfile/new_file.h"

#include <array>
#include <bit>
#include <string>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/data_page_editor.h"
#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/system_table_writer.h"
#include "ambrelio/engine/jetfile/system_tables.h"
#include "ambrelio/engine/jetfile/table_design.h"

namespace ambrelio::jetfile {
namespace {

// The bytes of accounts depend on the date of the file, in a way that is not known. This date's
// are.
constexpr auto kCreated = std::bit_cast<double>(uint64_t{0x40E4AB3E3BD3853E});
constexpr std::string_view kAdmin = "\x64\x8B";
constexpr std::string_view kUsers = "\x65\x8B";
constexpr std::string_view kCreator = "\x65\x8E";
constexpr std::string_view kEngine = "\x65\x89";

constexpr uint32_t kRootContainer = 0x0F000000;
constexpr uint32_t kTables = 0x0F000001;
constexpr uint32_t kDatabases = 0x0F000002;
constexpr uint32_t kRelationships = 0x0F000003;
constexpr uint32_t kDocument = 0x10000000;
constexpr uint32_t kFirstPages = 6;  // the header, the global maps, and four definitions

void AddObjects(JetFile& file, OleDate now) {
  struct Object {
    const char* name;
    uint32_t id;
    uint32_t parent;
    ObjectType type;
    std::string_view owner;
  };
  constexpr auto kRows = std::to_array<Object>({
      {"Tables", kTables, kRootContainer, ObjectType::kContainer, kEngine},
      {"Databases", kDatabases, kRootContainer, ObjectType::kContainer, kEngine},
      {"Relationships", kRelationships, kRootContainer, ObjectType::kContainer, kEngine},
      {"MSysDb", kDocument, kDatabases, ObjectType::kDocument, kAdmin},
      {"MSysObjects", kObjectsPage, kTables, ObjectType::kTable, kEngine},
      {"MSysACEs", kRightsPage, kTables, ObjectType::kTable, kEngine},
      {"MSysQueries", kQueriesPage, kTables, ObjectType::kTable, kEngine},
      {"MSysRelationships", kRelationshipsPage, kTables, ObjectType::kTable, kEngine},
  });
  constexpr uint32_t kSystemObject = 0x80000000;
  SystemTableWriter writer(file, kObjectsPage);
  for (const Object& object : kRows) {
    writer.Insert({{"Id", static_cast<int32_t>(object.id)},
                   {"ParentId", static_cast<int32_t>(object.parent)},
                   {"Name", object.name},
                   {"Type", static_cast<int16_t>(object.type)},
                   {"DateCreate", now},
                   {"DateUpdate", now},
                   {"Owner", std::string(object.owner)},
                   {"Flags", static_cast<int32_t>(kSystemObject)}});
  }
  writer.Finish();
}

void AddRights(JetFile& file) {
  struct Right {
    uint32_t object;
    uint32_t mask;
    std::string_view account;
    bool inheritable = false;
  };
  constexpr auto kRows = std::to_array<Right>({
      {kObjectsPage, 0x60000, kAdmin},
      {kRightsPage, 0x60000, kAdmin},
      {kQueriesPage, 0x60000, kAdmin},
      {kRelationshipsPage, 0xE0000, kAdmin},
      {kTables, 0xF00FE, kCreator, true},
      {kTables, 0x60001, kAdmin},
      {kRelationships, 0xF00FE, kCreator, true},
      {kRelationships, 0x60001, kAdmin},
      {kDatabases, 0x60000, kAdmin},
      {kDocument, 0x6000E, kAdmin},
      {kDocument, 0xE, kUsers},
      {kQueriesPage, 0x14, kUsers},
      {kRelationshipsPage, 0x14, kUsers},
      {kObjectsPage, 0x14, kUsers},
      {kTables, 0xFFEFF, kUsers, true},
      {kRelationships, 0xFFFFF, kUsers, true},
  });
  SystemTableWriter writer(file, kRightsPage);
  for (const Right& right : kRows) {
    writer.Insert({{"ObjectId", static_cast<int32_t>(right.object)},
                   {"SID", std::string(right.account)},
                   {"ACM", static_cast<int32_t>(right.mask)},
                   {"FInheritable", right.inheritable}});
  }
  writer.Finish();
}

// Pages 0 to 5. The maps say which are taken, and the definitions are those of nothing.
JetFile FirstPages(std::string_view password) {
  constexpr size_t kPrefix = 5;  // the kind of a map, and its first page
  Bytes bytes = NewHeader(kCreated, password);
  bytes.resize(kFirstPages * kJet4.page_size);
  Put(bytes, kObjectsPage * kJet4.page_size, static_cast<uint16_t>(PageType::kDefinition), 2);
  JetFile file = JetFile::FromBytes(bytes, password);
  DataPageEditor maps(kGlobalMapPage, kOwnerGlobalMaps);
  Bytes map(kPrefix + kJet4.inline_map_bytes, 0xFF);
  Put(map, 0, 0, kPrefix);
  map[kPrefix] = static_cast<uint8_t>(0xFF << kFirstPages);
  maps.Append(map);
  maps.Append(Bytes(map.size()));
  maps.Save(file);
  for (uint32_t page = kObjectsPage; page < kFirstPages; ++page) {
    TableDefinition definition = NewDefinition(TableDefinition::kSystemTable);
    definition.pages = {page};
    WriteDefinition(file, definition);
  }
  return file;
}

}  // namespace

Bytes NewFile(std::string_view password, OleDate now) {
  JetFile file = FirstPages(password);
  MakeSystemTables(file);
  AddObjects(file, now);
  AddRights(file);
  Bytes bytes;
  for (uint32_t page = 0; page < file.page_count(); ++page) Append(bytes, *file.Read(page));
  return bytes;
}

}  // namespace ambrelio::jetfile
