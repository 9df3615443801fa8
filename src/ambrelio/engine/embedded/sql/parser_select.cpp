// Queries, and where their rows come from.
#include <algorithm>
#include <array>
#include <utility>

#include "ambrelio/engine/embedded/sql/parser_state.h"

namespace ambrelio::embedded::sql {

using dao::DaoError;

// operand {union [all] operand} [order by]
Query Parser::ParseQuery() {
  const Nesting nesting(*this);
  const int outer = std::exchange(deepest_, 0);
  Query query = ParseUnion(ParseQueryOperand(DaoError::kSelectSyntax));
  if (tokens_.AtWord("order")) {
    if (!query.order_by.empty()) tokens_.Fail(DaoError::kOrderBySyntax);
    query.order_by = ParseOrderBy();
  }
  query.height = Grow();
  deepest_ = std::max(deepest_, outer);
  return query;
}

// The height of a tree that stands on all that was read of the current query.
int Parser::Grow() {
  if (++deepest_ > kMaxHeight) tokens_.FailTooComplex();
  return deepest_;
}

Query Parser::ParseQueryOperand(DaoError missing) {
  if (tokens_.AtBracketedQuery()) return ParseBracketedQuery(DaoError::kUnionSyntax);
  if (!tokens_.TakeWord("select")) tokens_.Fail(missing);
  Query query;
  query.select = std::make_unique<Select>(ParseSelect());
  return query;
}

Query Parser::ParseUnion(Query first) {
  while (tokens_.TakeWord("union")) {
    Query both;
    both.union_all = tokens_.TakeWord("all");
    both.left = std::make_unique<Query>(std::move(first));
    both.right = std::make_unique<Query>(ParseQueryOperand(DaoError::kUnionSyntax));
    Grow();
    first = std::move(both);
  }
  return first;
}

Query Parser::ParseBracketedQuery(DaoError unclosed) {
  tokens_.ExpectSymbol("(", unclosed);
  Query query = ParseQuery();
  tokens_.ExpectSymbol(")", unclosed);
  return query;
}

// What follows the word select, up to the order by of the query.
Select Parser::ParseSelect() {
  Select select;
  if (!tokens_.TakeWord("all")) {
    select.distinct_row = tokens_.TakeWord("distinctrow");
    select.distinct = !select.distinct_row && tokens_.TakeWord("distinct");
  }
  if (tokens_.TakeWord("top")) ParseTop(select);
  do {
    select.items.push_back(ParseSelectItem());
  } while (tokens_.TakeSymbol(","));
  if (tokens_.TakeWord("from")) {
    select.from = ParseSources(DaoError::kFromSyntax);
  } else if (tokens_.AtWord("into")) {
    tokens_.Fail(DaoError::kSelectSyntax);
  }
  select.where = ParseWhere();
  if (tokens_.TakeWord("group")) select.group_by = ParseGroupBy();
  if (tokens_.TakeWord("having")) {
    select.having = ParseClauseExpression(DaoError::kHavingSyntax);
  }
  return select;
}

void Parser::ParseTop(Select& select) {
  select.top = tokens_.ExpectWholeNumber(DaoError::kSelectSyntax);
  // `percent` is also a fine name for a column, and then something other than an item follows it.
  const bool is_column = tokens_.AtSymbol(",", 1) || tokens_.AtSymbol(".", 1) ||
                         tokens_.AtWord("from", 1) || tokens_.AtWord("as", 1);
  select.top_percent = !is_column && tokens_.TakeWord("percent");
}

SelectItem Parser::ParseSelectItem() {
  constexpr DaoError kError = DaoError::kSelectSyntax;
  SelectItem item;
  if (tokens_.TakeSymbol("*")) {
    item.star = true;
  } else if (tokens_.AtName() && tokens_.AtSymbol(".", 1) && tokens_.AtSymbol("*", 2)) {
    item.star = true;
    item.qualifier = tokens_.ExpectName(kError);
    tokens_.ExpectSymbol(".", kError);
    tokens_.ExpectSymbol("*", kError);
  } else {
    item.expr = ParseClauseExpression(kError);
    if (tokens_.TakeWord("as")) item.alias = tokens_.ExpectName(kError);
  }
  return item;
}

ExprPtr Parser::ParseWhere() {
  if (!tokens_.TakeWord("where")) return nullptr;
  return ParseClauseExpression(DaoError::kWhereSyntax);
}

std::vector<ExprPtr> Parser::ParseGroupBy() {
  tokens_.ExpectWord("by", DaoError::kGroupBySyntax);
  return ParseExpressionList(DaoError::kGroupBySyntax);
}

std::vector<OrderItem> Parser::ParseOrderBy() {
  constexpr DaoError kError = DaoError::kOrderBySyntax;
  tokens_.ExpectWord("order", kError);
  tokens_.ExpectWord("by", kError);
  std::vector<OrderItem> items;
  do {
    OrderItem item{ParseClauseExpression(kError)};
    item.descending = tokens_.TakeWord("desc");
    if (!item.descending) tokens_.TakeWord("asc");
    items.push_back(std::move(item));
  } while (tokens_.TakeSymbol(","));
  return items;
}

// source {, source}; `error` is that of the clause they stand in.
std::vector<Source> Parser::ParseSources(DaoError error) {
  std::vector<Source> sources;
  do {
    sources.push_back(ParseJoinedSource(error));
  } while (tokens_.TakeSymbol(","));
  if (!AtEndOfSources()) tokens_.Fail(error);
  return sources;
}

bool Parser::AtEndOfSources() const {
  static constexpr std::array<std::string_view, 6> kFollowers = {"where", "group", "having",
                                                                 "order", "union", "set"};
  return tokens_.AtEnd() || tokens_.AtSymbol(";") || tokens_.AtSymbol(")") ||
         std::any_of(kFollowers.begin(), kFollowers.end(),
                     [this](std::string_view word) { return tokens_.AtWord(word); });
}

// source [join source on condition]. A further join needs brackets around the first.
Source Parser::ParseJoinedSource(DaoError error) {
  constexpr DaoError kError = DaoError::kJoinSyntax;
  const Nesting nesting(*this);
  Source left = ParseSingleSource(error);
  if (!AtJoin()) return left;
  Source join;
  join.kind = Source::Kind::kJoin;
  join.join = ParseJoinWords();
  join.left = std::make_unique<Source>(std::move(left));
  join.right = std::make_unique<Source>(ParseSingleSource(kError));
  tokens_.ExpectWord("on", kError);
  join.on = ParseClauseExpression(kError);
  if (AtJoin()) tokens_.Fail(DaoError::kExpressionSyntax);
  return join;
}

bool Parser::AtJoin() const {
  return tokens_.AtWord("inner") || tokens_.AtWord("left") || tokens_.AtWord("right");
}

JoinKind Parser::ParseJoinWords() {
  JoinKind kind = JoinKind::kInner;
  if (!tokens_.TakeWord("inner")) {
    kind = tokens_.AtWord("left") ? JoinKind::kLeft : JoinKind::kRight;
    tokens_.Take();
    tokens_.TakeWord("outer");
  }
  tokens_.ExpectWord("join", DaoError::kJoinSyntax);
  return kind;
}

// A table or stored query, a query in brackets, or any source in brackets.
Source Parser::ParseSingleSource(DaoError error) {
  Source source;
  if (tokens_.AtBracketedQuery()) {
    source.kind = Source::Kind::kDerived;
    source.query = std::make_unique<Query>(ParseBracketedQuery(error));
  } else if (tokens_.TakeSymbol("(")) {
    source = ParseJoinedSource(error);
    tokens_.ExpectSymbol(")", error);
    return source;
  } else {
    source.name = tokens_.ExpectName(error);
  }
  source.alias = ParseSourceAlias();
  return source;
}

std::string Parser::ParseSourceAlias() {
  if (tokens_.TakeWord("as")) return tokens_.ExpectName(DaoError::kFromSyntax);
  return tokens_.AtName() ? tokens_.ExpectName(DaoError::kFromSyntax) : std::string();
}

}  // namespace ambrelio::embedded::sql
