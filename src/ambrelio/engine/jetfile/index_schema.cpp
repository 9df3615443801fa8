#include "ambrelio/engine/jetfile/index_schema.h"

#include <algorithm>
#include <set>

#include "ambrelio/engine/jetfile/catalogue_writer.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/definition_writer.h"
#include "ambrelio/engine/jetfile/index_key.h"
#include "ambrelio/engine/jetfile/index_writer.h"
#include "ambrelio/engine/jetfile/table_pages.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/whole_change.h"

namespace ambrelio::jetfile {
namespace {

using dao::DaoError;

// The entries that a tree over the rows of a table has, and how many keys they are.
struct IndexContent {
  std::vector<IndexEntry> entries;
  std::set<Bytes> keys;
};

IndexContent ContentOf(const JetFile& file, const TableDefinition& definition,
                       const IndexDefinition& tree, const std::string& name) {
  const std::vector<KeyColumn> columns = tree.Columns();
  IndexContent content;
  TableReader reader(file, definition);
  while (reader.Next()) {
    std::vector<Variant> values;
    for (const KeyColumn& key : columns) {
      values.push_back(reader.Value(*definition.FindColumn(key.column)));
    }
    const auto nulls = std::count_if(values.begin(), values.end(),
                                     [](const Variant& value) { return value.is_null(); });
    if (nulls > 0 && tree.required()) {
      dao::Raise(DaoError::kNullInPrimaryKey, dao::source::kIndexes, name);
    }
    if (static_cast<size_t>(nulls) == values.size() && tree.ignores_nulls()) continue;
    auto key = EncodeKey(definition, tree, values, file.format().jet4);
    if (!key) {
      Refuse(DaoError::kNotSupported,
             "The index '" + name +
                 "' cannot be made: a row has a value that has no known place in "
                 "the order of its column, or is too long.");
    }
    const bool is_new = content.keys.insert(*key).second;
    if (!is_new && nulls == 0 && tree.unique()) {
      dao::Raise(DaoError::kDuplicateKey, dao::source::kIndexes, name);
    }
    content.entries.push_back({std::move(*key), reader.identity()});
  }
  return content;
}

}  // namespace

void CreateIndex(JetFile& file, uint32_t table, const NewIndex& index, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  TableDefinition definition = ReadDefinition(file, table);
  AddIndex(definition, index, DesignIndex(definition, index));
  IndexDefinition& tree = definition.indexes.back();
  if (!IsEncodable(definition, tree, file.format().jet4)) {
    Refuse(DaoError::kNotSupported, "The index '" + index.name +
                                        "' cannot be made: it is over texts of a language whose "
                                        "order is not known.");
  }
  IndexContent content = ContentOf(file, definition, tree, index.name);
  tree.entries_at_compact = static_cast<uint32_t>(content.entries.size());
  tree.distinct_keys = static_cast<uint32_t>(content.keys.size());
  WholeOrNotAtAll(file, [&] {
    PlaceIndex(file, table, tree);
    WriteDefinition(file, definition);
    IndexWriter(file, table, tree).Build(std::move(content.entries));
    UpdateObject(file, object, {}, now);
  });
}

void DropIndex(JetFile& file, uint32_t table, std::string_view name, OleDate now) {
  const CatalogueObject object = UserTable(file, table);
  TableDefinition definition = ReadDefinition(file, table);
  const IndexName* found = FindIndexName(definition, name);
  if (found == nullptr) {
    dao::Raise(DaoError::kNotInCollection, dao::source::kIndexes, std::string(name));
  }
  if (found->side != 0) dao::Raise(DaoError::kInRelationship, dao::source::kIndexes, found->name);
  const uint32_t tree = found->index;
  auto& names = definition.index_names;
  names.erase(names.begin() + (found - names.data()));
  const bool in_use = std::any_of(names.begin(), names.end(),
                                  [tree](const IndexName& other) { return other.index == tree; });
  WholeOrNotAtAll(file, [&] {
    if (!in_use) {
      FreeIndex(file, definition.indexes.at(tree));
      definition.indexes.erase(definition.indexes.begin() + tree);
      for (IndexName& other : names) {
        if (other.index > tree) --other.index;
      }
    }
    WriteDefinition(file, definition);
    UpdateObject(file, object, {}, now);
  });
}

}  // namespace ambrelio::jetfile
