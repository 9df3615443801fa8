#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

TEST(Select, ReadsStarsAndExpressions) {
  EXPECT_EQ(Printed("select *, t.*, [a b].*, c + 1 as d from t"),
            "select *, t.*, a b.*, (c + 1) as d from t");
}

TEST(Select, NeedsNoSource) { EXPECT_EQ(Printed("SELECT 1"), "select 1"); }

TEST(Select, NeedsAsBeforeTheAliasOfAColumn) {
  EXPECT_EQ(ErrorNumberOf("select a b from t"), 3075);
  EXPECT_EQ(ErrorNumberOf("select a as from t"), 3141);
}

TEST(Select, NeedsNoAsBeforeTheAliasOfASource) {
  EXPECT_EQ(Printed("select * from t x, u as y"), "select * from t as x, u as y");
}

TEST(Select, TellsDistinctFromDistinctRow) {
  EXPECT_EQ(Printed("select distinct a from t"), "select distinct a from t");
  EXPECT_EQ(Printed("select distinctrow a from t"), "select distinctrow a from t");
  EXPECT_EQ(Printed("select all a from t"), "select a from t");
}

TEST(Select, ReadsTop) {
  EXPECT_EQ(Printed("select top 5 a from t"), "select top 5 a from t");
  EXPECT_EQ(Printed("select distinct top 10 percent a from t"),
            "select distinct top 10 percent a from t");
}

TEST(Select, TellsAColumnNamedPercentFromTheWord) {
  EXPECT_EQ(Printed("select top 5 percent from t"), "select top 5 percent from t");
  EXPECT_EQ(Printed("select top 5 percent percent from t"), "select top 5 percent percent from t");
  EXPECT_FALSE(std::get<Query>(Parse("select top 5 percent, a from t")).select->top_percent);
  EXPECT_TRUE(std::get<Query>(Parse("select top 5 percent * from t")).select->top_percent);
}

TEST(Select, RefusesATopThatIsNoWholeNumber) {
  for (const char* text : {"select top a from t", "select top 1.5 a from t",
                           "select top -1 a from t", "select top 3000000000 a from t"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3141) << text;
  }
}

TEST(Select, ReadsAllClauses) {
  EXPECT_EQ(Printed("select a, sum(b) as s from t where c > 0 group by a, d + 1 having sum(b) > 5 "
                    "order by a desc, sum(b) asc, 1;"),
            "select a, sum(b) as s from t where (c > 0) group by a, (d + 1) having (sum(b) > 5) "
            "order by a desc, sum(b), 1");
}

TEST(Select, KeepsThePlaceOfAnOrderByOutOfTheSlots) {
  const Query query = std::get<Query>(Parse("select a, 7 from t order by 2, (1), a + 3"));
  EXPECT_EQ(query.select->items[1].expr->slot, 0);
  EXPECT_EQ(query.order_by[0].expr->slot, -1);
  EXPECT_EQ(query.order_by[1].expr->slot, -1);
  EXPECT_EQ(query.order_by[2].expr->args[1]->slot, 1);
}

TEST(Select, RefusesAMissingList) {
  for (const char* text :
       {"select", "select from t", "select a, from t", "select , a from t",
        "select distinct from t", "select top 5 from t", "select a,", "select ;"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3141) << text;
  }
}

TEST(Select, RefusesToMakeATable) { EXPECT_EQ(ErrorNumberOf("select a into u from t"), 3141); }

TEST(Select, RefusesAFaultyFromClause) {
  for (const char* text :
       {"select * from", "select * from ", "select * from where a = 1",
        "select * from  where Codigo=1", "select * from t,", "select * from , t",
        "select * from t as", "select * from t a b", "select * from 5", "select * from t (a)",
        "select * from (t", "select * from ()", "select * from (select a from u",
        "select * from t = u", "select * from t join u on t.a = u.a",
        "select Codigo, Nombre, NIF from  order by Nombre", "select * from t as where a = 1"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3131) << text;
  }
}

TEST(Select, RefusesAFaultyWhereClause) {
  EXPECT_EQ(ErrorNumberOf("select * from t where"), 3145);
  EXPECT_EQ(ErrorNumberOf("select * from t where order by a"), 3145);
  EXPECT_EQ(ErrorNumberOf("select * from t where = 1"), 3145);
}

TEST(Select, RefusesAFaultyGroupByClause) {
  EXPECT_EQ(ErrorNumberOf("select a from t group a"), 3132);
  EXPECT_EQ(ErrorNumberOf("select a from t group by"), 3132);
  EXPECT_EQ(ErrorNumberOf("select a from t group by a,"), 3132);
}

TEST(Select, RefusesAFaultyHavingClause) {
  EXPECT_EQ(ErrorNumberOf("select a from t group by a having"), 3133);
  EXPECT_EQ(ErrorNumberOf("select a from t group by a having order by a"), 3133);
}

TEST(Select, RefusesAFaultyOrderByClause) {
  EXPECT_EQ(ErrorNumberOf("select a from t order a"), 3138);
  EXPECT_EQ(ErrorNumberOf("select a from t order by"), 3138);
  EXPECT_EQ(ErrorNumberOf("select a from t order by a,"), 3138);
  EXPECT_EQ(ErrorNumberOf("select a from t order by desc"), 3138);
}

TEST(Select, RefusesAnExpressionWithAFaultInAnyClause) {
  for (const char* text :
       {"select a + from t", "select a from t where a = ", "select a from t where (a = 1",
        "select a from t where a = 1 b = 2", "select a from t group by a b",
        "select a from t order by a b", "select a from t where a = 'x"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3075) << text;
  }
}

TEST(Join, ReadsTheThreeKinds) {
  EXPECT_EQ(Printed("select * from a inner join b on a.x = b.x"),
            "select * from (a inner join b on (a.x = b.x))");
  EXPECT_EQ(Printed("select * from a left join b on a.x = b.x"),
            "select * from (a left join b on (a.x = b.x))");
  EXPECT_EQ(Printed("select * from a right join b on a.x = b.x"),
            "select * from (a right join b on (a.x = b.x))");
}

TEST(Join, AllowsTheWordOuter) {
  EXPECT_EQ(Printed("select * from a left outer join b on a.x = b.x"),
            "select * from (a left join b on (a.x = b.x))");
}

TEST(Join, HasAliasesOnBothSides) {
  EXPECT_EQ(Printed("select * from a as p left join b q on p.x = q.x"),
            "select * from (a as p left join b as q on (p.x = q.x))");
}

TEST(Join, NestsInBrackets) {
  EXPECT_EQ(
      Printed("select * from ((a inner join b on a.x = b.x) left join c on b.x = c.x) inner "
              "join (d right join e on d.x = e.x) on c.x = d.x"),
      "select * from (((a inner join b on (a.x = b.x)) left join c on (b.x = c.x)) inner join "
      "(d right join e on (d.x = e.x)) on (c.x = d.x))");
}

TEST(Join, StandsInACommaList) {
  EXPECT_EQ(Printed("select * from a, b inner join c on b.x = c.x, d"),
            "select * from a, (b inner join c on (b.x = c.x)), d");
}

TEST(Join, RefusesAThirdSourceWithoutBrackets) {
  EXPECT_EQ(ErrorNumberOf("select * from a inner join b on a.x = b.x inner join c on b.x = c.x"),
            3075);
}

TEST(Join, RefusesAFaultyJoin) {
  for (const char* text :
       {"select * from a left join", "select * from a left b", "select * from a left",
        "select * from a inner join b", "select * from a inner join b on",
        "select * from a inner join b where a.x = b.x", "select * from a left join where x = 1",
        "select * from a inner outer join b on a.x = b.x",
        "select * from a left join on a.x = 1"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3135) << text;
  }
}

TEST(DerivedTable, MayHaveAnAlias) {
  EXPECT_EQ(Printed("select * from (select a from t) as x"),
            "select * from {select a from t} as x");
  EXPECT_EQ(Printed("select * from (select a from t) x, (select b from u)"),
            "select * from {select a from t} as x, {select b from u}");
}

TEST(DerivedTable, MayBeASideOfAJoinInBrackets) {
  EXPECT_EQ(Printed("select * from ((select a from t) as x inner join u on x.a = u.a)"),
            "select * from ({select a from t} as x inner join u on (x.a = u.a))");
}

TEST(DerivedTable, MayBeAUnion) {
  EXPECT_EQ(Printed("select * from ((select a from t) union (select b from u)) as x"),
            "select * from {{select a from t} union {select b from u}} as x");
  EXPECT_EQ(Printed("select * from (select a from t union all select b from u) as x"),
            "select * from {{select a from t} union all {select b from u}} as x");
}

TEST(DerivedTable, MayHaveMoreBracketsThanItNeeds) {
  EXPECT_EQ(Printed("select * from (((select a from t))) as x"),
            "select * from {select a from t} as x");
  EXPECT_EQ(Printed("select * from ((t))"), "select * from t");
}

TEST(Union, GroupsFromTheLeft) {
  EXPECT_EQ(Printed("select a from t union select b from u union all select c from v"),
            "{{select a from t} union {select b from u}} union all {select c from v}");
}

TEST(Union, ObeysBrackets) {
  EXPECT_EQ(Printed("select a from t union all (select b from u union select c from v)"),
            "{select a from t} union all {{select b from u} union {select c from v}}");
}

TEST(Union, GivesTheLastOrderByToTheWhole) {
  EXPECT_EQ(Printed("(select a from t) union (select b from u) order by a"),
            "{select a from t} union {select b from u} order by a");
  EXPECT_EQ(Printed("select a from t union select b from u order by 1 desc"),
            "{select a from t} union {select b from u} order by 1 desc");
}

TEST(Union, LetsAnOperandInBracketsHaveItsOwnOrder) {
  EXPECT_EQ(Printed("(select top 1 a from t order by a) union select b from u order by 1"),
            "{select top 1 a from t order by a} union {select b from u} order by 1");
}

TEST(Union, ReadsASelectInBracketsAsItself) {
  EXPECT_EQ(Printed("((select a from t)) order by a"), "select a from t order by a");
}

TEST(Union, RefusesTwoOrders) {
  EXPECT_EQ(ErrorNumberOf("(select a from t order by a) order by b"), 3138);
}

TEST(Union, RefusesAMissingQuery) {
  for (const char* text :
       {"select a from t union", "select a from t union all", "(select a from t",
        "select a from t union b", "(select a from t) union (b)",
        "select a from t union order by a", "(select a from t) union (select b from u"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3319) << text;
  }
}

TEST(StoredQuery, IsASelectOrAUnion) {
  EXPECT_EQ(TreePrinter().Print(*ParseQuery("select a from t;")), "select a from t");
  EXPECT_EQ(TreePrinter().Print(*ParseQuery("(select a from t) union select b from u")),
            "{select a from t} union {select b from u}");
}

TEST(StoredQuery, IsNothingElse) {
  for (const char* text : {"delete from t", "", "t", "(t)"}) {
    try {
      ParseQuery(text);
      ADD_FAILURE() << text;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.number(), 3129) << text;
    }
  }
}

TEST(StoredQuery, EndsWithTheText) {
  EXPECT_THROW(ParseQuery("select a from t; x"), AutomationError);
}

}  // namespace
}  // namespace ambrelio::embedded::sql
