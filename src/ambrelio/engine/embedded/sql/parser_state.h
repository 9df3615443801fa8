// The parser: one function for each rule of the grammar, spread over the parser_*.cpp files.
//
// Functions that read a part shared by several clauses are told the error of the clause. Depth is
// bounded in two ways: Nesting bounds the recursion of the parser itself, Expr::height that of
// whoever walks the finished tree.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/sql/ast.h"
#include "ambrelio/engine/embedded/sql/token_stream.h"

namespace ambrelio::embedded::sql {

// How tightly operators bind, from the loosest; those of one level group from the left.
enum class Precedence : uint8_t {
  kImp,
  kEqv,
  kXor,
  kOr,
  kAnd,
  kNot,
  kComparison,
  kConcat,
  kAdd,
  kMod,
  kIntDivide,
  kMultiply,
  kNegate,
  kPower,
  kOperand,  // no operator at all
};

class Parser {
 public:
  explicit Parser(std::string_view text) : tokens_(text) {}

  Statement ParseStatement();
  Query ParseStoredQuery();
  ExprPtr ParseLoneExpression();

 private:
  // Counts the levels that the parser is inside of, for a scope.
  class Nesting {
   public:
    explicit Nesting(Parser& parser) : parser_(parser) {
      if (++parser_.nesting_ > kMaxHeight) parser_.tokens_.FailTooComplex();
    }
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& parser_;
  };

  // parser.cpp: statements that write rows.
  Insert ParseInsert();
  Update ParseUpdate();
  Assignment ParseAssignment();
  Delete ParseDelete();
  bool AtQuery() const;
  void ExpectEnd();

  // parser_definition.cpp: statements that change the schema.
  Statement ParseCreate();
  CreateTable ParseCreateTable();
  CreateIndex ParseCreateIndex(bool unique);
  void ParseIndexOption(CreateIndex& index);
  AlterTable ParseAlter();
  void ParseAddition(AlterTable& alter);
  Drop ParseDrop();
  bool AtTableConstraint() const;
  ColumnDefinition ParseColumnDefinition(dao::DaoError error);
  void ParseColumnConstraint(ColumnDefinition& column);
  TableConstraint ParseTableConstraint(dao::DaoError error);
  std::vector<std::string> ParseNameList(dao::DaoError error);

  // parser_select.cpp: queries and the sources of rows.
  Query ParseQuery();
  Query ParseQueryOperand(dao::DaoError missing);
  Query ParseUnion(Query first);
  Query ParseBracketedQuery(dao::DaoError unclosed);
  int Grow();
  Select ParseSelect();
  void ParseTop(Select& select);
  SelectItem ParseSelectItem();
  std::vector<ExprPtr> ParseGroupBy();
  std::vector<OrderItem> ParseOrderBy();
  ExprPtr ParseWhere();
  std::vector<Source> ParseSources(dao::DaoError error);
  Source ParseJoinedSource(dao::DaoError error);
  Source ParseSingleSource(dao::DaoError error);
  bool AtEndOfSources() const;
  bool AtJoin() const;
  JoinKind ParseJoinWords();
  std::string ParseSourceAlias();

  // parser_expression.cpp
  // An expression that fills its place in a clause: `missing` is raised when there is none, 3075
  // when something follows it without an operator.
  ExprPtr ParseClauseExpression(dao::DaoError missing);
  std::vector<ExprPtr> ParseExpressionList(dao::DaoError missing);
  ExprPtr ParseExpression(Precedence loosest);
  ExprPtr ParsePrefixed();
  bool AtPredicate() const;
  ExprPtr ParsePredicate(ExprPtr left);
  ExprPtr ParseIn(ExprPtr left);
  ExprPtr MakeBinary(BinaryOp op, ExprPtr left, ExprPtr right);

  // parser_operand.cpp
  bool AtOperand() const;
  bool AtConstant() const;
  bool AtCall() const;
  ExprPtr ParseOperand();
  ExprPtr ParseConstant();
  ExprPtr ParseBracketed();
  ExprPtr ParseExists();
  ExprPtr ParseCall();
  ExprPtr ParseColumn();
  ExprPtr Make(ExprKind kind, int offset) const;
  // These keep Expr::height.
  void AddOperand(Expr& expr, ExprPtr operand);
  void AddQuery(Expr& expr);
  void SetHeight(Expr& expr, int height);

  TokenStream tokens_;
  int nesting_ = 0;
  // The greatest height of what was read of the current query.
  int deepest_ = 0;
};

}  // namespace ambrelio::embedded::sql
