#include "ambrelio/engine/embedded/planner/nulls.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/embedded/binder/binder.h"
#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/translator/translator.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded::planner {
namespace {

// Conditions over two tables of the same columns: in `There` every row is one that exists, in
// `Gone` all columns read Null.
class Nulls : public testing::Test {
 protected:
  Nulls() {
    Executor executor(*storage_, store_, {});
    for (const char* name : {"There", "Gone"}) {
      executor.Execute(std::string("create table ") + name +
                           " (k long, p text(5), n long, d double, t text(10), y yesno, moment "
                           "datetime, r long not null, constraint pk primary key (k, p))",
                       false);
    }
  }

  std::unique_ptr<bound::Query> Bound(const std::string& expr) {
    BoundStatement bound =
        Bind(sql::Parse("select " + expr + " as x from There, Gone"), store_.Current());
    return std::move(std::get<std::unique_ptr<bound::Query>>(bound.statement));
  }

  static bool IsGone(const bound::ColumnRef& column) { return column.table->name == "Gone"; }

  bool Null(const std::string& expr) { return IsNull(*Bound(expr)->select->items[0], IsGone); }
  bool NeverTrue(const std::string& expr) {
    return IsNeverTrue(*Bound(expr)->select->items[0], IsGone);
  }
  bool Never(const std::string& column) {
    return HoldsNoNull(Bound(column)->select->items[0]->column);
  }
  // The expression in the storage engine's words, as it is and resolved for rows that exist.
  std::string Written(const std::string& expr) { return TranslateQuery(*Bound(expr)); }
  std::string Resolved(const std::string& expr) {
    const auto query = Bound(expr);
    Resolve(query->select->items[0], [](const bound::ColumnRef& column) {
      return column.table->name == "There" && HoldsNoNull(column);
    });
    return TranslateQuery(*query);
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("t.sqlite"));
  CatalogueStore store_{*storage_};
};

TEST_F(Nulls, ColumnsAreNullWhereNothingIsThere) {
  EXPECT_TRUE(Null("Gone.n"));
  EXPECT_TRUE(Null("Gone.k"));
  EXPECT_TRUE(Null("Gone.y"));
  EXPECT_FALSE(Null("There.n"));
}

TEST_F(Nulls, TheLiteralIsNullAndNoOther) {
  EXPECT_TRUE(Null("Null"));
  EXPECT_FALSE(Null("0"));
  EXPECT_FALSE(Null("''"));
  EXPECT_FALSE(Null("False"));
}

TEST_F(Nulls, ArithmeticPassesNullOn) {
  for (const char* op : {"+", "-", "*"}) {
    EXPECT_TRUE(Null(std::string("Gone.n ") + op + " There.n")) << op;
    EXPECT_TRUE(Null(std::string("There.n ") + op + " Gone.n")) << op;
    EXPECT_FALSE(Null(std::string("There.n ") + op + " There.d")) << op;
  }
  EXPECT_TRUE(Null("-Gone.n"));
  EXPECT_FALSE(Null("-There.n"));
  EXPECT_TRUE(Null("Gone.t + There.t"));
  EXPECT_TRUE(Null("There.n * (Gone.n + 1)"));
}

TEST_F(Nulls, ComparisonsPassNullOn) {
  for (const char* op : {"=", "<>", "<", "<=", ">", ">="}) {
    EXPECT_TRUE(Null(std::string("Gone.n ") + op + " 1")) << op;
    EXPECT_TRUE(Null(std::string("1 ") + op + " Gone.n")) << op;
    EXPECT_TRUE(Null(std::string("There.t ") + op + " Gone.t")) << op;
    EXPECT_FALSE(Null(std::string("There.n ") + op + " 1")) << op;
  }
}

TEST_F(Nulls, RangesAndListsAreNullOfTheirFirstOperandOnly) {
  EXPECT_TRUE(Null("Gone.n between 1 and 2"));
  EXPECT_TRUE(Null("Gone.n not between 1 and 2"));
  EXPECT_FALSE(Null("There.n between Gone.n and 2"));
  EXPECT_TRUE(Null("Gone.n in (1, 2)"));
  EXPECT_TRUE(Null("Gone.n not in (1, Null)"));
  EXPECT_FALSE(Null("There.n in (Gone.n, 1)"));
}

TEST_F(Nulls, WhatCanMakeSomethingOfNullIsNotSaidToBeNull) {
  EXPECT_FALSE(Null("Gone.t & 'x'"));
  EXPECT_FALSE(Null("Nz(Gone.n, 0)"));
  EXPECT_FALSE(Null("IIf(Gone.n > 0, 1, 2)"));
  EXPECT_FALSE(Null("Gone.n is null"));
  EXPECT_FALSE(Null("Gone.y and There.y"));
  EXPECT_FALSE(Null("Gone.y or There.y"));
  EXPECT_FALSE(Null("Gone.n in (select k from There)"));
  EXPECT_FALSE(Null("exists (select k from There where k = Gone.k)"));
  EXPECT_FALSE(Null("(select count(*) from There where k = Gone.k)"));
}

TEST_F(Nulls, NullIsNeverTrue) {
  EXPECT_TRUE(NeverTrue("Gone.n > 0"));
  EXPECT_TRUE(NeverTrue("Gone.y"));
  EXPECT_TRUE(NeverTrue("not Gone.y"));
  EXPECT_TRUE(NeverTrue("not Gone.n > 0"));
  EXPECT_TRUE(NeverTrue("Null"));
  EXPECT_FALSE(NeverTrue("There.n > 0"));
}

TEST_F(Nulls, ConstantsAreTrueOrNot) {
  EXPECT_TRUE(NeverTrue("False"));
  EXPECT_FALSE(NeverTrue("True"));
  // The statement is kept for other numbers than this one.
  EXPECT_FALSE(NeverTrue("0"));
}

TEST_F(Nulls, ANullTestOfNullIsKnown) {
  EXPECT_TRUE(NeverTrue("Gone.n is not null"));
  EXPECT_TRUE(NeverTrue("not IsNull(Gone.n)"));
  EXPECT_TRUE(NeverTrue("not Gone.n + 1 is null"));
  EXPECT_FALSE(NeverTrue("IsNull(Gone.n)"));
  EXPECT_FALSE(NeverTrue("not Gone.n is not null"));
  EXPECT_FALSE(NeverTrue("There.n is not null"));
  EXPECT_FALSE(NeverTrue("not IsNull(There.n)"));
}

TEST_F(Nulls, AConjunctionNeedsBothSides) {
  EXPECT_TRUE(NeverTrue("Gone.n > 0 and There.n > 0"));
  EXPECT_TRUE(NeverTrue("There.n > 0 and Gone.n > 0"));
  EXPECT_FALSE(NeverTrue("There.n > 0 and There.d > 0"));
}

TEST_F(Nulls, ADisjunctionNeedsEitherSide) {
  EXPECT_TRUE(NeverTrue("Gone.n > 0 or Gone.d > 0"));
  EXPECT_FALSE(NeverTrue("Gone.n > 0 or There.n > 0"));
  EXPECT_FALSE(NeverTrue("Gone.n > 0 or Gone.n is null"));
  EXPECT_FALSE(NeverTrue("Gone.n > 0 xor There.y"));
  EXPECT_FALSE(NeverTrue("Gone.n > 0 imp There.y"));
  EXPECT_FALSE(NeverTrue("not (Gone.n > 0 and There.n > 0)"));
}

TEST_F(Nulls, KeysRequiredColumnsAndBooleansHoldNone) {
  EXPECT_TRUE(Never("There.k"));
  EXPECT_TRUE(Never("There.p"));
  EXPECT_TRUE(Never("There.r"));
  EXPECT_TRUE(Never("There.y"));
  EXPECT_FALSE(Never("There.n"));
  EXPECT_FALSE(Never("There.t"));
  EXPECT_FALSE(Never("There.moment"));
}

TEST_F(Nulls, TestsOfWhatIsNeverNullAreResolved) {
  EXPECT_EQ(Resolved("IsNull(There.k)"), Written("False"));
  EXPECT_EQ(Resolved("There.r is not null"), Written("True"));
  EXPECT_EQ(Resolved("There.y is null"), Written("False"));
  EXPECT_EQ(Resolved("IsNull(Null)"), Written("True"));
  EXPECT_EQ(Resolved("Null is not null"), Written("False"));
}

TEST_F(Nulls, TestsOfWhatMayBeNullStay) {
  for (const char* test : {"IsNull(There.n)", "There.t is not null", "IsNull(Gone.k)",
                           "IsNull(There.k + 1)", "There.n is null and Gone.k is null"}) {
    EXPECT_EQ(Resolved(test), Written(test)) << test;
  }
}

TEST_F(Nulls, ParametersAreNeverResolved) {
  for (const char* test : {"IsNull(1)", "1 is not null", "IIf(1, There.n, There.n + 1)",
                           "There.n > 0 and 1", "IIf(True, 1, 2)"}) {
    EXPECT_EQ(Resolved(test), Written(test)) << test;
  }
}

TEST_F(Nulls, AKnownChoiceGivesWayToItsSide) {
  EXPECT_EQ(Resolved("IIf(IsNull(There.k), Gone.n, There.n)"), Written("There.n"));
  EXPECT_EQ(Resolved("IIf(There.k is not null, Gone.n, There.n)"), Written("Gone.n"));
  EXPECT_EQ(Resolved("Nz(There.k, There.n)"), Written("There.k"));
  EXPECT_EQ(Resolved("IIf(There.k is null, There.n, There.d) * 2"), Written("There.d * 2"));
}

TEST_F(Nulls, AChoiceBetweenNumbersKeepsItsType) {
  const auto query = Bound("IIf(IsNull(There.k), There.d, There.n)");
  bound::ExprPtr& item = query->select->items[0];
  Resolve(item, [](const bound::ColumnRef&) { return true; });
  EXPECT_EQ(item->kind, bound::ExprKind::kColumn);
  EXPECT_EQ(item->type, ValueType::kDouble);
}

TEST_F(Nulls, AChoiceOfAnotherTypeStaysAsItIs) {
  for (const char* choice : {"IIf(False, There.t, There.n)", "IIf(True, There.n, There.t)",
                             "IIf(True, There.y, There.n)", "IIf(True, There.n, There.moment)"}) {
    EXPECT_EQ(Resolved(choice), Written(choice)) << choice;
  }
}

TEST_F(Nulls, ConnectivesAreResolved) {
  EXPECT_EQ(Resolved("True and There.n > There.d"), Written("There.n > There.d"));
  EXPECT_EQ(Resolved("There.n > There.d and True"), Written("There.n > There.d"));
  EXPECT_EQ(Resolved("False or There.n > There.d"), Written("There.n > There.d"));
  EXPECT_EQ(Resolved("There.n > There.d and False"), Written("False"));
  EXPECT_EQ(Resolved("There.n > There.d or True"), Written("True"));
  EXPECT_EQ(Resolved("not False"), Written("True"));
  EXPECT_EQ(Resolved("not True"), Written("False"));
}

TEST_F(Nulls, ANumberBesideAConnectiveHasStillToBecomeATruth) {
  EXPECT_EQ(Resolved("True and There.n"), Written("True and There.n"));
  EXPECT_EQ(Resolved("There.n or False"), Written("There.n or False"));
  EXPECT_EQ(Resolved("There.n and False"), Written("False"));
}

TEST_F(Nulls, OtherConnectivesStay) {
  for (const char* test : {"True xor There.y", "True eqv There.y", "False imp There.y"}) {
    EXPECT_EQ(Resolved(test), Written(test)) << test;
  }
}

TEST_F(Nulls, WhatFollowsIsResolvedToo) {
  EXPECT_EQ(Resolved("not (IsNull(There.k) or IIf(There.r is null, There.y, False))"),
            Written("True"));
  EXPECT_EQ(Resolved("IIf(not IsNull(There.k) and There.r is not null, There.n, Gone.n)"),
            Written("There.n"));
}

}  // namespace
}  // namespace ambrelio::embedded::planner
