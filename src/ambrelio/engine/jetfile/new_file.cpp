#include "ambrelio/engine/jetfile/new_file.h"

#include <array>
#include <bit>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/data_page_editor.h"
#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/system_table_writer.h"
#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/engine/jetfile/table_pages.h"

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
constexpr uint32_t kObjects = kObjectsPage;
constexpr uint32_t kRights = 3;
constexpr uint32_t kQueries = 4;
constexpr uint32_t kRelationshipRows = 5;
constexpr uint32_t kFirstPages = 6;  // the header, the global maps, and four definitions

struct SystemColumn {
  const char* name;
  ColumnType type;
};
struct SystemIndex {
  NewIndex index;
  bool names_rows;  // is primary, though keys need not have all values
};
struct SystemTablePlan {
  uint32_t page;
  std::vector<SystemColumn> columns;
  std::vector<SystemIndex> indexes;
  uint32_t distinct_keys;
};

std::vector<SystemTablePlan> SystemTables() {
  using enum ColumnType;
  const auto over = [](const char* name, std::vector<const char*> columns) {
    NewIndex index;
    index.name = name;
    for (const char* column : columns) index.columns.emplace_back(column, true);
    return index;
  };
  const auto unique = [](NewIndex index) {
    index.unique = true;
    return index;
  };
  const auto required = [](NewIndex index) {
    index.required = true;
    return index;
  };
  const auto without_nulls = [](NewIndex index) {
    index.ignore_nulls = true;
    return index;
  };
  return {{kObjects,
           {{"Id", kLong},
            {"ParentId", kLong},
            {"Name", kText},
            {"Type", kInteger},
            {"DateCreate", kDate},
            {"DateUpdate", kDate},
            {"Owner", kBinary},
            {"Flags", kLong},
            {"Database", kMemo},
            {"Connect", kMemo},
            {"ForeignName", kText},
            {"RmtInfoShort", kBinary},
            {"RmtInfoLong", kOle},
            {"Lv", kOle},
            {"LvProp", kOle},
            {"LvModule", kOle},
            {"LvExtra", kOle}},
           {{unique(over("ParentIdName", {"ParentId", "Name"})), false},
            {unique(over("Id", {"Id"})), true}},
           8},
          {kRights,
           {{"ObjectId", kLong}, {"SID", kBinary}, {"ACM", kLong}, {"FInheritable", kBoolean}},
           {{required(over("ObjectId", {"ObjectId"})), false}},
           8},
          {kQueries,
           {{"ObjectId", kLong},
            {"Attribute", kByte},
            {"Order", kBinary},
            {"Name1", kText},
            {"Name2", kText},
            {"Expression", kMemo},
            {"Flag", kInteger},
            {"LvExtra", kLong}},
           {{unique(over("ObjectIdAttribute", {"ObjectId", "Attribute", "Order"})), true}},
           0},
          {kRelationshipRows,
           {{"szRelationship", kText},
            {"grbit", kLong},
            {"ccolumn", kLong},
            {"icolumn", kLong},
            {"szObject", kText},
            {"szColumn", kText},
            {"szReferencedObject", kText},
            {"szReferencedColumn", kText}},
           {{without_nulls(over("szRelationship", {"szRelationship"})), false},
            {without_nulls(over("szObject", {"szObject"})), false},
            {without_nulls(over("szReferencedObject", {"szReferencedObject"})), false}},
           0}};
}

uint16_t LongestOf(ColumnType type) {
  switch (type) {
    case ColumnType::kText:
      return 255;
    case ColumnType::kBinary:
      return 510;
    default:
      return 0;
  }
}

void MakeSystemTable(JetFile& file, const SystemTablePlan& plan) {
  constexpr uint8_t kSystemColumn = 0x10;
  constexpr uint8_t kAccountColumn = 0x20;
  TableDefinition definition = NewDefinition(TableDefinition::kSystemTable);
  definition.pages = {plan.page};
  for (const SystemColumn& column : plan.columns) {
    DesignColumn(definition, {column.name, column.type, LongestOf(column.type), false, 0},
                 kGeneralOrder);
  }
  for (ColumnDefinition& column : definition.columns) {
    column.flags |= kSystemColumn;
    if (column.name == "Owner" || column.name == "SID") column.flags |= kAccountColumn;
  }
  for (const SystemIndex& index : plan.indexes) {
    AddIndex(definition, index.index, DesignIndex(definition, index.index));
    definition.indexes.back().distinct_keys = plan.distinct_keys;
    for (IndexName& name : definition.index_names) {
      if (index.names_rows && name.name == index.index.name) name.kind = IndexName::kPrimary;
    }
  }
  PlaceTable(file, definition);
  WriteDefinition(file, definition);
}

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
      {"MSysObjects", kObjects, kTables, ObjectType::kTable, kEngine},
      {"MSysACEs", kRights, kTables, ObjectType::kTable, kEngine},
      {"MSysQueries", kQueries, kTables, ObjectType::kTable, kEngine},
      {"MSysRelationships", kRelationshipRows, kTables, ObjectType::kTable, kEngine},
  });
  constexpr uint32_t kSystemObject = 0x80000000;
  SystemTableWriter writer(file, kObjects);
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
      {kObjects, 0x60000, kAdmin},
      {kRights, 0x60000, kAdmin},
      {kQueries, 0x60000, kAdmin},
      {kRelationshipRows, 0xE0000, kAdmin},
      {kTables, 0xF00FE, kCreator, true},
      {kTables, 0x60001, kAdmin},
      {kRelationships, 0xF00FE, kCreator, true},
      {kRelationships, 0x60001, kAdmin},
      {kDatabases, 0x60000, kAdmin},
      {kDocument, 0x6000E, kAdmin},
      {kDocument, 0xE, kUsers},
      {kQueries, 0x14, kUsers},
      {kRelationshipRows, 0x14, kUsers},
      {kObjects, 0x14, kUsers},
      {kTables, 0xFFEFF, kUsers, true},
      {kRelationships, 0xFFFFF, kUsers, true},
  });
  SystemTableWriter writer(file, kRights);
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
  Put(bytes, kObjects * kJet4.page_size, static_cast<uint16_t>(PageType::kDefinition), 2);
  JetFile file = JetFile::FromBytes(bytes, password);
  DataPageEditor maps(kGlobalMapPage, kOwnerGlobalMaps);
  Bytes map(kPrefix + kJet4.inline_map_bytes, 0xFF);
  Put(map, 0, 0, kPrefix);
  map[kPrefix] = static_cast<uint8_t>(0xFF << kFirstPages);
  maps.Append(map);
  maps.Append(Bytes(map.size()));
  maps.Save(file);
  for (uint32_t page = kObjects; page < kFirstPages; ++page) {
    TableDefinition definition = NewDefinition(TableDefinition::kSystemTable);
    definition.pages = {page};
    WriteDefinition(file, definition);
  }
  return file;
}

}  // namespace

Bytes NewFile(std::string_view password, OleDate now) {
  JetFile file = FirstPages(password);
  for (const SystemTablePlan& plan : SystemTables()) MakeSystemTable(file, plan);
  AddObjects(file, now);
  AddRights(file);
  Bytes bytes;
  for (uint32_t page = 0; page < file.page_count(); ++page) Append(bytes, *file.Read(page));
  return bytes;
}

}  // namespace ambrelio::jetfile
