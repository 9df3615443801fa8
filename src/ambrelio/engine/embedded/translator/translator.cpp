#include "ambrelio/engine/embedded/translator/translator.h"

#include <algorithm>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/translator/sql_writer.h"

namespace ambrelio::embedded {

using bound::Source;

namespace {

bound::ColumnRef RowIdOf(const Source& leaf) {
  bound::ColumnRef ref;
  ref.source = leaf.id;
  ref.part = bound::ColumnPart::kRowId;
  ref.table = leaf.table;
  return ref;
}

std::string RowIdValue(SqlWriter& writer, const Source& leaf) {
  return writer.Value(*bound::MakeColumn(RowIdOf(leaf), ValueType::kLong));
}

std::string Alias(int source) { return " AS t" + std::to_string(source); }

std::string RowIdIs(const TableInfo& table, int parameter) {
  return QuoteName(RowIdName(table)) + " = ?" + std::to_string(parameter);
}

// Whether the keys that the query lends to the one around it (see AppendKeys) tell its rows apart.
bool KeysTellApart(const bound::Query& query) {
  if (!query.select) return !query.union_all;
  if (query.select->grouped || query.select->distinct) return true;
  bool all = true;
  for (const Source& source : query.select->from) {
    bound::ForEachLeaf(source, [&](const Source& leaf) {
      if (leaf.query && !KeysTellApart(*leaf.query)) all = false;
    });
  }
  return all;
}

const char* OnConflict(bool strict) { return strict ? "" : "OR IGNORE "; }

// An output column of the query that stands in FROM without a name.
bound::ExprPtr NthOutput(size_t index, ValueType type) {
  bound::ColumnRef ref;
  ref.part = bound::ColumnPart::kOutput;
  ref.index = static_cast<int>(index);
  return bound::MakeColumn(ref, type);
}

}  // namespace

std::string TranslateQuery(const bound::Query& query) { return SqlWriter().Ordered(query); }

bool CanTurnRound(const bound::Query& query) {
  if (!query.select) return false;
  const bound::Select& select = *query.select;
  return !select.grouped && !select.distinct && !select.top && KeysTellApart(query);
}

void TurnRound(bound::Query& query) {
  for (bound::OrderKey& key : query.order) key.descending = !key.descending;
}

bool IsDynaset(const bound::Query& query) {
  if (!query.select) return false;
  const bound::Select& select = *query.select;
  return !select.grouped && !select.distinct && !select.top && select.from.size() == 1 &&
         select.from[0].kind == Source::Kind::kTable;
}

DynasetSql TranslateDynaset(const bound::Query& query, int row_parameter) {
  const bound::Select& select = *query.select;
  const Source& source = select.from[0];
  DynasetSql sql;
  SqlWriter rows;
  sql.rows = "SELECT " + RowIdValue(rows, source);
  sql.values_follow = std::all_of(
      select.items.begin(), select.items.end(),
      [](const bound::ExprPtr& item) { return item->kind == bound::ExprKind::kColumn; });
  if (sql.values_follow) {
    for (const bound::ExprPtr& item : select.items) sql.rows += ", " + rows.Value(*item);
  }
  sql.rows += rows.FromWhere(select.from, select.where) + rows.OrderBy(query.order);
  SqlWriter row;
  for (const bound::ExprPtr& item : select.items) {
    sql.row += (sql.row.empty() ? "SELECT " : ", ") + row.Value(*item);
  }
  sql.row += row.From(select.from) + " WHERE t" + std::to_string(source.id) + "." +
             RowIdIs(*source.table, row_parameter);
  return sql;
}

std::string TranslateInsert(const bound::Insert& insert, bool strict) {
  SqlWriter writer;
  const std::string table = QuoteName(insert.table->name);
  std::string names;
  std::string values;
  const auto add = [&](const FieldInfo& field, const std::string& value) {
    names += (names.empty() ? "" : ", ") + QuoteName(field.name);
    values += (values.empty() ? "" : ", ") + value;
  };
  for (const bound::FieldValue& value : insert.values) {
    add(*value.field, writer.Stored(*value.field, *value.value, strict));
  }
  if (insert.query) {
    for (size_t i = 0; i < insert.fields.size(); ++i) {
      const auto column = NthOutput(i, insert.query->columns[i].type);
      add(*insert.fields[i], writer.Stored(*insert.fields[i], *column, strict));
    }
  }
  for (const bound::FieldValue& value : insert.defaults) {
    add(*value.field, writer.Stored(*value.field, *value.value, strict));
  }
  for (const FieldInfo* counter : insert.counters) {
    add(*counter, "(SELECT coalesce(max(" + QuoteName(counter->name) + "), 0) FROM " + table +
                      ") + " + (insert.query ? "row_number() OVER ()" : "1"));
  }
  std::string text =
      std::string("INSERT ") + OnConflict(strict) + "INTO " + table + " (" + names + ")";
  if (!insert.query) return text + " VALUES (" + values + ")";
  return text + " SELECT " + values + " FROM (" + writer.Ordered(*insert.query) + ")";
}

std::string TranslateDelete(const bound::Delete& statement) {
  SqlWriter writer;
  const std::string table = QuoteName(statement.table->name);
  if (statement.from.size() == 1 && statement.from[0].kind == Source::Kind::kTable) {
    std::string text = "DELETE FROM " + table + Alias(statement.target);
    if (statement.where) text += " WHERE " + writer.Condition(*statement.where);
    return text;
  }
  const std::string row_id = QuoteName(RowIdName(*statement.table));
  bound::ColumnRef ref;
  ref.source = statement.target;
  ref.part = bound::ColumnPart::kRowId;
  ref.table = statement.table;
  const std::string target = writer.Value(*bound::MakeColumn(ref, ValueType::kLong));
  return "DELETE FROM " + table + " WHERE " + row_id + " IN (SELECT " + target +
         writer.FromWhere(statement.from, statement.where) + ")";
}

bool GoesRowByRow(const bound::Update& update) {
  if (update.from.size() != 1 || update.from[0].kind != Source::Kind::kTable) return true;
  const bound::UpdateTarget& target = update.targets.front();
  const auto assigned = [&](const IndexColumn& column) {
    return std::any_of(
        target.values.begin(), target.values.end(),
        [&](const bound::FieldValue& value) { return SameName(value.field->name, column.name); });
  };
  return std::any_of(
      target.table->indexes.begin(), target.table->indexes.end(), [&](const IndexInfo& index) {
        return index.unique && std::any_of(index.columns.begin(), index.columns.end(), assigned);
      });
}

std::string TranslateUpdate(const bound::Update& update, bool strict) {
  SqlWriter writer;
  const bound::UpdateTarget& target = update.targets.front();
  std::string text = std::string("UPDATE ") + OnConflict(strict) + QuoteName(target.table->name) +
                     Alias(target.source) + " SET ";
  bool first = true;
  for (const bound::FieldValue& value : target.values) {
    if (!first) text += ", ";
    first = false;
    text +=
        QuoteName(value.field->name) + " = " + writer.Stored(*value.field, *value.value, strict);
  }
  if (update.where) text += " WHERE " + writer.Condition(*update.where);
  return text;
}

namespace {

std::string WriteRow(const bound::UpdateTarget& target, bool strict) {
  std::string text =
      std::string("UPDATE ") + OnConflict(strict) + QuoteName(target.table->name) + " SET ";
  int parameter = 0;
  for (const bound::FieldValue& value : target.values) {
    if (parameter > 0) text += ", ";
    text += QuoteName(value.field->name) + " = ?" + std::to_string(++parameter);
  }
  return text + " WHERE " + RowIdIs(*target.table, parameter + 1);
}

}  // namespace

StepwiseUpdateSql TranslateStepwise(const bound::Update& update, bool strict,
                                    int first_row_parameter) {
  StepwiseUpdateSql sql;
  SqlWriter rows;
  SqlWriter values;
  std::vector<int> sources;
  std::string row_ids;
  std::string current;  // each source's row as it is by then, or none
  for (const Source& source : update.from) {
    bound::ForEachLeaf(source, [&](const Source& leaf) {
      row_ids += (row_ids.empty() ? "" : ", ") + RowIdValue(rows, leaf);
      const int parameter = first_row_parameter + static_cast<int>(sources.size());
      current += " LEFT JOIN " + QuoteName(leaf.table->name) + Alias(leaf.id) + " ON t" +
                 std::to_string(leaf.id) + "." + RowIdIs(*leaf.table, parameter);
      sources.push_back(leaf.id);
    });
  }
  sql.source_count = sources.size();
  // The order is written first: it decides what the sources deliver.
  const std::string order = rows.OrderBy(update.order);
  sql.rows = "SELECT " + row_ids + rows.FromWhere(update.from, update.where) + order;

  std::string list;
  size_t count = 0;
  for (const bound::UpdateTarget& target : update.targets) {
    StepwiseUpdateSql::Target step;
    const auto place = std::find(sources.begin(), sources.end(), target.source);
    step.source = static_cast<size_t>(place - sources.begin());
    step.first_value = count;
    step.value_count = target.values.size();
    step.write = WriteRow(target, strict);
    for (const bound::FieldValue& value : target.values) {
      list += (list.empty() ? "" : ", ") + values.Stored(*value.field, *value.value, strict);
    }
    count += target.values.size();
    sql.targets.push_back(std::move(step));
  }
  sql.values = "SELECT " + list + " FROM (SELECT 1)" + current;
  return sql;
}

}  // namespace ambrelio::embedded
