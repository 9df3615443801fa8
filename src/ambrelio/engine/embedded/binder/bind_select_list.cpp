// What a query delivers, under which names and in which order.
#include <algorithm>

#include "ambrelio/engine/embedded/binder/binding.h"

namespace ambrelio::embedded {

using bound::ColumnPart;
using bound::ExprKind;
using bound::ExprPtr;
using bound::Query;
using dao::DaoError;

namespace {

// The first number of the names of columns that have none.
constexpr size_t kFirstUnnamed = 1000;

// The relation and column that a plain column item names; null for everything else.
const Relation* OriginOf(const bound::Expr& item, const Scope& scope) {
  if (item.kind != ExprKind::kColumn) return nullptr;
  for (const Relation& relation : scope.relations) {
    if (relation.source() == item.column.source) return &relation;
  }
  return nullptr;
}

bool NameTaken(const std::vector<bound::Column>& columns, const std::string& name, size_t but) {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (i != but && SameName(columns[i].name, name)) return true;
  }
  return false;
}

}  // namespace

void Binding::BindStar(const sql::SelectItem& item, const Scope& scope, Query& query,
                       std::vector<const Relation*>& origins) {
  bool any = false;
  for (const Relation& relation : scope.relations) {
    const bool asked =
        item.qualifier.empty() ? relation.depth == 0 : SameName(relation.name(), item.qualifier);
    if (!asked) continue;
    any = true;
    for (int i = 0; i < relation.ColumnCount(); ++i) {
      query.select->items.push_back(relation.Refer(i));
      query.columns.push_back(relation.Describe(i));
      origins.push_back(&relation);
    }
  }
  if (!any) Fail(DaoError::kUnknownTable, item.qualifier);
}

void Binding::BindItems(const std::vector<sql::SelectItem>& items, const Scope& scope,
                        Query& query) {
  std::vector<const Relation*> origins;  // of columns that go by their own name, else null
  const auto* items_outside = items_;
  const size_t item_outside = item_;
  const Scope* scope_outside = items_scope_;
  items_ = &items;
  items_scope_ = &scope;
  for (item_ = 0; item_ < items.size(); ++item_) {
    const sql::SelectItem& item = items[item_];
    if (item.star) {
      BindStar(item, scope, query, origins);
      continue;
    }
    ExprPtr expr = BindExpr(*item.expr, Place::kSelect);
    const Relation* origin = OriginOf(*expr, scope);
    bound::Column column{item.alias, expr->type, SizeOf(expr->type)};
    if (origin != nullptr) {
      column = origin->Describe(expr->column.index);
      if (!item.alias.empty()) column.name = item.alias;
    } else if (column.name.empty()) {
      column.name = "Expr" + std::to_string(kFirstUnnamed + query.columns.size());
    }
    query.columns.push_back(std::move(column));
    origins.push_back(item.alias.empty() ? origin : nullptr);
    query.select->items.push_back(std::move(expr));
  }
  items_ = items_outside;
  item_ = item_outside;
  items_scope_ = scope_outside;

  // Columns of one name from several sources go by both names.
  std::vector<bool> taken(query.columns.size());
  for (size_t i = 0; i < taken.size(); ++i) {
    taken[i] = NameTaken(query.columns, query.columns[i].name, i);
  }
  for (size_t i = 0; i < taken.size(); ++i) {
    std::string& name = query.columns[i].name;
    if (!taken[i]) continue;
    if (origins[i] == nullptr) Fail(DaoError::kDuplicateOutputAlias, name);
    name.insert(0, origins[i]->name() + ".");
  }
  // What still has the name of another is the same column once more.
  for (size_t i = 0; i < taken.size(); ++i) {
    std::string& name = query.columns[i].name;
    if (taken[i] && NameTaken(query.columns, name, i)) {
      name = "Expr" + std::to_string(kFirstUnnamed + i);
    }
  }
}

void Binding::BindOrder(const sql::Query& query, Query& result) {
  for (const sql::OrderItem& item : query.order_by) {
    const sql::Expr& expr = *item.expr;
    std::optional<size_t> place;
    if (expr.kind == sql::ExprKind::kLiteral && expr.slot < 0 &&
        expr.literal.type() == VariantType::kLong) {
      const int32_t number = expr.literal.as<int32_t>();
      if (number < 1 || static_cast<size_t>(number) > result.columns.size()) {
        Fail(DaoError::kUnionOrderBy, std::to_string(number));
      }
      place = static_cast<size_t>(number - 1);
    } else if (!result.select) {
      for (size_t i = 0; i < result.columns.size() && !place; ++i) {
        if (SameName(result.columns[i].name, expr.name)) place = i;
      }
      if (expr.kind != sql::ExprKind::kColumn || !place) {
        Fail(DaoError::kUnionOrderBy, expr.name);
      }
    }
    ExprPtr key;
    if (!place) {
      key = BindExpr(expr, Place::kSelect);
    } else if (result.select) {
      key = bound::Clone(*result.select->items[*place]);
    } else {
      bound::ColumnRef ref;
      ref.part = ColumnPart::kOutput;
      ref.index = static_cast<int>(*place);
      key = bound::MakeColumn(ref, result.columns[*place].type);
    }
    result.order.push_back({std::move(key), item.descending});
  }
}

void Binding::CompleteOrder(Query& query) {
  std::erase_if(query.order,
                [](const bound::OrderKey& key) { return key.expr->kind == ExprKind::kLiteral; });
  query.stated_order = query.order.size();
  std::vector<ExprPtr> keys;
  if (query.select) {
    for (const ExprPtr& key : query.select->keys) keys.push_back(bound::Clone(*key));
  } else {
    bound::ColumnRef ref;
    ref.part = ColumnPart::kOutput;
    for (const bound::Column& column : query.columns) {
      keys.push_back(bound::MakeColumn(ref, column.type));
      ++ref.index;
    }
  }
  for (ExprPtr& key : keys) {
    const bool there = std::any_of(query.order.begin(), query.order.end(), [&](const auto& other) {
      return key->kind == ExprKind::kColumn && Same(*other.expr, *key);
    });
    if (!there) query.order.push_back({std::move(key), false});
  }
}

}  // namespace ambrelio::embedded
