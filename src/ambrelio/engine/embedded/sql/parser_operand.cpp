// What stands between the operators of an expression.
#include <algorithm>
#include <utility>

#include "ambrelio/engine/embedded/sql/parser_state.h"

namespace ambrelio::embedded::sql {

using dao::DaoError;

namespace {

constexpr DaoError kExpressionError = DaoError::kExpressionSyntax;

}  // namespace

bool Parser::AtOperand() const {
  return tokens_.Peek().kind == TokenKind::kLiteral || tokens_.AtSymbol("(") || tokens_.AtName() ||
         tokens_.AtWord("exists") || AtConstant() || AtCall();
}

bool Parser::AtConstant() const {
  return tokens_.AtWord("null") || tokens_.AtWord("true") || tokens_.AtWord("false");
}

// Left and Right are functions as well as kinds of joins, Asc as well as an order.
bool Parser::AtCall() const {
  return tokens_.Peek().kind == TokenKind::kWord && tokens_.AtSymbol("(", 1) &&
         (tokens_.AtName() || tokens_.AtWord("left") || tokens_.AtWord("right") ||
          tokens_.AtWord("asc"));
}

ExprPtr Parser::ParseOperand() {
  if (tokens_.AtSymbol("(")) return ParseBracketed();
  if (tokens_.Peek().kind == TokenKind::kLiteral || AtConstant()) return ParseConstant();
  if (tokens_.AtWord("exists")) return ParseExists();
  if (AtCall()) return ParseCall();
  if (tokens_.AtName()) return ParseColumn();
  tokens_.Fail(kExpressionError);
}

ExprPtr Parser::ParseConstant() {
  ExprPtr expr = Make(ExprKind::kLiteral, tokens_.Peek().offset);
  if (tokens_.TakeWord("null")) {
    expr->literal = Variant::Null();
  } else if (tokens_.AtWord("true") || tokens_.AtWord("false")) {
    expr->literal = tokens_.AtWord("true");
    tokens_.Take();
  } else {
    Token token = tokens_.Take();
    expr->literal = std::move(token.value);
    expr->slot = token.slot;
  }
  return expr;
}

ExprPtr Parser::ParseBracketed() {
  const int offset = tokens_.Peek().offset;
  ExprPtr expr;
  if (tokens_.AtBracketedQuery()) {
    expr = Make(ExprKind::kScalar, offset);
    AddQuery(*expr);
  } else {
    tokens_.ExpectSymbol("(", kExpressionError);
    expr = ParseClauseExpression(kExpressionError);
    tokens_.ExpectSymbol(")", kExpressionError);
  }
  return expr;
}

ExprPtr Parser::ParseExists() {
  ExprPtr expr = Make(ExprKind::kExists, tokens_.Take().offset);
  if (!tokens_.AtBracketedQuery()) tokens_.Fail(kExpressionError);
  AddQuery(*expr);
  return expr;
}

// name([distinct] argument, ...), name(*)
ExprPtr Parser::ParseCall() {
  Token name = tokens_.Take();
  ExprPtr expr = Make(ExprKind::kCall, name.offset);
  expr->name = std::move(name.text);
  tokens_.ExpectSymbol("(", kExpressionError);
  expr->star = tokens_.TakeSymbol("*");
  if (!expr->star && !tokens_.AtSymbol(")")) {
    expr->distinct = tokens_.TakeWord("distinct");
    for (ExprPtr& argument : ParseExpressionList(kExpressionError)) {
      AddOperand(*expr, std::move(argument));
    }
  }
  tokens_.ExpectSymbol(")", kExpressionError);
  return expr;
}

// name, table.name or table!name; behind the table any word is a name.
ExprPtr Parser::ParseColumn() {
  Token name = tokens_.Take();
  ExprPtr expr = Make(ExprKind::kColumn, name.offset);
  if (tokens_.TakeSymbol(".") || tokens_.TakeSymbol("!")) {
    const TokenKind kind = tokens_.Peek().kind;
    if (kind != TokenKind::kWord && kind != TokenKind::kName) tokens_.Fail(kExpressionError);
    expr->qualifier = std::move(name.text);
    name = tokens_.Take();
  }
  expr->name = std::move(name.text);
  if (tokens_.AtSymbol(".") || tokens_.AtSymbol("!")) tokens_.Fail(kExpressionError);
  return expr;
}

ExprPtr Parser::Make(ExprKind kind, int offset) const {
  auto expr = std::make_unique<Expr>();
  expr->kind = kind;
  expr->offset = offset;
  return expr;
}

void Parser::AddOperand(Expr& expr, ExprPtr operand) {
  SetHeight(expr, std::max(expr.height, operand->height + 1));
  expr.args.push_back(std::move(operand));
}

void Parser::AddQuery(Expr& expr) {
  expr.query = std::make_unique<Query>(ParseBracketedQuery(kExpressionError));
  SetHeight(expr, std::max(expr.height, expr.query->height + 1));
}

void Parser::SetHeight(Expr& expr, int height) {
  if (height > kMaxHeight) tokens_.FailTooComplex();
  expr.height = height;
  deepest_ = std::max(deepest_, height);
}

}  // namespace ambrelio::embedded::sql
