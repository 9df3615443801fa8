#include "ambrelio/engine/embedded/execution/explanation.h"

#include <gmock/gmock.h>

#include "ambrelio/engine/embedded/execution/executor.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ExplanationTest : public testing::Test {
 protected:
  ExplanationTest() {
    for (const char* table : {"A", "B"}) {
      executor_.Execute(
          std::string("create table ") + table + " (k long primary key, n long, t text(10))",
          false);
    }
    for (const char* row : {"(1, 7, 'a')", "(2, 8, 'b')"}) {
      executor_.Execute(std::string("insert into A values ") + row, false);
    }
  }

  // What each statement of the storage is for.
  std::vector<std::string> Uses(const std::string& text) {
    std::vector<std::string> uses;
    for (const ExplainedStatement& statement : executor_.Explain(text).statements) {
      EXPECT_NE(statement.sql, "") << text;
      uses.push_back(statement.use);
    }
    return uses;
  }

  // The plan of the first statement in one line: "step(step below; ...); ...".
  std::string Plan(const std::string& text) {
    return Listed(executor_.Explain(text).statements.front().plan);
  }

  // "name on made; ..." under a choice of rewrites.
  std::string Rewrites(const std::string& text, const PlanOptions& options = {}) {
    Executor executor(*storage_, store_, options);
    std::string list;
    for (const ExplainedRewrite& rewrite : executor.Explain(text).rewrites) {
      list += (list.empty() ? "" : "; ") + rewrite.name + (rewrite.on ? " on " : " off ") +
              std::to_string(rewrite.made);
    }
    return list;
  }

  std::string Sum() {
    return std::to_string(
        executor_.Open("select sum(n) as s from A", {}, alive_)->Value(0).as<double>());
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("t.mdb"));
  CatalogueStore store_{*storage_};
  Executor executor_{*storage_, store_, {}};
  Liveness alive_ = std::make_shared<const bool>(true);

 private:
  static std::string Listed(const std::vector<PlanStep>& steps) {
    std::string list;
    for (const PlanStep& step : steps) {
      list += (list.empty() ? "" : "; ") + step.text;
      if (!step.below.empty()) list += "(" + Listed(step.below) + ")";
    }
    return list;
  }
};

constexpr const char* kThroughJoin =
    "select q.k from (select k, n from A) as q left join B on q.n = B.k where B.n > 3";

TEST_F(ExplanationTest, TellsWhichRewritesWereMade) {
  EXPECT_EQ(Rewrites("select k from A"),
            "inner_joins on 0; merged_queries on 0; split_joins on 0; shorter_keys on 0");
  EXPECT_EQ(Rewrites(kThroughJoin),
            "inner_joins on 1; merged_queries on 1; split_joins on 0; shorter_keys on 0");
  EXPECT_EQ(Rewrites("select A.k from A left join B on A.n = B.k where B.k is null"),
            "inner_joins on 0; merged_queries on 0; split_joins on 1; shorter_keys on 0");
}

TEST_F(ExplanationTest, TellsWhichRewritesAreOff) {
  EXPECT_EQ(Rewrites(kThroughJoin, PlanOptions::Without("inner_joins,split_joins")),
            "inner_joins off 0; merged_queries on 1; split_joins off 0; shorter_keys on 0");
}

TEST_F(ExplanationTest, ShowsEveryStatementThatTheStorageGets) {
  EXPECT_THAT(Uses("select k, n from A where n > 7"), ElementsAre("rows", "row", "last row"));
  EXPECT_THAT(Uses("select A.k from A, B"), ElementsAre("rows", "last row"));
  EXPECT_THAT(Uses("select sum(n) as s from A"), ElementsAre("rows"));
  EXPECT_THAT(Uses("select k from A union select k from B"), ElementsAre("rows"));
  EXPECT_THAT(Uses("insert into B select * from A"), ElementsAre("write"));
  EXPECT_THAT(Uses("delete from A where n > 7"), ElementsAre("write"));
  EXPECT_THAT(Uses("update A set n = n + 1"), ElementsAre("write"));
  EXPECT_THAT(Uses("update A, B set A.n = B.n, B.n = A.n"),
              ElementsAre("rows", "values", "row write", "row write"));
}

TEST_F(ExplanationTest, HasTheTextWithItsParameters) {
  const Explanation explanation = executor_.Explain("insert into A values (5, 6, 'x')");
  EXPECT_EQ(explanation.shape, "insert into a values ( ?l , ?l , ?t )");
  EXPECT_EQ(explanation.statements.front().sql,
            "INSERT OR IGNORE INTO \"A\" (\"k\", \"n\", \"t\") VALUES (?1, ?2, jet_to_text(?3, 10, "
            "0))");
  ASSERT_EQ(explanation.literals.size(), 3U);
  EXPECT_EQ(explanation.literals[2].as<std::string>(), "x");
}

TEST_F(ExplanationTest, TheNameOfATableOrQueryStandsForAllOfIt) {
  store_.CreateQuery({"Some", "select k from A where n = 7"});
  EXPECT_THAT(Plan("A"), HasSubstr("SCAN"));
  EXPECT_THAT(executor_.Explain("[Some];").statements.front().sql, HasSubstr("= 7)"));
}

TEST_F(ExplanationTest, SetsTheStepsOfAPlanOneBelowTheOther) {
  EXPECT_EQ(Plan("select count(*) as n from (select distinct n from A union all select n from B) "
                 "as q where q.n = (select max(k) from B)")
                .find("CO-ROUTINE"),
            0U);
  EXPECT_THAT(Plan("select k from A union all select k from B"),
              HasSubstr("COMPOUND QUERY(LEFT-MOST SUBQUERY("));
}

TEST_F(ExplanationTest, PlansForTheLiteralsOfTheText) {
  storage_->Run("create index high on A (n) where n >= 5");
  EXPECT_THAT(Plan("select count(*) as c from A where n >= 5"), HasSubstr("INDEX high"));
  EXPECT_THAT(Plan("select count(*) as c from A where n >= 4"), HasSubstr("SCAN"));
}

TEST_F(ExplanationTest, TellsWhatIsPreparedForOneTextAlone) {
  EXPECT_FALSE(executor_.Explain("select k from A where n = 1").by_text);
  EXPECT_TRUE(executor_.Explain("select n + 1 as m from A group by n + 1").by_text);
}

TEST_F(ExplanationTest, TellsWhenTheStorageRefusedThePlan) {
  if (sqlite3_libversion_number() >= 3046000) GTEST_SKIP() << "this SQLite takes any depth";
  const auto nested = [](std::string text) {
    for (int i = 0; i < 18; ++i) text = "1 + (" + text + ")";
    return text;
  };
  store_.CreateQuery({"Deep", "select k, " + nested("n") + " as m from A"});
  store_.CreateQuery({"Deeper", "select k, " + nested("m") + " as mm from Deep"});
  EXPECT_FALSE(executor_.Explain("select m from Deep").plan_refused);
  const Explanation deeper = executor_.Explain("select mm from Deeper");
  EXPECT_TRUE(deeper.plan_refused);
  EXPECT_EQ(deeper.rewrites[1].made, 0);
}

TEST_F(ExplanationTest, CarriesNothingOut) {
  const std::string before = Sum();
  for (const char* text : {"delete from A", "update A set n = 0", "insert into A values (9, 9, '')",
                           "update A, B set A.n = 5, B.n = 6"}) {
    executor_.Explain(text);
    EXPECT_EQ(Sum(), before) << text;
  }
}

TEST_F(ExplanationTest, LeavesAnOpenRecordsetAsItIs) {
  const auto rows = executor_.Open("select n from A order by k", {}, alive_);
  executor_.Explain("delete from A");
  rows->MoveNext();
  EXPECT_EQ(rows->Value(0).as<int32_t>(), 8);
}

TEST_F(ExplanationTest, WorksWhereNothingMayBeWritten) {
  const auto reading = Storage::Open(storage_->path(), Storage::Access::kReadOnly);
  CatalogueStore catalogue(*reading);
  Executor executor(*reading, catalogue, {});
  EXPECT_THAT(executor.Explain("update A set n = 1 where k = 2").statements.front().plan,
              testing::Not(IsEmpty()));
}

TEST_F(ExplanationTest, RefusesWhatTheStatementItselfWouldBeRefusedFor) {
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("select x from A"); }), 3061);
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("select k from Nada"); }), 3078);
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("Nada"); }), 3078);
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("select k fro A"); }), 3075);
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("delete from A where"); }), 3145);
}

TEST_F(ExplanationTest, ADefinitionHasNoPlanAndIsNotCarriedOut) {
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("drop table A"); }), 3129);
  EXPECT_EQ(ErrorOf([&] { executor_.Explain("create table C (k long)"); }), 3129);
  EXPECT_NE(store_.Current().FindTable("A"), nullptr);
  EXPECT_EQ(store_.Current().FindTable("C"), nullptr);
}

}  // namespace
}  // namespace ambrelio::embedded
