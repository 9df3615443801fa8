#include "ambrelio/engine/embedded/sql/parser.h"

#include <utility>

#include "ambrelio/engine/embedded/sql/parser_state.h"

namespace ambrelio::embedded::sql {

using dao::DaoError;

Statement Parse(std::string_view text) { return Parser(text).ParseStatement(); }

std::unique_ptr<Query> ParseQuery(std::string_view text) {
  return std::make_unique<Query>(Parser(text).ParseStoredQuery());
}

ExprPtr ParseExpression(std::string_view text) { return Parser(text).ParseLoneExpression(); }

Statement Parser::ParseStatement() {
  Statement statement = [this]() -> Statement {
    if (AtQuery()) return ParseQuery();
    if (tokens_.TakeWord("insert")) return ParseInsert();
    if (tokens_.TakeWord("update")) return ParseUpdate();
    if (tokens_.TakeWord("delete")) return ParseDelete();
    if (tokens_.TakeWord("create")) return ParseCreate();
    if (tokens_.TakeWord("alter")) return ParseAlter();
    if (tokens_.TakeWord("drop")) return ParseDrop();
    tokens_.Fail(DaoError::kInvalidStatement);
  }();
  ExpectEnd();
  return statement;
}

Query Parser::ParseStoredQuery() {
  if (!AtQuery()) tokens_.Fail(DaoError::kInvalidStatement);
  Query query = ParseQuery();
  ExpectEnd();
  return query;
}

ExprPtr Parser::ParseLoneExpression() {
  ExprPtr expr = ParseClauseExpression(DaoError::kExpressionSyntax);
  if (!tokens_.AtEnd()) tokens_.Fail(DaoError::kExpressionSyntax);
  return expr;
}

bool Parser::AtQuery() const { return tokens_.AtWord("select") || tokens_.AtBracketedQuery(); }

void Parser::ExpectEnd() {
  if (tokens_.AtEnd()) return;
  if (!tokens_.TakeSymbol(";")) tokens_.Fail(DaoError::kJunkAtEnd);
  if (!tokens_.AtEnd()) tokens_.Fail(DaoError::kTextAfterEnd);
}

// insert into table [(columns)] values (...) | query
Insert Parser::ParseInsert() {
  constexpr DaoError kError = DaoError::kInsertSyntax;
  tokens_.ExpectWord("into", kError);
  Insert insert;
  insert.table = tokens_.ExpectName(kError);
  if (tokens_.AtSymbol("(") && !tokens_.AtBracketedQuery()) insert.columns = ParseNameList(kError);
  if (tokens_.TakeWord("values")) {
    tokens_.ExpectSymbol("(", kError);
    insert.values = ParseExpressionList(kError);
    tokens_.ExpectSymbol(")", kError);
  } else {
    if (!AtQuery()) tokens_.Fail(kError);
    insert.query = std::make_unique<Query>(ParseQuery());
  }
  return insert;
}

// update sources set column = expression, ... [where]
Update Parser::ParseUpdate() {
  Update update;
  update.target = ParseSources(DaoError::kUpdateSyntax);
  tokens_.ExpectWord("set", DaoError::kUpdateSyntax);
  do {
    update.set.push_back(ParseAssignment());
  } while (tokens_.TakeSymbol(","));
  update.where = ParseWhere();
  return update;
}

Assignment Parser::ParseAssignment() {
  constexpr DaoError kError = DaoError::kUpdateSyntax;
  if (!tokens_.AtName()) tokens_.Fail(kError);
  ExprPtr column = ParseColumn();
  tokens_.ExpectSymbol("=", kError);
  return {std::move(column->qualifier), std::move(column->name), ParseClauseExpression(kError)};
}

// delete [* | table.*] from sources [where]
Delete Parser::ParseDelete() {
  constexpr DaoError kError = DaoError::kDeleteSyntax;
  Delete removal;
  if (!tokens_.TakeSymbol("*") && tokens_.AtName()) {
    removal.target = tokens_.ExpectName(kError);
    tokens_.ExpectSymbol(".", kError);
    tokens_.ExpectSymbol("*", kError);
  }
  tokens_.ExpectWord("from", kError);
  removal.from = ParseSources(DaoError::kFromSyntax);
  removal.where = ParseWhere();
  return removal;
}

std::vector<std::string> Parser::ParseNameList(DaoError error) {
  std::vector<std::string> names;
  tokens_.ExpectSymbol("(", error);
  do {
    names.push_back(tokens_.ExpectName(error));
  } while (tokens_.TakeSymbol(","));
  tokens_.ExpectSymbol(")", error);
  return names;
}

}  // namespace ambrelio::embedded::sql
