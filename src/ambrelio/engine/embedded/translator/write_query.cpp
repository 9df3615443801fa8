// Queries in the storage engine's SQL: output columns are named c0, c1, ..., the keys that a query
// delivers besides them k0, k1, ..., the sources of the statement t1, t2, ...
#include <algorithm>

#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/embedded/translator/sql_writer.h"

namespace ambrelio::embedded {

using bound::Expr;
using bound::ExprPtr;
using bound::Source;

namespace {

// `c0, c1, ...` (or k0, ...).
std::string Names(char letter, size_t count) {
  std::string names;
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) names += ", ";
    names += letter + std::to_string(i);
  }
  return names;
}

std::string OutputNames(const bound::Query& query, bool keys) {
  std::string names = Names('c', query.columns.size());
  if (keys && query.select && !query.select->keys.empty()) {
    names += ", " + Names('k', query.select->keys.size());
  }
  return names;
}

}  // namespace

std::string SqlWriter::Ordered(const bound::Query& query) {
  Wanted wanted;
  wanted.order = true;
  return Query(query, wanted);
}

std::string SqlWriter::Unordered(const bound::Query& query) { return Query(query, {}); }

std::string SqlWriter::Query(const bound::Query& query, const Wanted& wanted) {
  if (query.select) {
    return query.select->top ? Top(query, wanted) : Select(query, wanted);
  }
  Types types;
  for (const bound::Column& column : query.columns) types.push_back(column.type);
  std::string text = Union(query, wanted.types == nullptr ? types : *wanted.types);
  if (wanted.order) text += OrderBy(query.order);
  return text;
}

std::string SqlWriter::Items(const bound::Query& query, const Wanted& wanted) {
  const bound::Select& select = *query.select;
  const bool collated = wanted.collated || select.distinct;
  std::string items;
  for (size_t i = 0; i < select.items.size(); ++i) {
    const Expr& item = *select.items[i];
    const ValueType type = wanted.types == nullptr ? item.type : (*wanted.types)[i];
    if (i > 0) items += ", ";
    items += IsText(type) ? Text(item) : Value(item);
    if (collated && IsText(type)) items += std::string(" COLLATE ") + kCollation;
    items += " AS c" + std::to_string(i);
  }
  if (wanted.keys) {
    for (size_t i = 0; i < select.keys.size(); ++i) {
      items += ", " + Value(*select.keys[i]) + " AS k" + std::to_string(i);
    }
  }
  return items;
}

// What stands behind the select list, but for the order.
std::string SqlWriter::Body(const bound::Select& select) {
  std::string groups;
  for (const ExprPtr& group : select.group_by) {
    if (group->kind == bound::ExprKind::kLiteral) continue;  // the same in every row
    groups += (groups.empty() ? " GROUP BY " : ", ") + Key(*group);
  }
  if (groups.empty() && !select.group_by.empty()) groups = " GROUP BY NULL";
  if (select.having) groups += " HAVING " + Condition(*select.having);
  return FromWhere(select.from, select.where) + groups;
}

std::string SqlWriter::Select(const bound::Query& query, const Wanted& wanted) {
  const bound::Select& select = *query.select;
  std::string text = select.distinct ? "SELECT DISTINCT " : "SELECT ";
  text += Items(query, wanted);
  // Written before the sources, which deliver what it names.
  const std::string order = wanted.order ? OrderBy(query.order) : std::string();
  return text + Body(select) + order;
}

// The first rows, with all that tie with the last of them in the stated order.
std::string SqlWriter::Top(const bound::Query& query, const Wanted& wanted) {
  const bound::Select& select = *query.select;
  const std::string count = std::to_string(*select.top);
  const auto share = [&](const std::string& all) {
    return "(" + all + " * " + count + " + 99) / 100";
  };
  if (select.distinct) {
    Wanted rows = wanted;
    rows.order = true;
    const std::string text = Select(query, rows);
    if (!select.top_percent) return text + " LIMIT " + count;
    return text + " LIMIT (SELECT " + share("count(*)") + " FROM (" + Select(query, {}) + "))";
  }
  const std::string full_order = OrderBy(query.order);
  std::string stated_order;
  for (size_t i = 0; i < query.stated_order; ++i) {
    stated_order += (i == 0 ? " ORDER BY " : ", ") + Key(*query.order[i].expr);
    if (query.order[i].descending) stated_order += " DESC";
  }
  const std::string rank =
      stated_order.empty() ? "row_number() OVER (" + full_order : "rank() OVER (" + stated_order;
  const std::string items = Items(query, wanted);
  std::string text = "SELECT " + OutputNames(query, wanted.keys) + " FROM (SELECT " + items +
                     ", row_number() OVER (" + full_order + ") AS place, " + rank +
                     ") AS rank, count(*) OVER () AS total";
  text += Body(select);
  text += ") WHERE rank <= " + (select.top_percent ? share("total") : count);
  if (wanted.order) text += " ORDER BY place";
  return text;
}

std::string SqlWriter::OrderBy(const std::vector<bound::OrderKey>& order) {
  std::string text;
  for (const bound::OrderKey& key : order) {
    text += (text.empty() ? " ORDER BY " : ", ") + Key(*key.expr);
    if (key.descending) text += " DESC";
  }
  return text;
}

// Of texts that differ only in spelling the first row's is kept, which the storage engine's own
// union does not promise.
std::string SqlWriter::UnionByGrouping(const bound::Query& query, const Types& types) {
  Wanted wanted;
  wanted.types = &types;
  wanted.order = true;
  std::string items;
  std::string groups;
  for (size_t i = 0; i < types.size(); ++i) {
    const std::string name = "c" + std::to_string(i);
    const bool text = IsText(types[i]);
    const char* const separator = i == 0 ? "" : ", ";
    items += separator;
    if (text) items.append("jet_first(").append(name).append(", side, place) AS ");
    items += name;
    groups += separator + name;
    if (text) groups += std::string(" COLLATE ") + kCollation;
  }
  const auto numbered = [&](const bound::Query& operand, const char* side) {
    return "SELECT *, " + std::string(side) + " AS side, row_number() OVER () AS place FROM (" +
           Query(operand, wanted) + ")";
  };
  return "SELECT " + items + " FROM (" + numbered(*query.left, "1") + " UNION ALL " +
         numbered(*query.right, "2") + ") GROUP BY " + groups;
}

std::string SqlWriter::Union(const bound::Query& query, const Types& types) {
  if (!query.union_all && std::any_of(types.begin(), types.end(), IsText)) {
    return UnionByGrouping(query, types);
  }
  // The storage engine takes operands from left to right, as an unbracketed left operand wants it.
  const bool chained = !query.left->select && query.left->union_all == query.union_all;
  const std::string left =
      chained ? Union(*query.left, types) : Operand(*query.left, types, query.union_all);
  return left + (query.union_all ? " UNION ALL " : " UNION ") +
         Operand(*query.right, types, query.union_all);
}

std::string SqlWriter::Operand(const bound::Query& query, const Types& types, bool union_all) {
  Wanted wanted;
  wanted.types = &types;
  wanted.collated = true;
  wanted.order = union_all;
  const bool plain = query.select && !query.select->top && !union_all;
  if (plain) return Query(query, wanted);
  std::string names;
  for (size_t i = 0; i < types.size(); ++i) {
    const std::string name = "c" + std::to_string(i);
    if (i > 0) names += ", ";
    names += name;
    if (IsText(types[i])) names += std::string(" COLLATE ") + kCollation + " AS " + name;
  }
  return "SELECT " + names + " FROM (" + Query(query, wanted) + ")";
}

std::string SqlWriter::FromWhere(const std::vector<Source>& from, const ExprPtr& where) {
  const std::string condition = where ? " WHERE " + Condition(*where) : std::string();
  return From(from) + condition;
}

std::string SqlWriter::From(const std::vector<Source>& from) {
  std::string text;
  // A join stands first or in brackets: the storage engine gives the comma no lower rank.
  for (const Source& source : from) {
    const bool first = text.empty();
    text += first ? " FROM " : ", ";
    text += first ? Join(source, false) : JoinOperand(source, false);
  }
  return text;
}

std::string SqlWriter::JoinOperand(const Source& source, bool in_brackets) {
  if (source.kind != Source::Kind::kJoin) return Leaf(source, in_brackets);
  return "(" + Join(source, true) + ")";
}

std::string SqlWriter::Join(const Source& source, bool in_brackets) {
  if (source.kind != Source::Kind::kJoin) return Leaf(source, in_brackets);
  const Source* left = source.left.get();
  const Source* right = source.right.get();
  // Brackets are saved where the sides can change places.
  const bool brackets_saved = source.join == sql::JoinKind::kInner &&
                              right->kind == Source::Kind::kJoin &&
                              left->kind != Source::Kind::kJoin;
  if (source.join == sql::JoinKind::kRight || brackets_saved) std::swap(left, right);
  const std::string on = source.on ? " ON " + Condition(*source.on) : std::string();
  return Join(*left, in_brackets) +
         (source.join == sql::JoinKind::kInner ? " JOIN " : " LEFT JOIN ") +
         JoinOperand(*right, in_brackets) + on;
}

std::string SqlWriter::Leaf(const Source& source, bool in_brackets) {
  const std::string alias = " AS t" + std::to_string(source.id);
  if (source.kind == Source::Kind::kQuery) {
    Wanted wanted;
    wanted.keys = keys_wanted_.count(source.id) > 0;
    return "(" + Query(*source.query, wanted) + ")" + alias;
  }
  const std::string name = QuoteName(source.table->name);
  if (!in_brackets || row_ids_wanted_.count(source.id) == 0) return name + alias;
  // A row id is not seen from outside of brackets unless it is a column.
  const std::string row_id = QuoteName(RowIdName(*source.table));
  return "(SELECT " + row_id + " AS " + row_id + ", * FROM " + name + ")" + alias;
}

}  // namespace ambrelio::embedded
