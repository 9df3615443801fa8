#include "ambrelio/engine/jetfile/relationship_rows.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/system_table_writer.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

[[noreturn]] void FailInRelationship(std::string_view name) {
  dao::Raise(dao::DaoError::kInRelationship, dao::source::kTableDef, std::string(name));
}

// Changes the rows for which `values` gives some.
template <class Values>
void UpdateRows(JetFile& file, const Catalogue& catalogue, Values values) {
  SystemTableWriter writer(file, file.header().relationships_table());
  for (const RelationshipColumn& row : catalogue.relationships) {
    const NamedValues changed = values(row);
    if (!changed.empty()) writer.Update(row.row, changed);
  }
  writer.Finish();
}

}  // namespace

void RequireNoRelationship(const Catalogue& catalogue, std::string_view table) {
  for (const RelationshipColumn& row : catalogue.relationships) {
    if (SameText(row.table, table) || SameText(row.referenced_table, table)) {
      FailInRelationship(table);
    }
  }
}

void RequireNoRelationship(const Catalogue& catalogue, std::string_view table,
                           std::string_view column) {
  for (const RelationshipColumn& row : catalogue.relationships) {
    if ((SameText(row.table, table) && SameText(row.column, column)) ||
        (SameText(row.referenced_table, table) && SameText(row.referenced_column, column))) {
      FailInRelationship(column);
    }
  }
}

void RenameInRelationships(JetFile& file, const Catalogue& catalogue, std::string_view table,
                           std::string_view new_table) {
  UpdateRows(file, catalogue, [&](const RelationshipColumn& row) {
    NamedValues values;
    const std::string name(new_table);
    if (SameText(row.table, table)) values.emplace_back("szObject", name);
    if (SameText(row.referenced_table, table)) values.emplace_back("szReferencedObject", name);
    return values;
  });
}

void RenameInRelationships(JetFile& file, const Catalogue& catalogue, std::string_view table,
                           std::string_view column, std::string_view new_column) {
  UpdateRows(file, catalogue, [&](const RelationshipColumn& row) {
    NamedValues values;
    const std::string name(new_column);
    if (SameText(row.table, table) && SameText(row.column, column)) {
      values.emplace_back("szColumn", name);
    }
    if (SameText(row.referenced_table, table) && SameText(row.referenced_column, column)) {
      values.emplace_back("szReferencedColumn", name);
    }
    return values;
  });
}

}  // namespace ambrelio::jetfile
