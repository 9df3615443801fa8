#include "ambrelio/engine/jetfile/check_catalogue.h"

#include <algorithm>
#include <set>

#include "ambrelio/engine/jetfile/properties.h"
#include "ambrelio/engine/jetfile/stored_query.h"
#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

// The documents of user interfaces do without.
bool NeedsRights(ObjectType type) {
  return type == ObjectType::kTable || type == ObjectType::kQuery ||
         type == ObjectType::kRelationship || type == ObjectType::kContainer;
}

class CatalogueCheck {
 public:
  CatalogueCheck(const JetFile& file, const Catalogue& catalogue, const Definitions& definitions,
                 Findings& findings)
      : file_(file), catalogue_(catalogue), definitions_(definitions), findings_(findings) {}

  void Run() {
    CheckObjects();
    CheckQueries();
    for (const RelationshipColumn& column : catalogue_.relationships) CheckRelationship(column);
  }

 private:
  void Say(RowPointer row, const std::string& text) {
    findings_.Add(Rule::kCatalogue, {row.page, 0}, text + " (row " + std::to_string(row.row) + ")");
  }

  void CheckObjects() {
    std::set<uint32_t> with_rights;
    for (const AccessRight& right : catalogue_.rights) with_rights.insert(right.object);
    std::set<uint32_t> ids;
    std::set<std::pair<uint32_t, std::string>> names;
    for (const CatalogueObject& object : catalogue_.objects) {
      if (!ids.insert(object.id).second) Say(object.row, "the id of " + object.name + " is taken");
      if (!names.insert({object.parent, UpperCase(object.name)}).second) {
        Say(object.row, "two objects are named " + object.name);
      }
      if (NeedsRights(object.type) && !with_rights.contains(object.id)) {
        Say(object.row, "nobody has rights on " + object.name);
      }
      findings_.Try(Rule::kCatalogue, [&] {
        const Properties properties(file_, {object.properties, {object.row.page, 0}});
      });
    }
  }

  void CheckQueries() {
    std::map<uint32_t, std::vector<QueryRow>> queries;
    for (QueryRow& row : ReadQueryRows(file_, catalogue_)) {
      queries[row.query].push_back(std::move(row));
    }
    for (const CatalogueObject& object : catalogue_.objects) {
      if (object.type != ObjectType::kQuery) continue;
      const std::vector<QueryRow> rows = std::move(queries[object.id]);
      queries.erase(object.id);
      const bool whole = !rows.empty() && rows.front().part == QueryPart::kFirst &&
                         rows.back().part == QueryPart::kLast;
      if (!whole) {
        Say(object.row, "the query " + object.name + " lacks its first row or its last");
      } else {
        findings_.Try(Rule::kCatalogue, [&rows] { QuerySql(rows); });
      }
    }
    for (const auto& [id, rows] : queries) {
      Say(rows.front().row, "there are parts of a query of the unknown id " + std::to_string(id));
    }
  }

  const TableDefinition* DefinitionOf(const std::string& table) const {
    const CatalogueObject* object = catalogue_.Find(ObjectType::kTable, table);
    if (object == nullptr) return nullptr;
    const auto found = definitions_.find(object->definition_page());
    return found == definitions_.end() ? nullptr : &found->second;
  }

  void CheckRelationship(const RelationshipColumn& column) {
    const TableDefinition* child = DefinitionOf(column.table);
    const TableDefinition* parent = DefinitionOf(column.referenced_table);
    // One over linked tables or queries has no definitions here.
    if (child == nullptr || parent == nullptr) return;
    if (child->FindColumn(column.column) == nullptr ||
        parent->FindColumn(column.referenced_column) == nullptr) {
      Say(column.row, "the relationship " + column.name + " is over columns that are not there");
    }
    if (!column.enforced()) return;
    if (catalogue_.Find(ObjectType::kRelationship, column.name) == nullptr) {
      Say(column.row, "the relationship " + column.name + " is no object of the catalogue");
    }
    if (!HasBothSides(column.name, *child, *parent)) {
      Say(column.row, "the relationship " + column.name + " lacks an index on one of its sides");
    }
  }

  static bool HasBothSides(const std::string& name, const TableDefinition& child,
                           const TableDefinition& parent) {
    for (const IndexName& index : child.index_names) {
      if (index.side != IndexName::kChild || !SameText(index.name, name)) continue;
      if (index.other_table != parent.page()) continue;
      return std::any_of(
          parent.index_names.begin(), parent.index_names.end(), [&](const IndexName& other) {
            return other.side == IndexName::kParent && other.number == index.other_number &&
                   other.other_number == index.number && other.other_table == child.page();
          });
    }
    return false;
  }

  const JetFile& file_;
  const Catalogue& catalogue_;
  const Definitions& definitions_;
  Findings& findings_;
};

}  // namespace

void CheckCatalogue(const JetFile& file, const Catalogue& catalogue, const Definitions& definitions,
                    Findings& findings) {
  findings.Try(Rule::kCatalogue,
               [&] { CatalogueCheck(file, catalogue, definitions, findings).Run(); });
}

}  // namespace ambrelio::jetfile
