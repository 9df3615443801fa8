#include "ambrelio/engine/embedded/jet/relationships.h"

#include <algorithm>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

// Rows of the child without a partner.
std::string Lonely(const Relationship& relationship) {
  std::string has_values;
  std::string is_partner;
  for (const auto& [child, parent] : relationship.columns) {
    has_values += " and c." + QuoteName(child) + " is not null";
    is_partner += (is_partner.empty() ? "" : " and ") + ("p." + QuoteName(parent)) + " = c." +
                  QuoteName(child);
  }
  return "select 1 from " + QuoteName(relationship.child) + " c where not exists (select 1 from " +
         QuoteName(relationship.parent) + " p where " + is_partner + ")" + has_values;
}

bool HasOldRows(const WrittenRows& rows) {
  return std::any_of(rows.begin(), rows.end(), [](const auto& row) { return !row.second; });
}

}  // namespace

std::vector<Relationship> EnforcedRelationships(const jetfile::Catalogue& catalogue) {
  std::map<std::string, Relationship> by_name;
  for (const jetfile::RelationshipColumn& column : catalogue.relationships) {
    if (!column.enforced()) continue;
    Relationship& relationship = by_name[column.name];
    relationship.child = column.table;
    relationship.parent = column.referenced_table;
    relationship.columns.emplace_back(column.column, column.referenced_column);
  }
  std::vector<Relationship> relationships;
  for (auto& [name, relationship] : by_name) relationships.push_back(std::move(relationship));
  return relationships;
}

void CheckRelationship(Storage& storage, const Relationship& relationship, const TableInfo& child,
                       const std::map<std::string, WrittenRows>& written) {
  const auto in_child = written.find(relationship.child);
  if (in_child != written.end()) {
    StorageStatement lonely(
        storage.raw(), Lonely(relationship) + " and c." + std::string(RowIdName(child)) + " = ?1");
    for (const auto& [number, is_new] : in_child->second) {
      lonely.Bind(1, number);
      if (lonely.Step()) {
        dao::Raise(DaoError::kPartnerNeeded, dao::source::kDatabase, relationship.parent);
      }
      lonely.Reset();
    }
  }
  const auto in_parent = written.find(relationship.parent);
  if (in_parent == written.end() || !HasOldRows(in_parent->second)) return;
  StorageStatement lonely(storage.raw(), Lonely(relationship) + " limit 1");
  if (lonely.Step()) dao::Raise(DaoError::kHasPartners, dao::source::kDatabase, relationship.child);
}

}  // namespace ambrelio::embedded
