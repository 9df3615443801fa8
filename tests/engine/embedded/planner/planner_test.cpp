// Each rewrite by itself: when it is made, and when it must not be.
#include "ambrelio/engine/embedded/planner/planner.h"

#include <gmock/gmock.h>

#include <set>

#include "ambrelio/engine/embedded/binder/binder.h"
#include "ambrelio/engine/embedded/execution/executor.h"
#include "ambrelio/engine/embedded/planner/tree_walk.h"
#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/translator/translator.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using testing::HasSubstr;
using testing::Not;

PlanOptions Only(bool inner_joins, bool merged_queries, bool split_joins) {
  PlanOptions options = PlanOptions::Without("all");
  options.inner_joins = inner_joins;
  options.merged_queries = merged_queries;
  options.split_joins = split_joins;
  return options;
}

size_t Count(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// Numbers of all sources of a query, each as often as it stands there.
void CollectSources(bound::Query& query, std::multiset<int>& sources) {
  if (query.select) {
    for (const bound::Source& source : query.select->from) {
      bound::ForEachLeaf(source, [&](const bound::Source& leaf) { sources.insert(leaf.id); });
    }
  }
  planner::ForEachQueryBelow(query, [&](bound::Query& below) { CollectSources(below, sources); });
}

class PlannerTest : public testing::Test {
 protected:
  PlannerTest() {
    for (const char* table : {"A", "B", "C"}) {
      executor_.Execute(
          std::string("create table ") + table + " (k long primary key, n long, t text(10))",
          false);
    }
  }

  std::unique_ptr<bound::Query> Bound(const std::string& text) {
    BoundStatement bound = Bind(sql::Parse(text), store_.Current());
    return std::move(std::get<std::unique_ptr<bound::Query>>(bound.statement));
  }
  std::string PlannedWith(const PlanOptions& options, const std::string& text) {
    const auto query = Bound(text);
    Plan(*query, options);
    return TranslateQuery(*query);
  }
  std::string Unplanned(const std::string& text) { return TranslateQuery(*Bound(text)); }
  // Whether one rewrite alone makes anything of the query.
  std::string Inner(const std::string& text) { return PlannedWith(Only(true, false, false), text); }
  std::string Merged(const std::string& text) {
    return PlannedWith(Only(false, true, false), text);
  }
  std::string Split(const std::string& text) { return PlannedWith(Only(false, false, true), text); }
  std::string Shortened(const std::string& text) {
    PlanOptions options = PlanOptions::Without("all");
    options.shorter_keys = true;
    return PlannedWith(options, text);
  }

  // The first column of the rows, with all rewrites.
  std::vector<std::string> Rows(const std::string& text) {
    const auto rows = executor_.Open(text, dao::RecordsetType::kSnapshot, alive_);
    std::vector<std::string> values;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      const Variant value = rows->Value(0);
      values.push_back(value.is_null() ? "Null" : ToText(value));
    }
    return values;
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("t.sqlite"));
  CatalogueStore store_{*storage_};
  Executor executor_{*storage_, store_, {}};
  Liveness alive_ = std::make_shared<const bool>(true);
};

// "inner, merged, split" of what all rewrites make of a query.
std::string Made(bound::Query& query) {
  const RewritesMade made = Plan(query, {});
  return std::to_string(made.inner_joins) + ", " + std::to_string(made.merged_queries) + ", " +
         std::to_string(made.split_joins);
}

using InnerJoins = PlannerTest;
using MergedQueries = PlannerTest;
using SplitJoins = PlannerTest;
using ShorterKeys = PlannerTest;

TEST_F(InnerJoins, AreMadeWhereTheConditionRefusesNull) {
  EXPECT_THAT(Inner("select A.k from A left join B on A.k = B.k where B.n > 0"),
              Not(HasSubstr("LEFT JOIN")));
  EXPECT_THAT(Inner("select A.k from A left join B on A.k = B.k where A.n > 0 and B.k is not null"),
              Not(HasSubstr("LEFT JOIN")));
}

TEST_F(InnerJoins, AreMadeOfRightJoins) {
  EXPECT_THAT(Inner("select B.k from A right join B on A.k = B.k where A.n > 0"),
              Not(HasSubstr("LEFT JOIN")));
  EXPECT_THAT(Inner("select B.k from A right join B on A.k = B.k where B.n > 0"),
              HasSubstr("LEFT JOIN"));
}

TEST_F(InnerJoins, AreNotMadeWhereNullMayPass) {
  for (const char* where :
       {"A.n > 0", "B.n > 0 or A.n > 0", "B.n is null", "Nz(B.n, 1) > 0", "B.n & 'x' = 'x'",
        "not (B.n > 0 and A.n > 0)", "A.n in (select n from C where C.k = B.k)"}) {
    EXPECT_THAT(Inner(std::string("select A.k from A left join B on A.k = B.k where ") + where),
                HasSubstr("LEFT JOIN"))
        << where;
  }
}

TEST_F(InnerJoins, AreMadeOnTheOptionalSideByTheConditionThatMeetsIt) {
  // C decides whether a row of the right side is a partner at all.
  const std::string sql =
      Inner("select A.k from A left join (B left join C on B.k = C.k) on A.k = C.n");
  EXPECT_EQ(Count(sql, "LEFT JOIN"), 1U);
}

TEST_F(InnerJoins, AreNotMadeOnTheOptionalSideByConditionsOutside) {
  EXPECT_EQ(Count(Inner("select A.k from A left join (B left join C on B.k = C.k) on A.k = B.n "
                        "where A.n > 0 or C.n > 0"),
                  "LEFT JOIN"),
            2U);
}

TEST_F(InnerJoins, OneLeadsToTheNext) {
  EXPECT_EQ(Count(Inner("select A.k from (A left join B on A.k = B.k) left join C on B.n = C.k "
                        "where C.n > 0"),
                  "LEFT JOIN"),
            0U);
}

TEST_F(InnerJoins, AreMadeInSubqueriesAndUnions) {
  EXPECT_THAT(Inner("select k from C where exists (select 1 from A left join B on A.k = B.k where "
                    "B.n = C.n)"),
              Not(HasSubstr("LEFT JOIN")));
  EXPECT_THAT(Inner("select k from C union select A.k from A left join B on A.k = B.k where B.n=1"),
              Not(HasSubstr("LEFT JOIN")));
}

TEST_F(InnerJoins, AreNotMadeByHaving) {
  EXPECT_THAT(Inner("select A.k, sum(B.n) from A left join B on A.k = B.k group by A.k having "
                    "sum(B.n) > 0"),
              HasSubstr("LEFT JOIN"));
}

TEST_F(MergedQueries, GiveWayToTheirSources) {
  EXPECT_EQ(Merged("select q.x from (select k as x, n from A where n > 0) as q where q.x < 9"),
            "SELECT t1.\"k\" AS c0 FROM \"A\" AS t1 WHERE ((t1.\"k\" < ?2) AND (t1.\"n\" > ?1)) "
            "ORDER BY t1.\"k\"");
}

TEST_F(MergedQueries, AreMergedOneInTheOther) {
  store_.CreateQuery({"Low", "select k, n + 1 as m from A where n < 5"});
  store_.CreateQuery({"Lower", "select k, m * 2 as mm from Low where m < 3"});
  EXPECT_EQ(Count(Merged("select mm from Lower where k > 0"), "SELECT"), 1U);
}

TEST_F(MergedQueries, StayWhereTheyGroupChooseOrUnite) {
  for (const char* query :
       {"select n as x from A group by n", "select max(n) as x from A",
        "select distinct n as x from A", "select top 3 n as x from A",
        "select n as x from A union all select n as x from B", "select 1 as x"}) {
    const std::string text = std::string("select x from (") + query + ") as q where x > 0";
    EXPECT_EQ(Merged(text), Unplanned(text)) << query;
  }
}

TEST_F(MergedQueries, StayOnTheOptionalSideWhenTheyCompute) {
  for (const char* item : {"n + 1", "1", "Nz(n, 0)", "Null"}) {
    const std::string text = std::string("select A.k, q.x from A left join (select k, ") + item +
                             " as x from B) as q on A.k = q.k";
    EXPECT_EQ(Merged(text), Unplanned(text)) << item;
  }
}

TEST_F(MergedQueries, AreMergedOnTheOptionalSideWhenTheirColumnsArePlain) {
  EXPECT_EQ(Merged("select A.k, q.n from A left join (select k, n from B where n > 0) as q on "
                   "A.k = q.k"),
            "SELECT t1.\"k\" AS c0, t2.\"n\" AS c1 FROM \"A\" AS t1 LEFT JOIN \"B\" AS t2 ON "
            "((t1.\"k\" = t2.\"k\") AND (t2.\"n\" > ?1)) ORDER BY t1.\"k\", t2.\"k\"");
  EXPECT_EQ(Merged("select A.k, q.n from (select k, n from B where n > 0) as q right join A on "
                   "A.k = q.k"),
            "SELECT t3.\"k\" AS c0, t1.\"n\" AS c1 FROM \"A\" AS t3 LEFT JOIN \"B\" AS t1 ON "
            "((t3.\"k\" = t1.\"k\") AND (t1.\"n\" > ?1)) ORDER BY t1.\"k\", t3.\"k\"");
}

TEST_F(MergedQueries, KeepTheConditionAwayFromTheSideThatIsAlwaysThere) {
  executor_.Execute("insert into A values (1, 1, 'a')", false);
  executor_.Execute("insert into B values (1, 0, 'b')", false);
  EXPECT_THAT(Rows("select A.k from A left join (select k from B where n > 0) as q on A.k = q.k"),
              testing::ElementsAre("1"));
}

TEST_F(MergedQueries, ComputedColumnsGoWhereTheSourceIsAlwaysThere) {
  EXPECT_EQ(Count(Merged("select q.x, B.n from (select k, n + 1 as x from A) as q left join B on "
                         "q.k = B.k and q.x = B.n"),
                  "SELECT"),
            1U);
}

TEST_F(MergedQueries, AreMergedWhereASubqueryNamesThem) {
  const std::string sql = Merged(
      "select q.k from (select k, n + 1 as x from A) as q where exists (select * from B where B.n "
      "= q.x)");
  EXPECT_THAT(sql, HasSubstr("(t1.\"n\" + ?1)"));
  EXPECT_EQ(Count(sql, "SELECT"), 2U);
}

TEST_F(MergedQueries, LendTheirKeysToTheOrderAndTheFirstSpelling) {
  const std::string grouped =
      Merged("select t from (select t, n from A) as q group by t order by t");
  EXPECT_THAT(grouped, HasSubstr("jet_first(t1.\"t\", t1.\"k\")"));
  for (const char* row : {"(1, 2, 'ana')", "(2, 1, 'ANA')"}) {
    executor_.Execute(std::string("insert into A values ") + row, false);
  }
  EXPECT_THAT(Rows("select t from (select t, n from A) as q group by t"),
              testing::ElementsAre("ana"));
  EXPECT_THAT(Rows("select n from (select n from A) as q"), testing::ElementsAre("2", "1"));
}

TEST_F(MergedQueries, AConstantColumnDoesNotOrder) {
  executor_.Execute("insert into A values (2, 1, 'a')", false);
  executor_.Execute("insert into A values (1, 1, 'b')", false);
  store_.CreateQuery({"Five", "select k, 5 as five, -1 as less, True as yes from A"});
  for (const char* key : {"five", "less desc", "yes", "five, less"}) {
    EXPECT_THAT(Rows(std::string("select k from Five order by ") + key),
                testing::ElementsAre("1", "2"))
        << key;
  }
}

TEST_F(MergedQueries, AConstantNumberIsNotThePlaceOfAColumn) {
  executor_.Execute("insert into A values (1, 1, 'b')", false);
  executor_.Execute("insert into A values (2, 2, 'a')", false);
  store_.CreateQuery({"One", "select k, n, t, 1 as one from A"});
  EXPECT_THAT(Rows("select t from One order by one"), testing::ElementsAre("b", "a"));
  EXPECT_THAT(Rows("select n from One order by one desc, t"), testing::ElementsAre("2", "1"));
  EXPECT_THAT(Rows("select max(n) from One group by one"), testing::ElementsAre("2"));
}

TEST_F(MergedQueries, AConstantColumnDoesNotGroup) {
  executor_.Execute("insert into A values (1, 1, 'a')", false);
  executor_.Execute("insert into A values (2, 1, 'b')", false);
  store_.CreateQuery({"Five", "select k, 5 as five, -1 as less from A"});
  EXPECT_THAT(Rows("select sum(k) from Five group by five, less"), testing::ElementsAre("3"));
  EXPECT_THAT(Rows("select sum(k) from Five where k > 9 group by less"), testing::ElementsAre());
}

TEST_F(MergedQueries, AllRowsTieInAConstantForTop) {
  for (const char* row : {"(1, 1, 'a')", "(2, 1, 'b')", "(3, 1, 'c')"}) {
    executor_.Execute(std::string("insert into A values ") + row, false);
  }
  store_.CreateQuery({"Five", "select k, 5 as five from A"});
  EXPECT_THAT(Rows("select top 1 k from Five order by five"), testing::ElementsAre("1", "2", "3"));
  EXPECT_THAT(Rows("select top 2 k from Five"), testing::ElementsAre("1", "2"));
}

TEST_F(MergedQueries, FillAnInsert) {
  executor_.Execute("insert into A values (1, 7, 'a')", false);
  executor_.Execute("insert into A values (2, 8, 'b')", false);
  EXPECT_EQ(executor_.Execute("insert into B (k, n) select x, y from (select k + 10 as x, n as y "
                              "from A where n > 7) as q",
                              true),
            1);
  EXPECT_THAT(Rows("select n from B where k = 12"), testing::ElementsAre("8"));
}

// A weighing has the hopper of its share, or its own when it has none.
constexpr const char* kShares =
    "select A.k, IIf(IsNull(B.k), A.n, B.n) as n, A.t from A left join B on A.n = B.k ";

TEST_F(SplitJoins, BecomeTwoBranches) {
  const std::string sql = Split(std::string("select sum(k) from (") + kShares + ") as q");
  EXPECT_EQ(sql, Unplanned(std::string("select sum(k) from (") + kShares + ") as q"))
      << "the test stands in the list, not in a condition";
  const std::string tested = Split(std::string(kShares) + "where IIf(IsNull(B.k), A.n, B.n) = 3");
  EXPECT_EQ(Count(tested, "UNION ALL"), 1U);
  EXPECT_THAT(tested, HasSubstr("NOT EXISTS"));
  EXPECT_THAT(tested, Not(HasSubstr("LEFT JOIN")));
}

TEST_F(SplitJoins, ResolveTheTestsInTheConditionOfEachBranch) {
  const std::string sql = Split(
      "select sum(A.n) from A left join B on A.n = B.k where "
      "IIf(IsNull(B.k), A.n, B.n) = 3");
  EXPECT_THAT(sql, HasSubstr("(t2.\"n\" = ?1)"));
  EXPECT_THAT(sql, HasSubstr("(t4.\"n\" = ?1) AND ( NOT EXISTS"));
  EXPECT_THAT(sql, Not(HasSubstr("iif(")));
}

TEST_F(SplitJoins, ResolveTheTestsInWhatAGroupAddsUp) {
  const std::string sql = Split(
      "select A.t, sum(A.n * IIf(IsNull(B.k), 1, B.n)) from A left join B on A.n = B.k where "
      "IIf(IsNull(B.k), A.n, B.n) = 3 group by A.t");
  EXPECT_THAT(sql, Not(HasSubstr("IS NULL")));
  EXPECT_THAT(sql, HasSubstr("(t1.\"n\" * t2.\"n\") AS"));
}

TEST_F(SplitJoins, WhatReachesOutOfAGroupIsComputedOutside) {
  const std::string sql = Split(
      "select C.k from C where C.n > (select sum(A.n * C.n) from A left join B on A.n = B.k where "
      "Nz(B.n, A.n) = 3 or IsNull(B.k))");
  EXPECT_THAT(sql, HasSubstr("UNION ALL"));
  EXPECT_THAT(sql, HasSubstr(".c0 * t1.\"n\")"));
  storage_->Run("explain " + sql);
}

TEST_F(SplitJoins, ATestOfAColumnThatMayBeNullStays) {
  EXPECT_THAT(Split("select A.k from A left join B on A.n = B.k where IIf(IsNull(B.n), A.n, B.n) "
                    "= 3"),
              HasSubstr("(t2.\"n\" IS NULL)"));
}

TEST_F(SplitJoins, ABranchThatCannotHoldIsGone) {
  const std::string without =
      Split("select A.k, B.n from A left join B on A.n = B.k where B.k is null");
  EXPECT_THAT(without, Not(HasSubstr("UNION")));
  EXPECT_THAT(without, HasSubstr("NOT EXISTS"));
  const std::string with =
      Split("select A.k, B.n from A left join B on A.n = B.k where not IsNull(B.k)");
  EXPECT_THAT(with, Not(HasSubstr("UNION")));
  EXPECT_THAT(with, Not(HasSubstr("EXISTS")));
  EXPECT_THAT(with, Not(HasSubstr("LEFT JOIN")));
}

TEST_F(SplitJoins, ABranchThatIsGoneLeavesNullsInTheRows) {
  executor_.Execute("insert into A values (1, 7, 'a')", false);
  executor_.Execute("insert into A values (2, 8, 'b')", false);
  executor_.Execute("insert into B values (8, 0, 'b')", false);
  const std::string from = " from A left join B on A.n = B.k where B.k is null";
  EXPECT_THAT(Rows("select B.t" + from), testing::ElementsAre("Null"));
  EXPECT_THAT(Rows("select A.k" + from + " order by B.n, IIf(IsNull(B.k), 1, 2)"),
              testing::ElementsAre("1"));
  EXPECT_THAT(Rows("select count(*)" + from), testing::ElementsAre("1"));
  EXPECT_THAT(Rows("select count(B.t)" + from), testing::ElementsAre("0"));
  EXPECT_THAT(Rows("select B.t & 'x'" + from + " group by B.t"), testing::ElementsAre("x"));
}

TEST_F(SplitJoins, NoJoinIsSplitWithoutANullTest) {
  for (const char* where : {"", "where A.n > 0", "where Nz(A.n, 0) = 0", "where B.n = 3"}) {
    const std::string text = std::string("select A.k from A left join B on A.n = B.k ") + where;
    EXPECT_EQ(Split(text), Unplanned(text));
  }
}

TEST_F(SplitJoins, OnlyATableOnTheRightIsSplitOff) {
  const std::string derived =
      "select A.k from A left join (select k from B) as q on A.n = q.k where IsNull(q.k)";
  EXPECT_EQ(Split(derived), Unplanned(derived));
  const std::string joined =
      "select A.k from A left join (B inner join C on B.k = C.k) on A.n = B.k where IsNull(B.k)";
  EXPECT_EQ(Split(joined), Unplanned(joined));
  const std::string right =
      "select A.k from B right join A on A.n = B.k where IIf(IsNull(B.k), 1, 2) = 1";
  EXPECT_EQ(Split(right), Unplanned(right));
}

TEST_F(SplitJoins, NoJoinIsSplitOnTheOptionalSideOfAnother) {
  const std::string left =
      "select C.k from C left join (A left join B on A.n = B.k) on C.k = A.k where IsNull(B.k)";
  EXPECT_EQ(Split(left), Unplanned(left));
  const std::string right =
      "select C.k from (A left join B on A.n = B.k) right join C on C.k = A.k where IsNull(B.k)";
  EXPECT_EQ(Split(right), Unplanned(right));
}

TEST_F(SplitJoins, AJoinIsSplitBelowOthersThatKeepItsRows) {
  EXPECT_THAT(Split("select C.k from (A left join B on A.n = B.k) inner join C on C.k = A.k where "
                    "Nz(B.k, 1) = 1"),
              HasSubstr("UNION ALL"));
  const std::string left = Split(
      "select C.k from (A left join B on A.n = B.k) left join C on C.k = A.k where Nz(B.k, 1) = 1");
  EXPECT_THAT(left, HasSubstr("UNION ALL"));
  EXPECT_EQ(Count(left, "LEFT JOIN"), 2U) << "that of C, in each branch";
}

TEST_F(SplitJoins, TwoJoinsAreSplitAtMost) {
  executor_.Execute("create table D (k long primary key)", false);
  const std::string sql = Split(
      "select A.k from ((A left join B on A.n = B.k) left join C on A.n = C.k) left join D on A.n "
      "= D.k where Nz(B.k, 1) + Nz(C.k, 1) + Nz(D.k, 1) = 3");
  EXPECT_EQ(Count(sql, "UNION ALL"), 3U);
  EXPECT_EQ(Count(sql, "LEFT JOIN"), 4U);
}

TEST_F(SplitJoins, KeepTheOrderOverBothBranches) {
  for (const char* row : {"(1, 7, 'a')", "(2, 8, 'b')", "(3, 7, 'c')", "(4, 9, 'd')"}) {
    executor_.Execute(std::string("insert into A values ") + row, false);
  }
  executor_.Execute("insert into B values (7, 7, 'x')", false);
  const std::string from = " from A left join B on A.n = B.k where IIf(IsNull(B.k), A.n, B.n) < 9";
  EXPECT_THAT(Rows("select A.k" + from), testing::ElementsAre("1", "2", "3"));
  EXPECT_THAT(Rows("select A.k" + from + " order by A.t desc"),
              testing::ElementsAre("3", "2", "1"));
  EXPECT_THAT(Rows("select count(*)" + from), testing::ElementsAre("3"));
  EXPECT_THAT(Rows("select top 2 A.k" + from), testing::ElementsAre("1", "2"));
}

TEST_F(SplitJoins, SubqueriesReadWhatTheBranchesDeliver) {
  const std::string sql = Split(
      "select (select max(C.n) from C where C.k = A.k) as m from A left join B on A.n = B.k where "
      "Nz(B.n, A.n) = 3");
  EXPECT_THAT(sql, HasSubstr("UNION ALL"));
  EXPECT_THAT(sql, Not(HasSubstr("= t1.\"k\""))) << "the table is no longer seen from there";
  storage_->Run("explain " + sql);
}

TEST_F(ShorterKeys, EndWithThoseOfTheTableThatIsRead) {
  const std::string from = " from A inner join B on A.n = B.n group by A.n";
  EXPECT_THAT(Shortened("select first(A.t)" + from), HasSubstr("jet_first(t1.\"t\", t1.\"k\")"));
  EXPECT_THAT(Shortened("select last(A.t & A.n)" + from), HasSubstr(", t1.\"k\") AS"));
  EXPECT_THAT(Shortened("select first(B.t)" + from),
              HasSubstr("jet_first(t2.\"t\", t1.\"k\", t2.\"k\")"));
}

TEST_F(ShorterKeys, StayWhereMoreThanOneTableIsRead) {
  for (const char* read : {"A.n + B.n", "1", "A.t & B.t"}) {
    const std::string text =
        std::string("select first(") + read + ") from A inner join B on A.n = B.n group by A.n";
    EXPECT_EQ(Shortened(text), Unplanned(text)) << text;
  }
}

TEST_F(ShorterKeys, NeedEveryColumnOfTheKey) {
  executor_.Execute("create table P (a long, b long, t text(5), constraint k primary key (a, b))",
                    false);
  EXPECT_THAT(Shortened("select first(P.t) from P inner join A on P.a = A.k group by A.n"),
              HasSubstr("jet_first(t1.\"t\", t1.\"a\", t1.\"b\")"));
}

TEST_F(ShorterKeys, CanBeARowsIdentity) {
  executor_.Execute("create table Q (n long, t text(5))", false);
  const std::string text = "select first(Q.t) from Q inner join A on Q.n = A.n group by A.n";
  EXPECT_LT(Shortened(text).size(), Unplanned(text).size());
}

TEST_F(PlannerTest, EverySourceKeepsANumberOfItsOwn) {
  for (const char* text :
       {"select q.x, q.x + 1 as y from (select k, (select max(n) from B where B.k = A.k) as x from "
        "A) as q where q.x > 0",
        "select A.k from (A left join B on A.n = B.k) left join C on A.n = C.k where Nz(B.k, 1) + "
        "Nz(C.k, 1) = 2",
        "select A.k from A left join B on A.n = B.k where Nz(B.k, 1) = 1 and exists (select 1 from "
        "C where C.k = B.n or IsNull(B.k))"}) {
    const auto query = Bound(text);
    Plan(*query, {});
    std::multiset<int> sources;
    CollectSources(*query, sources);
    EXPECT_EQ(sources.size(), std::set<int>(sources.begin(), sources.end()).size()) << text;
    EXPECT_GT(sources.size(), 3U) << text;
  }
}

TEST_F(PlannerTest, NewNumbersAreFreeInTheWholeStatement) {
  auto bound = Bind(sql::Parse("update C set n = 1 where exists (select 1 from A left join B on "
                               "A.n = B.k where A.k = C.k and Nz(B.k, 1) = 1) and exists (select "
                               "1 from A as X where X.k = C.k)"),
                    store_.Current());
  Plan(bound.statement, {});
  auto& update = std::get<bound::Update>(bound.statement);
  std::multiset<int> sources;
  sources.insert(update.from.front().id);
  bound::ForEachExpr(*update.where, [&](bound::Expr& part) {
    if (part.query) CollectSources(*part.query, sources);
  });
  EXPECT_EQ(sources.size(), std::set<int>(sources.begin(), sources.end()).size());
  EXPECT_THAT(TranslateUpdate(update, true), HasSubstr("UNION ALL"));
}

TEST_F(PlannerTest, PlansTheSubqueriesOfWrites) {
  for (const char* text :
       {"delete from C where k in (select A.k from A left join B on A.k = B.k where B.n > 0)",
        "update C set n = 1 where k in (select A.k from A left join B on A.k = B.k where B.n > 0)",
        "insert into C (k) select A.k from A left join B on A.k = B.k where B.n > 0"}) {
    auto bound = Bind(sql::Parse(text), store_.Current());
    Plan(bound.statement, {});
    std::string sql;
    if (const auto* insert = std::get_if<bound::Insert>(&bound.statement)) {
      sql = TranslateInsert(*insert, true);
    } else if (const auto* update = std::get_if<bound::Update>(&bound.statement)) {
      sql = TranslateUpdate(*update, true);
    } else {
      sql = TranslateDelete(std::get<bound::Delete>(bound.statement));
    }
    EXPECT_THAT(sql, Not(HasSubstr("LEFT JOIN"))) << text;
  }
}

TEST_F(PlannerTest, WhatIsTooDeepForTheStorageWhenPlannedIsPreparedAsItStands) {
  if (sqlite3_libversion_number() >= 3046000) GTEST_SKIP() << "this SQLite takes any depth";
  executor_.Execute("insert into A values (1, 1, 'a')", false);
  const auto nested = [](std::string text) {
    for (int i = 0; i < 18; ++i) text = "1 + (" + text + ")";
    return text;
  };
  store_.CreateQuery({"Deep", "select k, " + nested("n") + " as m from A"});
  store_.CreateQuery({"Deeper", "select k, " + nested("m") + " as mm from Deep"});
  ASSERT_THROW(StorageStatement(storage_->raw(), PlannedWith({}, "select mm from Deeper")),
               AutomationError);
  EXPECT_THAT(Rows("select mm from Deeper"), testing::ElementsAre("37"));
  EXPECT_EQ(executor_.Execute("insert into B (k, n) select k, mm from Deeper", true), 1);
  EXPECT_THAT(Rows("select n from B"), testing::ElementsAre("37"));
}

TEST_F(PlannerTest, CountsTheRewritesMade) {
  const auto made = [&](const std::string& text) { return Made(*Bound(text)); };
  EXPECT_EQ(made("select k from A where n = 1"), "0, 0, 0");
  EXPECT_EQ(made("select A.k from (A left join B on A.k = B.k) left join C on B.n = C.k where "
                 "C.n > 0"),
            "2, 0, 0");
  EXPECT_EQ(made("select x from (select y as x from (select k as y from A) as p) as q"), "0, 2, 0");
  EXPECT_EQ(made("select A.k from A left join B on A.n = B.k where B.k is null or A.n = 1"),
            "0, 0, 1");
  EXPECT_EQ(made("select k from A where exists (select 1 from B left join C on B.n = C.k where "
                 "C.n > A.n)"),
            "1, 0, 0");
}

TEST_F(PlannerTest, CountsNoRewriteThatIsOff) {
  const auto query = Bound(
      "select q.k from (select k from A) as q left join B on q.k = B.k where "
      "B.n > 0");
  const RewritesMade made = Plan(*query, PlanOptions::Without("inner_joins"));
  EXPECT_EQ(made.inner_joins, 0);
  EXPECT_EQ(made.merged_queries, 1);
}

TEST_F(PlannerTest, CountsTheJoinsOfADelete) {
  BoundStatement bound = Bind(
      sql::Parse("delete A.* from A left join B on A.k = B.k where B.n > 0"), store_.Current());
  EXPECT_EQ(Plan(bound.statement, {}).inner_joins, 1);
}

// An update goes through its own sources, and its order and its targets stay; only the join
// changes.
TEST_F(PlannerTest, TheJoinOfAnUpdateBecomesInnerWhereTheMissingSideIsRefused) {
  const auto rows_of = [&](const std::string& where, const PlanOptions& options) {
    BoundStatement bound =
        Bind(sql::Parse("update (select * from A left join B on A.k = B.k where " + where +
                        ") set A.n = B.n"),
             store_.Current());
    Plan(bound.statement, options);
    return TranslateStepwise(std::get<bound::Update>(bound.statement), false, 1).rows;
  };
  EXPECT_THAT(rows_of("B.n >= 0.5", {}), Not(HasSubstr("LEFT JOIN")));
  EXPECT_THAT(rows_of("B.n >= 0.5", PlanOptions::Without("inner_joins")), HasSubstr("LEFT JOIN"));
  EXPECT_THAT(rows_of("A.n >= 0.5", {}), HasSubstr("LEFT JOIN"));
  EXPECT_THAT(rows_of("isnull(B.n)", {}), HasSubstr("LEFT JOIN"));
}

}  // namespace
}  // namespace ambrelio::embedded
