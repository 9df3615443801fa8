// Inserts, updates and deletes.
#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"
#include "ambrelio/engine/embedded/binder/binding_stored.h"

namespace ambrelio::embedded {

using bound::ExprPtr;
using bound::Source;
using dao::DaoError;

namespace {

// The fields that an insert names; all of the table when it names none.
std::vector<const FieldInfo*> NamedFields(const TableInfo& table,
                                          const std::vector<std::string>& names) {
  std::vector<const FieldInfo*> fields;
  for (const std::string& name : names) {
    const FieldInfo* field = table.FindField(name);
    if (field == nullptr) dao::Raise(DaoError::kUnknownInsertColumn, dao::source::kDatabase, name);
    if (std::find(fields.begin(), fields.end(), field) != fields.end()) {
      dao::Raise(DaoError::kDuplicateTarget, dao::source::kDatabase, name);
    }
    fields.push_back(field);
  }
  return fields;
}

std::vector<const FieldInfo*> AllFields(const TableInfo& table) {
  std::vector<const FieldInfo*> fields;
  for (const FieldInfo& field : table.fields) fields.push_back(&field);
  return fields;
}

}  // namespace

bound::Insert Binding::BindInsert(const sql::Insert& insert) {
  bound::Insert result;
  result.table = catalogue_.FindTable(insert.table);
  if (result.table == nullptr) {
    const bool is_query = catalogue_.FindQuery(insert.table) != nullptr;
    Fail(is_query ? DaoError::kNotUpdatable : DaoError::kUnknownInsertTable, insert.table);
  }
  if (insert.query) {
    BindInsertQuery(insert, result);
  } else {
    BindInsertValues(insert, result);
  }
  BindDefaults(result);
  return result;
}

void Binding::BindInsertValues(const sql::Insert& insert, bound::Insert& result) {
  result.fields = insert.columns.empty() ? AllFields(*result.table)
                                         : NamedFields(*result.table, insert.columns);
  if (result.fields.size() != insert.values.size()) Fail(DaoError::kValueCount);
  for (size_t i = 0; i < result.fields.size(); ++i) {
    result.values.push_back({result.fields[i], BindExpr(*insert.values[i], Place::kValue)});
  }
}

void Binding::BindInsertQuery(const sql::Insert& insert, bound::Insert& result) {
  result.query = BindQuery(*insert.query);
  std::vector<std::string> names = insert.columns;
  if (names.empty()) {
    // Without a list the query's columns go where their names say.
    for (const bound::Column& column : result.query->columns) names.push_back(column.name);
  }
  result.fields = NamedFields(*result.table, names);
  if (result.fields.size() != result.query->columns.size()) Fail(DaoError::kValueCount);
}

void Binding::BindDefaults(bound::Insert& result) {
  for (const FieldInfo& field : result.table->fields) {
    const bool given =
        std::find(result.fields.begin(), result.fields.end(), &field) != result.fields.end();
    if (given) continue;
    if ((field.attributes & dao::kAutoIncrement) != 0) {
      result.counters.push_back(&field);
    } else if (!field.default_value.empty()) {
      std::string_view text = field.default_value;
      if (text.front() == '=') text.remove_prefix(1);
      // Its literals are no literals of the statement, as in a stored query.
      open_queries_.push_back(field.name);
      result.defaults.push_back({&field, BindExpr(*sql::ParseExpression(text), Place::kValue)});
      open_queries_.pop_back();
    } else if (field.type == dao::FieldType::kBoolean) {
      result.defaults.push_back({&field, bound::MakeLiteral(false, ValueType::kBoolean)});
    }
  }
}

// In an update the queries among the sources dissolve into their own sources, so that what is left
// are tables whose rows can be written.
Source Binding::Flatten(const sql::Source& source, Scope& scope, int depth, ExprPtr& condition) {
  const std::string& name = source.alias.empty() ? source.name : source.alias;
  if (source.kind == sql::Source::Kind::kDerived) {
    return FlattenQuery(*source.query, name, scope, depth, condition);
  }
  if (source.kind == sql::Source::Kind::kNamed) {
    if (const TableInfo* table = catalogue_.FindTable(source.name)) {
      return MakeTable(name, *table, scope, depth);
    }
    const QueryInfo* stored = catalogue_.FindQuery(source.name);
    if (stored == nullptr) Fail(DaoError::kUnknownTable, source.name);
    Source flat;
    WithStoredQuery(*stored, [&](const sql::Query& tree) {
      flat = FlattenQuery(tree, name, scope, depth, condition);
    });
    return flat;
  }
  Source join;
  join.kind = Source::Kind::kJoin;
  join.join = source.join;
  ExprPtr left_condition;
  ExprPtr right_condition;
  join.left = std::make_unique<Source>(Flatten(*source.left, scope, depth, left_condition));
  join.right = std::make_unique<Source>(Flatten(*source.right, scope, depth, right_condition));
  join.on = BindOn(*source.on, *join.left, *join.right, scope);
  // The condition of an optional side decides which of its rows can be partners, that of any other
  // side which rows there are.
  ExprPtr& outside_left = source.join == sql::JoinKind::kRight ? join.on : condition;
  ExprPtr& outside_right = source.join == sql::JoinKind::kLeft ? join.on : condition;
  outside_left = bound::MakeAnd(std::move(outside_left), std::move(left_condition));
  outside_right = bound::MakeAnd(std::move(outside_right), std::move(right_condition));
  return join;
}

Source Binding::FlattenQuery(const sql::Query& query, const std::string& name, Scope& scope,
                             int depth, ExprPtr& condition) {
  if (!query.select || query.select->distinct || query.select->top ||
      !query.select->group_by.empty() || query.select->having) {
    Fail(DaoError::kNotUpdatable);
  }
  const sql::Select& tree = *query.select;
  auto inner = std::make_unique<bound::Query>();
  inner->select = std::make_unique<bound::Select>();
  Scope inside;
  std::unique_ptr<Source> from;
  for (const sql::Source& source : tree.from) {
    Source next = Flatten(source, inside, 0, condition);
    if (from == nullptr) {
      from = std::make_unique<Source>(std::move(next));
      continue;
    }
    auto both = std::make_unique<Source>();
    both->kind = Source::Kind::kJoin;
    both->left = std::move(from);
    both->right = std::make_unique<Source>(std::move(next));
    from = std::move(both);
  }
  const Scope* outside = scope_;
  scope_ = &inside;
  if (tree.where) {
    condition = bound::MakeAnd(std::move(condition), BindExpr(*tree.where, Place::kWhere));
  }
  BindItems(tree.items, inside, *inner);
  scope_ = outside;
  if (saw_aggregate_) Fail(DaoError::kNotUpdatable);

  Relation relation = Relation::Inlined(name, *inner);
  relation.depth = depth;
  scope.relations.push_back(std::move(relation));
  for (Relation& reached : inside.relations) {
    reached.depth += depth + 1;
    scope.relations.push_back(std::move(reached));
  }
  inlined_.push_back(std::move(inner));
  return std::move(*from);
}

bound::Update Binding::BindUpdate(const sql::Update& update) {
  bound::Update result;
  Scope scope;
  ExprPtr condition;
  for (const sql::Source& source : update.target) {
    result.from.push_back(Flatten(source, scope, 0, condition));
  }
  scope_ = &scope;
  for (const Source& source : result.from) {
    bound::ForEachLeaf(source, [&](const Source& leaf) { AppendKeys(leaf, scope.row_keys); });
  }
  if (update.where) {
    condition = bound::MakeAnd(std::move(condition), BindExpr(*update.where, Place::kWhere));
  }
  result.where = std::move(condition);
  for (const sql::Assignment& assignment : update.set) BindAssignment(assignment, result);
  for (ExprPtr& key : scope.row_keys) result.order.push_back({std::move(key), false});
  scope_ = nullptr;
  return result;
}

void Binding::BindAssignment(const sql::Assignment& assignment, bound::Update& update) {
  ExprPtr value = BindExpr(*assignment.value, Place::kValue);
  sql::Expr name;
  name.kind = sql::ExprKind::kColumn;
  name.qualifier = assignment.qualifier;
  name.name = assignment.column;
  const ExprPtr target = BindColumn(name, Place::kValue);
  if (target->kind != bound::ExprKind::kColumn) {
    // A name that nothing provides is reported with the others, in the end.
    if (!unknown_names_.empty()) return;
    Fail(DaoError::kNotUpdatable, assignment.column);
  }
  const bound::ColumnRef& column = target->column;
  auto entry =
      std::find_if(update.targets.begin(), update.targets.end(),
                   [&](const bound::UpdateTarget& other) { return other.source == column.source; });
  if (entry == update.targets.end()) {
    update.targets.push_back({column.source, column.table, {}});
    entry = update.targets.end() - 1;
  }
  for (const bound::FieldValue& other : entry->values) {
    if (other.field == column.field) Fail(DaoError::kDuplicateTarget, assignment.column);
  }
  entry->values.push_back({column.field, std::move(value)});
}

bound::Delete Binding::BindDelete(const sql::Delete& statement) {
  bound::Delete result;
  Scope scope;
  for (const sql::Source& source : statement.from) {
    result.from.push_back(BindSource(source, scope));
  }
  scope_ = &scope;
  if (statement.where) result.where = BindExpr(*statement.where, Place::kWhere);
  scope_ = nullptr;

  const bool only_source = result.from.size() == 1 && result.from[0].kind != Source::Kind::kJoin;
  bool named = false;
  for (const Source& source : result.from) {
    bound::ForEachLeaf(source, [&](const Source& leaf) {
      const bool is_target =
          statement.target.empty() ? only_source : SameName(leaf.name, statement.target);
      if (!is_target) return;
      named = true;
      result.target = leaf.id;
      result.table = leaf.table;
    });
  }
  if (!named && !statement.target.empty()) Fail(DaoError::kUnknownTable, statement.target);
  if (result.table == nullptr) Fail(DaoError::kNotUpdatable);
  return result;
}

}  // namespace ambrelio::embedded
