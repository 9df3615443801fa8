// `ambrelio sql --plan`.
#include "cli_test.h"
#include "json_value.h"
#include "support/environment.h"

namespace ambrelio::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kMember = "select NOMSOC from SOCIO where CODSOC=7";
constexpr const char* kThroughJoin =
    "select count(*) as n from (select CODSOC from PESADA) as p left join SOCIO on p.CODSOC = "
    "SOCIO.CODSOC where NOMSOC = 'Ana'";

class SqlPlan : public test::MillCliTest {
 protected:
  test::Outcome Plan(const std::string& statement, std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"sql", database(), "--plan", statement});
    return test::RunCli(std::move(more));
  }
  std::string Text(const std::string& statement) const {
    const auto outcome = Plan(statement);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.out;
  }
};

TEST_F(SqlPlan, ShowsTheWayOfAStatement) {
  EXPECT_EQ(Text(kMember),
            "rewrites: none\n"
            "parameters: ?1 = 7\n"
            "prepared for: every text of its shape\n"
            "\n"
            "rows:\n"
            "  SELECT t1.\"rowid\", t1.\"NOMSOC\"\n"
            "  FROM \"SOCIO\" AS t1\n"
            "  WHERE (t1.\"CODSOC\" = ?1)\n"
            "  ORDER BY t1.\"CODSOC\"\n"
            "  plan:\n"
            "    SEARCH t1 USING INDEX SOCIO.key (CODSOC=?)\n"
            "\n"
            "row:\n"
            "  SELECT t1.\"NOMSOC\"\n"
            "  FROM \"SOCIO\" AS t1\n"
            "  WHERE t1.\"rowid\" = ?2\n"
            "  plan:\n"
            "    SEARCH t1 USING INTEGER PRIMARY KEY (rowid=?)\n"
            "\n"
            "last row:\n"
            "  SELECT t1.\"rowid\", t1.\"NOMSOC\"\n"
            "  FROM \"SOCIO\" AS t1\n"
            "  WHERE (t1.\"CODSOC\" = ?1)\n"
            "  ORDER BY t1.\"CODSOC\" DESC\n"
            "  LIMIT 1\n"
            "  plan:\n"
            "    SEARCH t1 USING INDEX SOCIO.key (CODSOC=?)\n");
}

TEST_F(SqlPlan, SetsStepsInBelowTheirOwn) {
  EXPECT_THAT(Text("select CODSOC from SOCIO union all select CODSOC from PESADA"),
              HasSubstr("\n    COMPOUND QUERY\n      LEFT-MOST SUBQUERY\n        "));
}

TEST_F(SqlPlan, TellsTheRewritesMade) {
  EXPECT_THAT(Text(kThroughJoin), StartsWith("rewrites: inner_joins 1, merged_queries 1\n"));
}

TEST_F(SqlPlan, TellsTheRewritesThatAreOff) {
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_WITHOUT_REWRITES", "inner_joins,split_joins");
  const std::string some = Text(kThroughJoin);
  EXPECT_THAT(some, StartsWith("rewrites: merged_queries 1; off: inner_joins, split_joins\n"));
  EXPECT_THAT(some, HasSubstr("LEFT JOIN"));
  environment.Set("AMBRELIO_WITHOUT_REWRITES", "all");
  EXPECT_THAT(Text(kThroughJoin),
              StartsWith("rewrites: none; off: inner_joins, merged_queries, split_joins, "
                         "shorter_keys\n"));
}

TEST_F(SqlPlan, ShowsParametersAsJson) {
  EXPECT_THAT(Text("select CODSOC from PESADA where NOT PARAJE = 'La Cañada' and H_INICIO > "
                   "#11/3/2025 8:00:00# and PARCIALPESO < 0.5"),
              HasSubstr("\nparameters: ?1 = \"La Cañada\", ?2 = \"2025-11-03 08:00:00\", "
                        "?3 = 0.5\n"));
}

TEST_F(SqlPlan, PrintsJson) {
  const auto outcome = Plan(kMember, {"--json"});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  ASSERT_EQ(outcome.lines().size(), 1U);
  const Json plan = ParseJson(outcome.lines().front());
  EXPECT_EQ(plan["shape"], "select nomsoc from socio where codsoc = ?l");
  EXPECT_EQ(plan["by_text"], false);
  EXPECT_EQ(plan["plan_refused"], false);
  EXPECT_EQ(plan["parameters"], Json::parse("[7]"));
  EXPECT_EQ(plan["rewrites"][2], Json::parse(R"({"name":"split_joins","on":true,"made":0})"));
  EXPECT_EQ(
      plan["statements"][1],
      Json::parse(
          R"j({"use":"row","sql":"SELECT t1.\"NOMSOC\" FROM \"SOCIO\" AS t1 WHERE t1.\"rowid\" = ?2","plan":[{"step":"SEARCH t1 USING INTEGER PRIMARY KEY (rowid=?)"}]})j"));
}

TEST_F(SqlPlan, PrintsStepsBelowOthersAsJson) {
  const auto outcome =
      Plan("select CODSOC from SOCIO union all select CODSOC from PESADA", {"--json"});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  const Json plan = ParseJson(outcome.lines().front())["statements"][0]["plan"];
  EXPECT_EQ(plan[0]["step"], "COMPOUND QUERY");
  EXPECT_EQ(plan[0]["below"][0]["step"], "LEFT-MOST SUBQUERY");
}

TEST_F(SqlPlan, HasNoFormAsCsv) {
  const auto outcome = Plan(kMember, {"--csv"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "ambrelio: --plan has no form as --csv\n");
}

TEST_F(SqlPlan, CarriesNothingOut) {
  test::RunCli({"sql", database(), "insert into SOCIO (CODSOC, NOMSOC) values (7, 'Ana')"});
  const std::string before = Query("select * from SOCIO");
  Text("delete from SOCIO");
  Text("update SOCIO set NOMSOC='Eva'");
  Text("insert into SOCIO (CODSOC) values (8)");
  EXPECT_EQ(Query("select * from SOCIO"), before);
}

TEST_F(SqlPlan, LeavesTheFileAsItIs) {
  const std::string before = test::ReadText(database());
  Text("delete from SOCIO");
  EXPECT_EQ(test::ReadText(database()), before);
}

TEST_F(SqlPlan, OfAMillWithATraceLeavesTheTraceEmpty) {
  const std::string trace = folder.File("trace.jsonl");
  const auto outcome = test::RunCli({"--trace", trace, "sql", "--app", app, "--plan", kMember});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_THAT(outcome.out, StartsWith("rewrites: none\n"));
  EXPECT_TRUE(std::filesystem::exists(trace));
  EXPECT_EQ(test::ReadText(trace), "");
}

TEST_F(SqlPlan, RefusesWhatCannotBeRun) {
  const auto unknown = Plan("select * from Nada");
  EXPECT_EQ(unknown.code, 1);
  EXPECT_EQ(unknown.out, "");
  EXPECT_THAT(unknown.err, StartsWith("ambrelio: error 3078: "));
  EXPECT_EQ(Plan("select CODSOC from").code, 1);
  EXPECT_EQ(test::RunCli({"sql", "--plan", database()}).code, 2);
  EXPECT_EQ(test::RunCli({"sql", "--plan", folder.File("none.mdb"), kMember}).code, 3);
}

TEST_F(SqlPlan, ADefinitionHasNone) {
  const auto outcome = Plan("drop table SOCIO");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, StartsWith("ambrelio: error 3129: "));
  EXPECT_THAT(outcome.err, HasSubstr("'drop table SOCIO'"));
  EXPECT_EQ(Query("select count(*) as n from SOCIO"), "{\"result\":[[0]]}");
}

}  // namespace
}  // namespace ambrelio::cli
