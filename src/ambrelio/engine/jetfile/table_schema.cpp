#include "ambrelio/engine/jetfile/table_schema.h"

#include "ambrelio/engine/jetfile/catalogue_writer.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/page_allocator.h"
#include "ambrelio/engine/jetfile/relationship_rows.h"
#include "ambrelio/engine/jetfile/table_pages.h"
#include "ambrelio/engine/jetfile/whole_change.h"

namespace ambrelio::jetfile {

uint32_t CreateTable(JetFile& file, std::string_view name, const std::vector<NewColumn>& columns,
                     const std::vector<NewIndex>& indexes, OleDate now) {
  const Catalogue catalogue = ReadCatalogue(file);
  RequireFreeName(catalogue, name);
  if (columns.empty()) {
    dao::Raise(dao::DaoError::kNothingDefined, dao::source::kTableDefs, std::string(name));
  }
  TableDefinition definition = NewDefinition(TableDefinition::kUserTable);
  for (const NewColumn& column : columns) DesignColumn(definition, column, kGeneralOrder);
  for (const NewIndex& index : indexes) {
    AddIndex(definition, index, DesignIndex(definition, index));
  }
  return WholeOrNotAtAll(file, [&] {
    definition.pages = {AllocatePage(file)};
    PlaceTable(file, definition);
    WriteDefinition(file, definition);
    AddObject(file, catalogue,
              {definition.page(), std::string(name), ObjectType::kTable, /*flags=*/0}, now);
    return definition.page();
  });
}

void DropTable(JetFile& file, uint32_t table) {
  const CatalogueObject object = UserTable(file, table);
  RequireNoRelationship(ReadCatalogue(file), object.name);
  const TableDefinition definition = ReadDefinition(file, table);
  WholeOrNotAtAll(file, [&] {
    RemoveObject(file, object);
    FreeTable(file, definition);
  });
}

void RenameTable(JetFile& file, uint32_t table, std::string_view name, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  RequireFreeName(ReadCatalogue(file), name, &object);
  WholeOrNotAtAll(file, [&] {
    RenameInRelationships(file, ReadCatalogue(file), object.name, name);
    UpdateObject(file, object, {{"Name", std::string(name)}}, now);
  });
}

}  // namespace ambrelio::jetfile
