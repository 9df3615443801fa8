#include "ambrelio/engine/embedded/jet/jet_catalogue.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "ambrelio/engine/embedded/jet/stored_values.h"
#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/properties.h"
#include "ambrelio/engine/jetfile/stored_query.h"
#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::embedded {
namespace {

using jetfile::CatalogueObject;
using jetfile::ColumnDefinition;
using jetfile::ColumnType;
using jetfile::IndexDefinition;
using jetfile::IndexName;
using jetfile::JetFile;
using jetfile::ObjectType;
using jetfile::TableDefinition;

FieldInfo FieldOf(const JetFile& file, const ColumnDefinition& column,
                  const jetfile::Properties& properties) {
  FieldInfo field;
  field.name = column.name;
  field.type = *FieldTypeOf(column.type);
  if (column.type == ColumnType::kText) {
    field.size = file.format().jet4 ? column.length / 2 : column.length;
  }
  field.position = static_cast<int16_t>(column.ordinal);
  field.attributes = column.autonumber() ? dao::kAutoIncrement : 0;
  field.required = properties.Flag(column.name, "Required");
  field.allow_zero_length = properties.Flag(column.name, "AllowZeroLength");
  field.default_value = properties.Text(file, column.name, "DefaultValue");
  return field;
}

std::optional<IndexInfo> IndexOf(const TableDefinition& definition, const TableInfo& table,
                                 const IndexName& name) {
  if (name.kind == IndexName::kForeign) return std::nullopt;
  const IndexDefinition& tree = definition.indexes.at(name.index);
  IndexInfo index;
  index.name = name.name;
  index.primary = name.kind == IndexName::kPrimary;
  index.unique = tree.unique();
  index.ignore_nulls = tree.ignores_nulls();
  index.required = tree.required();
  for (const jetfile::KeyColumn& key : tree.Columns()) {
    const ColumnDefinition* const column = definition.FindColumn(key.column);
    if (column == nullptr || table.FindField(column->name) == nullptr) return std::nullopt;
    index.columns.push_back({column->name, !key.ascending()});
  }
  return index;
}

TableInfo TableOf(const JetFile& file, const CatalogueObject& object) {
  const TableDefinition definition = jetfile::ReadDefinition(file, object.definition_page());
  const jetfile::Properties properties(file,
                                       jetfile::ByteView(object.properties, {object.row.page, 0}));
  TableInfo table;
  table.name = object.name;
  for (const ColumnDefinition& column : definition.columns) {
    if (FieldTypeOf(column.type)) table.fields.push_back(FieldOf(file, column, properties));
  }
  for (const IndexName& name : definition.index_names) {
    if (auto index = IndexOf(definition, table, name)) table.indexes.push_back(std::move(*index));
  }
  return table;
}

// The texts of the queries, read at one stroke.
class QueryTexts {
 public:
  QueryTexts(const JetFile& file, const jetfile::Catalogue& catalogue) {
    try {
      for (jetfile::QueryRow& row : jetfile::ReadQueryRows(file, catalogue)) {
        rows_[row.query].push_back(std::move(row));
      }
    } catch (const jetfile::Damage&) {
      // Then none of them makes a statement.
    }
  }

  // As its author would have written it, without what ends the stored text; "" when its parts make
  // no statement.
  std::string Of(const CatalogueObject& query) const {
    const auto rows = rows_.find(query.id);
    if (rows == rows_.end()) return "";
    try {
      std::string text = jetfile::QuerySql(rows->second);
      while (!text.empty() &&
             std::string_view("; \r\n").find(text.back()) != std::string_view::npos) {
        text.pop_back();
      }
      return text;
    } catch (const jetfile::Damage&) {
      return "";
    }
  }

 private:
  std::map<uint32_t, std::vector<jetfile::QueryRow>> rows_;
};

}  // namespace

JetCatalogue ReadJetCatalogue(const JetFile& file) {
  const jetfile::Catalogue stored = jetfile::ReadCatalogue(file);
  JetCatalogue result;
  for (const CatalogueObject* const object : stored.UserObjects(ObjectType::kTable)) {
    TableInfo table = TableOf(file, *object);
    if (table.fields.empty()) continue;
    result.stored[table.name] = {object->definition_page(), object->created};
    result.catalogue.tables.push_back(std::move(table));
  }
  const QueryTexts texts(file, stored);
  for (const CatalogueObject* const query : stored.UserObjects(ObjectType::kQuery)) {
    result.catalogue.queries.push_back({query->name, texts.Of(*query)});
  }
  result.relationships = EnforcedRelationships(stored);
  return result;
}

std::vector<std::string> NotShown(const JetFile& file) {
  const jetfile::Catalogue stored = jetfile::ReadCatalogue(file);
  std::vector<std::string> left_out;
  for (const CatalogueObject* const object : stored.UserObjects(ObjectType::kTable)) {
    for (const ColumnDefinition& column :
         jetfile::ReadDefinition(file, object->definition_page()).columns) {
      if (FieldTypeOf(column.type)) continue;
      left_out.push_back("column " + column.name + " of table " + object->name +
                         ", which has a type that is not known here");
    }
  }
  for (const ObjectType type : {ObjectType::kLinkedTable, ObjectType::kOdbcTable}) {
    for (const CatalogueObject* const object : stored.UserObjects(type)) {
      left_out.push_back("linked table " + object->name);
    }
  }
  const QueryTexts texts(file, stored);
  for (const CatalogueObject* const query : stored.UserObjects(ObjectType::kQuery)) {
    if (texts.Of(*query).empty()) {
      left_out.push_back("query " + query->name + ", whose parts make no statement");
    }
  }
  for (const CatalogueObject* const object : stored.UserObjects(ObjectType::kRelationship)) {
    left_out.push_back("relationship " + object->name);
  }
  return left_out;
}

std::string DigestOf(const JetCatalogue& catalogue) {
  std::string digest;
  const auto add = [&](const auto& value) {
    if constexpr (requires { std::to_string(value); }) {
      digest += std::to_string(value) + ",";
    } else {
      digest += std::to_string(value.size()) + ":" + value;
    }
  };
  for (const TableInfo& table : catalogue.catalogue.tables) {
    add(table.name);
    const StoredTable& stored = catalogue.stored.at(table.name);
    add(stored.definition);
    add(stored.created.days());
    for (const FieldInfo& field : table.fields) {
      add(field.name);
      for (const int property :
           {static_cast<int>(field.type), field.size, int{field.position}, field.attributes,
            int{field.required}, int{field.allow_zero_length}}) {
        add(property);
      }
      add(field.default_value);
    }
    for (const IndexInfo& index : table.indexes) {
      add(index.name);
      for (const bool property :
           {index.primary, index.unique, index.ignore_nulls, index.required}) {
        add(property);
      }
      for (const IndexColumn& column : index.columns) {
        add(column.name);
        add(column.descending);
      }
    }
    digest += ';';
  }
  for (const QueryInfo& query : catalogue.catalogue.queries) {
    add(query.name);
    add(query.sql);
  }
  return digest;
}

}  // namespace ambrelio::embedded
