#include <gmock/gmock.h>

#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

int ExpressionError(std::string_view text) {
  try {
    ParseExpression(text);
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

TEST(Expression, MultipliesBeforeItAdds) {
  EXPECT_EQ(PrintedExpression("a + b * c - d / e"), "((a + (b * c)) - (d / e))");
}

TEST(Expression, OrdersAllArithmeticOperators) {
  EXPECT_EQ(PrintedExpression("a & b + c mod d \\ e * -f ^ g"),
            "(a & (b + (c mod (d \\ (e * (-(f ^ g)))))))");
  EXPECT_EQ(PrintedExpression("f ^ g * e \\ d mod c + b & a"),
            "((((((f ^ g) * e) \\ d) mod c) + b) & a)");
}

TEST(Expression, OrdersAllLogicalOperators) {
  EXPECT_EQ(PrintedExpression("a imp b eqv c xor d or e and not f = g & h"),
            "(a imp (b eqv (c xor (d or (e and (not (f = (g & h))))))))");
  EXPECT_EQ(PrintedExpression("not f and e or d xor c eqv b imp a"),
            "((((((not f) and e) or d) xor c) eqv b) imp a)");
}

TEST(Expression, GroupsEqualOperatorsFromTheLeft) {
  EXPECT_EQ(PrintedExpression("a - b - c"), "((a - b) - c)");
  EXPECT_EQ(PrintedExpression("a / b * c"), "((a / b) * c)");
  EXPECT_EQ(PrintedExpression("a ^ b ^ c"), "((a ^ b) ^ c)");
  EXPECT_EQ(PrintedExpression("a = b <> c"), "((a = b) <> c)");
}

TEST(Expression, ObeysBrackets) {
  EXPECT_EQ(PrintedExpression("(a + b) * c"), "((a + b) * c)");
  EXPECT_EQ(PrintedExpression("((a)) - (b - (c))"), "(a - (b - c))");
}

TEST(Expression, BindsTheSignLessTightlyThanThePower) {
  EXPECT_EQ(PrintedExpression("-2 ^ 2"), "(-(2 ^ 2))");
  EXPECT_EQ(PrintedExpression("-a * b"), "((-a) * b)");
}

TEST(Expression, AllowsASignBeforeAnyOperand) {
  EXPECT_EQ(PrintedExpression("2 ^ -1"), "(2 ^ (-1))");
  EXPECT_EQ(PrintedExpression("a - -b"), "(a - (-b))");
  EXPECT_EQ(PrintedExpression("--a"), "(-(-a))");
  EXPECT_EQ(PrintedExpression("a=-1"), "(a = (-1))");
}

TEST(Expression, DropsAPlusSign) { EXPECT_EQ(PrintedExpression("+a + +b"), "(a + b)"); }

TEST(Expression, KeepsTheSignOutOfTheLiteral) {
  const ExprPtr expr = ParseExpression("-5");
  EXPECT_EQ(expr->kind, ExprKind::kNegate);
  EXPECT_EQ(expr->args[0]->literal, Variant(5));
}

TEST(Expression, ReadsEveryComparison) {
  EXPECT_EQ(PrintedExpression("a=b"), "(a = b)");
  EXPECT_EQ(PrintedExpression("a<>b"), "(a <> b)");
  EXPECT_EQ(PrintedExpression("a<b"), "(a < b)");
  EXPECT_EQ(PrintedExpression("a<=b"), "(a <= b)");
  EXPECT_EQ(PrintedExpression("a>b"), "(a > b)");
  EXPECT_EQ(PrintedExpression("a>=b"), "(a >= b)");
}

TEST(Expression, NegatesWholeComparisonsWithNot) {
  EXPECT_EQ(PrintedExpression("not a = b and c"), "((not (a = b)) and c)");
  EXPECT_EQ(PrintedExpression("not not a"), "(not (not a))");
  EXPECT_EQ(PrintedExpression("not isnull(a)"), "(not isnull(a))");
}

TEST(Expression, AllowsNotAfterAnOperator) {
  EXPECT_EQ(PrintedExpression("a = not b"), "(a = (not b))");
  EXPECT_EQ(PrintedExpression("a and not b or c"), "((a and (not b)) or c)");
}

TEST(Expression, ReadsLike) {
  EXPECT_EQ(PrintedExpression("a like 'x*' & b"), "(a like ('x*' & b))");
  EXPECT_EQ(PrintedExpression("a not like 'x'"), "(a not like 'x')");
}

TEST(Expression, ReadsBetweenWithItsOwnAnd) {
  EXPECT_EQ(PrintedExpression("a between 1 and 2 + 3 and b"), "((a between 1 and (2 + 3)) and b)");
  EXPECT_EQ(PrintedExpression("a not between b and c"), "(a not between b and c)");
}

TEST(Expression, ReadsInWithAList) {
  EXPECT_EQ(PrintedExpression("a in (1)"), "(a in [1])");
  EXPECT_EQ(PrintedExpression("a + 1 not in (b, 'c', -2)"), "((a + 1) not in [b, 'c', (-2)])");
}

TEST(Expression, ReadsInWithAQuery) {
  EXPECT_EQ(PrintedExpression("a in (select b from t)"), "(a in {select b from t})");
  EXPECT_EQ(PrintedExpression("a not in ((select b from t))"), "(a not in {select b from t})");
}

TEST(Expression, ReadsInWithQueriesAmongValues) {
  EXPECT_EQ(PrintedExpression("a in ((select b from t), 2)"), "(a in [{select b from t}, 2])");
}

TEST(Expression, ReadsIsNull) {
  EXPECT_EQ(PrintedExpression("a is null"), "(a is null)");
  EXPECT_EQ(PrintedExpression("a + b is not null or c"), "(((a + b) is not null) or c)");
}

TEST(Expression, ReadsExists) {
  EXPECT_EQ(PrintedExpression("exists (select * from t)"), "(exists {select * from t})");
  EXPECT_EQ(PrintedExpression("not exists (select * from t)"), "(not (exists {select * from t}))");
}

TEST(Expression, ReadsAQueryAsAValue) {
  EXPECT_EQ(PrintedExpression("(select max(a) from t) + 1"), "({select max(a) from t} + 1)");
  EXPECT_EQ(PrintedExpression("((select a from t) + 1)"), "({select a from t} + 1)");
  EXPECT_EQ(PrintedExpression("((select a from t) union (select b from u))"),
            "{{select a from t} union {select b from u}}");
}

TEST(Expression, ReadsConstants) {
  EXPECT_EQ(PrintedExpression("f(TRUE, False, nUlL)"), "f(True, False, Null)");
  const ExprPtr expr = ParseExpression("True");
  EXPECT_EQ(expr->literal, Variant(true));
  EXPECT_EQ(expr->slot, -1);
}

TEST(Expression, ReadsColumnsWithTheirTable) {
  EXPECT_EQ(PrintedExpression("t.a + t!b + [my table].[my column]"),
            "((t.a + t.b) + my table.my column)");
}

TEST(Expression, TakesAnyWordBehindATableAsAColumn) {
  EXPECT_EQ(PrintedExpression("t.order = t.select"), "(t.order = t.select)");
}

TEST(Expression, RefusesAThirdPartOfAName) { EXPECT_EQ(ExpressionError("a.b.c"), 3075); }

TEST(Expression, KeepsTheSpellingOfNames) {
  EXPECT_EQ(PrintedExpression("PARCIALPESO * Año"), "(PARCIALPESO * Año)");
}

TEST(Expression, AllowsCommonColumnNamesUnquoted) {
  for (const std::string name :
       {"Nivel", "Item",  "Uso",    "Codigo", "Momento",  "Deposito", "Nombre",
        "key",   "date",  "value",  "text",   "time",     "count",    "percent",
        "outer", "index", "column", "add",    "default",  "number",   "year",
        "level", "with",  "name",   "note",   "inserted", "_a",       "a1"}) {
    EXPECT_EQ(PrintedExpression(name + " + 1"), "(" + name + " + 1)");
  }
}

TEST(Expression, AllowsAnyNameInQuotes) {
  EXPECT_EQ(PrintedExpression("[select] = `from`"), "(select = from)");
  EXPECT_EQ(ParseExpression("[null]")->kind, ExprKind::kColumn);
}

TEST(Expression, RefusesReservedWordsAsNames) {
  for (const char* word : {"select", "from", "where", "group", "by", "order", "and", "union", "on",
                           "as", "set", "values", "into", "all", "any", "some"}) {
    EXPECT_EQ(ExpressionError(word), 3075) << word;
  }
}

TEST(Expression, ReadsCalls) {
  EXPECT_EQ(PrintedExpression("IIf(IsNull(a), 1, t.b)"), "IIf(IsNull(a), 1, t.b)");
  EXPECT_EQ(PrintedExpression("Date() - Now ()"), "(Date() - Now())");
  EXPECT_EQ(PrintedExpression("count(*) + Count(distinct a)"), "(count(*) + Count(distinct a))");
}

TEST(Expression, KnowsLeftAndRightAsFunctions) {
  EXPECT_EQ(PrintedExpression("left(a, 1) & Right (b, 2)"), "(left(a, 1) & Right(b, 2))");
}

TEST(Expression, RefusesAnArgumentThatIsMissing) {
  for (const char* text : {"f(,a)", "f(a,)", "f(a,,b)", "f(a", "f(", "f(a b)", "f(distinct)"}) {
    EXPECT_EQ(ExpressionError(text), 3075) << text;
  }
}

TEST(Expression, RefusesAnOperandThatIsMissing) {
  for (const char* text : {"",
                           "a +",
                           "* a",
                           "a + * b",
                           "a and",
                           "and a",
                           "()",
                           "(a",
                           "a)",
                           "not",
                           "-",
                           "a = ",
                           "a < > b",
                           "a is",
                           "a is not",
                           "a is 5",
                           "a not",
                           "a not b",
                           "a not null",
                           "a between 1",
                           "a between 1 or 2",
                           "a between and 2",
                           "a in",
                           "a in b",
                           "a in ()",
                           "a in (1,)",
                           "a in (1",
                           "a in (select b from t",
                           "exists",
                           "exists (1)",
                           "exists a",
                           "a.",
                           "a.5",
                           ".a",
                           "a like",
                           "(select a from t"}) {
    EXPECT_EQ(ExpressionError(text), 3075) << text;
  }
}

TEST(Expression, RefusesAnOperatorThatIsMissing) {
  for (const char* text : {"a b", "a 5", "5 a", "'x' 'y'", "a (b)(c)", "[a] (b)", "(a) (b)",
                           "a exists (select 1)", "f(a) g(b)", "a = 1 b = 2", "a true", "1 2"}) {
    EXPECT_EQ(ExpressionError(text), 3075) << text;
  }
}

TEST(Expression, RefusesComparisonsWithAllRowsOfAQuery) {
  for (const char* text :
       {"a > all (select b from t)", "a = any (select b from t)", "a <> some (select b from t)"}) {
    EXPECT_EQ(ExpressionError(text), 3075) << text;
  }
}

TEST(Expression, KnowsWhereItStarts) {
  const ExprPtr expr = ParseExpression(" a  and f(b)");
  EXPECT_EQ(expr->offset, 1);
  EXPECT_EQ(expr->args[0]->offset, 1);
  EXPECT_EQ(expr->args[1]->offset, 8);
}

TEST(Expression, CountsItsHeight) {
  EXPECT_EQ(ParseExpression("a")->height, 1);
  EXPECT_EQ(ParseExpression("a + b + c")->height, 3);
  EXPECT_EQ(ParseExpression("f(a, -b)")->height, 3);
  EXPECT_EQ(ParseExpression("exists (select a + b from t)")->height, 4);
}

TEST(LoneExpression, ReadsColumnDefaults) {
  EXPECT_EQ(PrintedExpression("0"), "0");
  EXPECT_EQ(PrintedExpression("'x'"), "'x'");
  EXPECT_EQ(PrintedExpression("Now()"), "Now()");
}

TEST(LoneExpression, EndsWithTheText) {
  EXPECT_EQ(ExpressionError("1;"), 3075);
  EXPECT_EQ(ExpressionError("1, 2"), 3075);
}

}  // namespace
}  // namespace ambrelio::embedded::sql
