// Expressions, by precedence climbing.
#include <algorithm>
#include <array>
#include <utility>

#include "ambrelio/engine/embedded/sql/parser_state.h"
#include "ambrelio/engine/embedded/sql/scanner.h"

namespace ambrelio::embedded::sql {

using dao::DaoError;

namespace {

struct Operator {
  std::string_view text;
  BinaryOp op;
  Precedence precedence;
};

constexpr std::array<Operator, 19> kOperators = {{
    {"and", BinaryOp::kAnd, Precedence::kAnd},
    {"or", BinaryOp::kOr, Precedence::kOr},
    {"xor", BinaryOp::kXor, Precedence::kXor},
    {"eqv", BinaryOp::kEqv, Precedence::kEqv},
    {"imp", BinaryOp::kImp, Precedence::kImp},
    {"=", BinaryOp::kEqual, Precedence::kComparison},
    {"<>", BinaryOp::kNotEqual, Precedence::kComparison},
    {"<", BinaryOp::kLess, Precedence::kComparison},
    {"<=", BinaryOp::kLessEqual, Precedence::kComparison},
    {">", BinaryOp::kGreater, Precedence::kComparison},
    {">=", BinaryOp::kGreaterEqual, Precedence::kComparison},
    {"&", BinaryOp::kConcat, Precedence::kConcat},
    {"+", BinaryOp::kAdd, Precedence::kAdd},
    {"-", BinaryOp::kSubtract, Precedence::kAdd},
    {"mod", BinaryOp::kMod, Precedence::kMod},
    {"\\", BinaryOp::kIntDivide, Precedence::kIntDivide},
    {"*", BinaryOp::kMultiply, Precedence::kMultiply},
    {"/", BinaryOp::kDivide, Precedence::kMultiply},
    {"^", BinaryOp::kPower, Precedence::kPower},
}};

const Operator* FindOperator(const Token& token) {
  if (token.kind != TokenKind::kWord && token.kind != TokenKind::kSymbol) return nullptr;
  const auto* found = std::find_if(kOperators.begin(), kOperators.end(), [&](const Operator& o) {
    return IsSameWord(token.text, o.text);
  });
  return found == kOperators.end() ? nullptr : found;
}

constexpr Precedence Tighter(Precedence precedence) {
  return static_cast<Precedence>(static_cast<int>(precedence) + 1);
}

}  // namespace

ExprPtr Parser::ParseClauseExpression(DaoError missing) {
  if (!AtOperand() && !tokens_.AtWord("not") && !tokens_.AtSymbol("-") && !tokens_.AtSymbol("+")) {
    tokens_.Fail(missing);
  }
  ExprPtr expr = ParseExpression(Precedence::kImp);
  if (AtOperand()) tokens_.Fail(DaoError::kExpressionSyntax);
  return expr;
}

std::vector<ExprPtr> Parser::ParseExpressionList(DaoError missing) {
  std::vector<ExprPtr> list;
  do {
    list.push_back(ParseClauseExpression(missing));
  } while (tokens_.TakeSymbol(","));
  return list;
}

// Reads on as long as the operators bind at least as tightly as `loosest`.
ExprPtr Parser::ParseExpression(Precedence loosest) {
  const Nesting nesting(*this);
  ExprPtr left = ParsePrefixed();
  while (true) {
    if (AtPredicate()) {
      if (loosest > Precedence::kComparison) return left;
      left = ParsePredicate(std::move(left));
      continue;
    }
    const Operator* found = FindOperator(tokens_.Peek());
    if (found == nullptr || found->precedence < loosest) return left;
    tokens_.Take();
    left = MakeBinary(found->op, std::move(left), ParseExpression(Tighter(found->precedence)));
  }
}

// An operand with what stands before it. The sign binds less tightly than ^, so that -2 ^ 2 is -4;
// `not` takes a whole comparison, wherever it stands.
ExprPtr Parser::ParsePrefixed() {
  const bool is_not = tokens_.AtWord("not");
  if (!is_not && !tokens_.AtSymbol("-") && !tokens_.AtSymbol("+")) return ParseOperand();
  std::vector<int> offsets;
  while (is_not ? tokens_.AtWord("not") : tokens_.AtSymbol("-") || tokens_.AtSymbol("+")) {
    const Token prefix = tokens_.Take();
    if (prefix.text != "+") offsets.push_back(prefix.offset);
  }
  ExprPtr expr = ParseExpression(is_not ? Precedence::kComparison : Precedence::kPower);
  for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) {
    ExprPtr outer = Make(is_not ? ExprKind::kNot : ExprKind::kNegate, *offset);
    AddOperand(*outer, std::move(expr));
    expr = std::move(outer);
  }
  return expr;
}

bool Parser::AtPredicate() const {
  return tokens_.AtWord("is") || tokens_.AtWord("not") || tokens_.AtWord("like") ||
         tokens_.AtWord("between") || tokens_.AtWord("in");
}

// is [not] null; [not] like, between, in
ExprPtr Parser::ParsePredicate(ExprPtr left) {
  constexpr DaoError kError = DaoError::kExpressionSyntax;
  constexpr Precedence kBound = Tighter(Precedence::kComparison);
  const bool is = tokens_.TakeWord("is");
  const bool negated = tokens_.TakeWord("not");
  ExprPtr expr;
  if (is) {
    tokens_.ExpectWord("null", kError);
    expr = Make(ExprKind::kIsNull, left->offset);
    AddOperand(*expr, std::move(left));
  } else if (tokens_.TakeWord("like")) {
    expr = MakeBinary(BinaryOp::kLike, std::move(left), ParseExpression(kBound));
  } else if (tokens_.TakeWord("between")) {
    expr = Make(ExprKind::kBetween, left->offset);
    AddOperand(*expr, std::move(left));
    AddOperand(*expr, ParseExpression(kBound));
    tokens_.ExpectWord("and", kError);
    AddOperand(*expr, ParseExpression(kBound));
  } else {
    tokens_.ExpectWord("in", kError);
    expr = ParseIn(std::move(left));
  }
  expr->negated = negated;
  return expr;
}

ExprPtr Parser::ParseIn(ExprPtr left) {
  constexpr DaoError kError = DaoError::kExpressionSyntax;
  const bool is_query = tokens_.AtBracketedQuery();
  ExprPtr expr = Make(is_query ? ExprKind::kInQuery : ExprKind::kIn, left->offset);
  AddOperand(*expr, std::move(left));
  if (is_query) {
    AddQuery(*expr);
    return expr;
  }
  tokens_.ExpectSymbol("(", kError);
  for (ExprPtr& item : ParseExpressionList(kError)) AddOperand(*expr, std::move(item));
  tokens_.ExpectSymbol(")", kError);
  return expr;
}

ExprPtr Parser::MakeBinary(BinaryOp op, ExprPtr left, ExprPtr right) {
  ExprPtr expr = Make(ExprKind::kBinary, left->offset);
  expr->op = op;
  AddOperand(*expr, std::move(left));
  AddOperand(*expr, std::move(right));
  return expr;
}

}  // namespace ambrelio::embedded::sql
