#include "ambrelio/engine/jetfile/system_tables.h"

#include <vector>

#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/table_design.h"
#include "ambrelio/engine/jetfile/table_pages.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;

struct SystemColumn {
  const char* name;
  ColumnType type;
};
struct SystemIndex {
  const char* name;
  std::vector<const char*> columns;
  uint8_t flags;  // of IndexDefinition
  bool primary = false;
};
struct SystemTablePlan {
  uint32_t page;
  std::vector<SystemColumn> columns;
  std::vector<SystemIndex> indexes;
  uint32_t distinct_keys = 0;  // that the rows of a new file have in each index
};

SystemTablePlan Objects() {
  return {.page = kObjectsPage,
          .columns = {{"Id", kLong},
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
          .indexes = {{"ParentIdName", {"ParentId", "Name"}, IndexDefinition::kUnique},
                      {"Id", {"Id"}, IndexDefinition::kUnique, true}},
          .distinct_keys = 8};
}

SystemTablePlan Rights() {
  return {.page = kRightsPage,
          .columns = {{"ObjectId", kLong},
                      {"SID", kBinary},
                      {"ACM", kLong},
                      {"FInheritable", kBoolean}},
          .indexes = {{"ObjectId", {"ObjectId"}, IndexDefinition::kRequired}},
          .distinct_keys = 8};
}

SystemTablePlan Queries() {
  return {.page = kQueriesPage,
          .columns = {{"ObjectId", kLong},
                      {"Attribute", kByte},
                      {"Order", kBinary},
                      {"Name1", kText},
                      {"Name2", kText},
                      {"Expression", kMemo},
                      {"Flag", kInteger},
                      {"LvExtra", kLong}},
          .indexes = {{"ObjectIdAttribute",
                       {"ObjectId", "Attribute", "Order"},
                       IndexDefinition::kUnique,
                       true}}};
}

SystemTablePlan Relationships() {
  constexpr uint8_t kFlags = IndexDefinition::kIgnoreNulls;
  return {.page = kRelationshipsPage,
          .columns = {{"szRelationship", kText},
                      {"grbit", kLong},
                      {"ccolumn", kLong},
                      {"icolumn", kLong},
                      {"szObject", kText},
                      {"szColumn", kText},
                      {"szReferencedObject", kText},
                      {"szReferencedColumn", kText}},
          .indexes = {{"szRelationship", {"szRelationship"}, kFlags},
                      {"szObject", {"szObject"}, kFlags},
                      {"szReferencedObject", {"szReferencedObject"}, kFlags}}};
}

// As long as columns of the type can be.
uint16_t LongestOf(ColumnType type) {
  switch (type) {
    case kText:
      return 255;
    case kBinary:
      return 510;
    default:
      return 0;
  }
}

void DesignColumns(TableDefinition& definition, const SystemTablePlan& plan) {
  constexpr uint8_t kSystemColumn = 0x10;
  constexpr uint8_t kAccountColumn = 0x20;
  for (const SystemColumn& column : plan.columns) {
    DesignColumn(definition, {column.name, column.type, LongestOf(column.type), false, 0},
                 kGeneralOrder);
  }
  for (ColumnDefinition& column : definition.columns) {
    column.flags |= kSystemColumn;
    if (column.name == "Owner" || column.name == "SID") column.flags |= kAccountColumn;
  }
}

// A primary key need not have all its values here.
void DesignIndexes(TableDefinition& definition, const SystemTablePlan& plan) {
  for (const SystemIndex& index : plan.indexes) {
    NewIndex design;
    design.name = index.name;
    for (const char* column : index.columns) design.columns.emplace_back(column, true);
    IndexDefinition tree = DesignIndex(definition, design);
    tree.flags |= index.flags;
    tree.distinct_keys = plan.distinct_keys;
    AddIndex(definition, design, tree);
    for (IndexName& name : definition.index_names) {
      if (index.primary && name.name == index.name) name.kind = IndexName::kPrimary;
    }
  }
}

}  // namespace

void MakeSystemTables(JetFile& file) {
  for (const SystemTablePlan& plan : {Objects(), Rights(), Queries(), Relationships()}) {
    TableDefinition definition = NewDefinition(TableDefinition::kSystemTable);
    definition.pages = {plan.page};
    DesignColumns(definition, plan);
    DesignIndexes(definition, plan);
    PlaceTable(file, definition);
    WriteDefinition(file, definition);
  }
}

}  // namespace ambrelio::jetfile
