#include "ambrelio/engine/embedded/binder/scope.h"

#include <algorithm>

#include "ambrelio/dao/errors.h"

namespace ambrelio::embedded {

using bound::ColumnPart;
using bound::ColumnRef;
using bound::ExprPtr;

Relation::Relation(std::string name, int source, const TableInfo& table)
    : name_(std::move(name)), source_(source), table_(&table) {}

Relation::Relation(std::string name, int source, const bound::Query& query)
    : name_(std::move(name)), source_(source), query_(&query) {}

Relation Relation::Inlined(std::string name, const bound::Query& query) {
  Relation relation(std::move(name), 0, query);
  relation.inlined_ = true;
  return relation;
}

int Relation::ColumnCount() const {
  return static_cast<int>(table_ != nullptr ? table_->fields.size() : query_->columns.size());
}

const std::string& Relation::ColumnName(int column) const {
  const auto place = static_cast<size_t>(column);
  return table_ != nullptr ? table_->fields[place].name : query_->columns[place].name;
}

bound::Column Relation::Describe(int column) const {
  const auto place = static_cast<size_t>(column);
  if (table_ == nullptr) return query_->columns[place];
  const FieldInfo& field = table_->fields[place];
  const ValueType type = TypeOf(field.type);
  return {field.name, type, type == ValueType::kText ? field.size : SizeOf(type)};
}

std::optional<int> Relation::Find(std::string_view column) const {
  for (int i = 0; i < ColumnCount(); ++i) {
    if (SameName(ColumnName(i), column)) return i;
  }
  return std::nullopt;
}

ExprPtr Relation::Refer(int column) const {
  const auto place = static_cast<size_t>(column);
  if (inlined_) return bound::Clone(*query_->select->items[place]);
  ColumnRef ref;
  ref.source = source_;
  ref.index = column;
  if (table_ == nullptr) {
    ref.part = ColumnPart::kOutput;
    return bound::MakeColumn(ref, query_->columns[place].type);
  }
  ref.part = ColumnPart::kField;
  ref.table = table_;
  ref.field = &table_->fields[place];
  return bound::MakeColumn(ref, TypeOf(ref.field->type));
}

bool Scope::Has(int source) const {
  return std::any_of(relations.begin(), relations.end(),
                     [&](const Relation& relation) { return relation.source() == source; });
}

ExprPtr Scope::Find(std::string_view qualifier, std::string_view name) const {
  const Relation* found = nullptr;
  int column = 0;
  bool several = false;
  for (const Relation& relation : relations) {
    if (!qualifier.empty() && !SameName(relation.name(), qualifier)) continue;
    const auto place = relation.Find(name);
    if (!place || (found != nullptr && found->depth < relation.depth)) continue;
    several = found != nullptr && found->depth == relation.depth;
    found = &relation;
    column = *place;
  }
  if (found == nullptr) return nullptr;
  if (several) {
    dao::Raise(dao::DaoError::kAmbiguousColumn, dao::source::kDatabase, std::string(name));
  }
  return found->Refer(column);
}

void AppendKeys(const bound::Source& leaf, std::vector<ExprPtr>& keys) {
  ColumnRef ref;
  ref.source = leaf.id;
  if (leaf.table != nullptr) {
    ref.table = leaf.table;
    const IndexInfo* primary = leaf.table->PrimaryKey();
    if (primary == nullptr) {
      ref.part = ColumnPart::kRowId;
      keys.push_back(bound::MakeColumn(ref, ValueType::kLong));
      return;
    }
    for (const IndexColumn& column : primary->columns) {
      ref.field = leaf.table->FindField(column.name);
      ref.index = static_cast<int>(ref.field - leaf.table->fields.data());
      keys.push_back(bound::MakeColumn(ref, TypeOf(ref.field->type)));
    }
    return;
  }
  if (leaf.query->select) {
    ref.part = ColumnPart::kKey;
    for (const ExprPtr& key : leaf.query->select->keys) {
      keys.push_back(bound::MakeColumn(ref, key->type));
      ++ref.index;
    }
    return;
  }
  ref.part = ColumnPart::kOutput;
  for (const bound::Column& column : leaf.query->columns) {
    keys.push_back(bound::MakeColumn(ref, column.type));
    ++ref.index;
  }
}

}  // namespace ambrelio::embedded
