#include "ambrelio/engine/embedded/jet/query_parts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "ambrelio/engine/embedded/sql/parser.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "engine/embedded/sql/known_statements.h"
#include "engine/embedded/sql/tree_printer.h"
#include "engine/jetfile/samples.h"
#include "support/error_of.h"

namespace ambrelio::embedded::jet {
namespace {

using jetfile::QueryPart;
using jetfile::QueryRow;
using testing::ElementsAre;

constexpr int kInvalidArgument = 3001;
constexpr int kExpressionSyntax = 3075;

// A row as a line: the part, then what it has.
std::string Line(const QueryRow& row) {
  std::string line = std::to_string(static_cast<int>(row.part));
  if (row.flag != 0) line += " flag " + std::to_string(row.flag);
  if (!row.name1.empty()) line += " 1:" + row.name1;
  if (!row.name2.empty()) line += " 2:" + row.name2;
  if (!row.expression.empty()) line += " = " + row.expression;
  return line;
}

std::vector<std::string> Lines(const std::vector<QueryRow>& rows) {
  std::vector<std::string> lines;
  for (const QueryRow& row : rows) lines.push_back(Line(row));
  return lines;
}

std::vector<std::string> PartsOf(std::string_view sql) { return Lines(QueryParts(sql)); }
int Fails(std::string_view sql) {
  return test::ErrorOf([sql] { QueryParts(sql); });
}

// What a statement means, in one spelling. Values to insert are kept as a select of them.
std::string Meaning(std::string_view sql) {
  sql::Statement statement = sql::Parse(sql);
  if (auto* insert = std::get_if<sql::Insert>(&statement); insert != nullptr && !insert->query) {
    insert->query = std::make_unique<sql::Query>();
    insert->query->select = std::make_unique<sql::Select>();
    for (sql::ExprPtr& value : insert->values) {
      insert->query->select->items.emplace_back().expr = std::move(value);
    }
  }
  return sql::TreePrinter().PrintStatement(statement);
}

void ExpectSameMeaningAfterwards(std::string_view sql) {
  const std::string again = QuerySql(QueryParts(sql));
  EXPECT_EQ(Meaning(again), Meaning(sql)) << again;
}

TEST(QueryParts, OfALeftJoinOnSeveralEqualities) {
  EXPECT_THAT(PartsOf("SELECT A.K1 AS a1, IIf(IsNull(B.V), A.V, B.V) AS v FROM A LEFT JOIN B ON "
                      "(A.K1 = B.K1) AND (A.K2 = B.K2);\r\n"),
              ElementsAre("1 flag 1", "5 1:A", "5 1:B", "6 1:a1 = A.K1",
                          "6 1:v = IIf(IsNull(B.V), A.V, B.V)", "7 flag 2 1:A 2:B = A.K2 = B.K2",
                          "7 flag 2 1:A 2:B = A.K1 = B.K1"));
}

TEST(QueryParts, OfNestedJoinsNameTheTablesOfEachCondition) {
  EXPECT_THAT(PartsOf("select * from (A inner join [B b] as X on A.k=X.k) right join "
                      "(C inner join D on D.k=C.k) on [x].n=D.n and A.m=C.m"),
              ElementsAre("1 flag 1", "3 flag 1", "5 1:A", "5 1:B b 2:X", "5 1:C", "5 1:D",
                          "7 flag 1 1:A 2:X = A.k=X.k", "7 flag 1 1:C 2:D = D.k=C.k",
                          "7 flag 3 1:X 2:D = [x].n=D.n", "7 flag 3 1:A 2:C = A.m=C.m"));
}

TEST(QueryParts, OfAJoinOnAnotherConditionKeepItWhole) {
  EXPECT_THAT(PartsOf("select A.x from A left join B on (A.k = B.k) and (B.n between 1 and 5)"),
              ElementsAre("1 flag 1", "5 1:A", "5 1:B", "6 = A.x",
                          "7 flag 2 1:A 2:B = (A.k = B.k) and (B.n between 1 and 5)"));
  EXPECT_THAT(
      PartsOf("select 1 from A inner join B on k = n or k is null"),
      ElementsAre("1 flag 1", "5 1:A", "5 1:B", "6 = 1", "7 flag 1 1:A 2:B = k = n or k is null"));
}

TEST(QueryParts, OfADerivedTable) {
  EXPECT_THAT(PartsOf("select d.n from (select n, sum(v) from [T t] group by n) as d, U"),
              ElementsAre("1 flag 1", "5 2:d = select n, sum(v) from [T t] group by n", "5 1:U",
                          "6 = d.n"));
}

TEST(QueryParts, OfEveryClause) {
  EXPECT_THAT(
      PartsOf("parameters [User Name] Text ( 255 ), n long; select distinct top 5 percent a "
              "as [b c], 'x' & d from T where (a > 1) group by a, d having count(*) > 1 "
              "order by a desc, d asc, 3 with owneraccess option;"),
      ElementsAre("1 flag 1", "2 flag 10 1:User Name", "2 flag 4 1:n", "3 flag 54 1:5", "5 1:T",
                  "6 1:b c = a", "6 = 'x' & d", "8 = (a > 1)", "9 = a", "9 = d",
                  "10 = count(*) > 1", "11 1:D = a", "11 = d", "11 = 3"));
}

TEST(QueryParts, OfAStarThatDoesNotStandFirstNameTheTables) {
  EXPECT_THAT(PartsOf("select a, * from T, [U u] as V"),
              ElementsAre("1 flag 1", "5 1:T", "5 1:U u 2:V", "6 = a", "6 = [T].*", "6 = [V].*"));
}

TEST(QueryParts, OfAnotherDatabase) {
  EXPECT_THAT(PartsOf("select a from T in 'other.mdb'[;pwd=x]"),
              ElementsAre("1 flag 1", "4 1:other.mdb = ;pwd=x", "5 1:T", "6 = a"));
}

TEST(QueryParts, OfAUnionAreItsTwoSides) {
  EXPECT_THAT(
      PartsOf("select a from T union select b from U union all select c from V order by a"),
      ElementsAre("1 flag 9", "3 flag 1", "5 2:X7YZ_____1 = select a from T union select b from U",
                  "5 2:X7YZ_____2 = select c from V", "11 = a"));
  EXPECT_THAT(PartsOf("(select a from T) union (select b from U)"),
              ElementsAre("1 flag 9", "3 flag 3", "5 2:X7YZ_____1 = (select a from T)",
                          "5 2:X7YZ_____2 = (select b from U)"));
}

TEST(QueryParts, OfQueriesThatAct) {
  EXPECT_THAT(PartsOf("insert into [T t] (a, [b c]) select x, y + 1 from U where x > 0"),
              ElementsAre("1 flag 3 1:T t", "5 1:U", "6 2:a = x", "6 2:b c = y + 1", "8 = x > 0"));
  EXPECT_THAT(PartsOf("insert into T (a, b) values (1, 'it''s')"),
              ElementsAre("1 flag 3 1:T", "6 2:a = 1", "6 2:b = 'it''s'"));
  EXPECT_THAT(PartsOf("update A inner join B on A.k=B.k set A.n = B.n + 1, [m m] = null where n=1"),
              ElementsAre("1 flag 4", "5 1:A", "5 1:B", "6 2:A.n = B.n + 1", "6 2:m m = null",
                          "7 flag 1 1:A 2:B = A.k=B.k", "8 = n=1"));
  EXPECT_THAT(PartsOf("delete from T"), ElementsAre("1 flag 5", "5 1:T"));
  EXPECT_THAT(PartsOf("delete T.* from T inner join U on T.k=U.k"),
              ElementsAre("1 flag 5", "5 1:T", "5 1:U", "6 = T.*", "7 flag 1 1:T 2:U = T.k=U.k"));
  EXPECT_THAT(PartsOf("select a into [New T] from T"),
              ElementsAre("1 flag 2 1:New T", "5 1:T", "6 = a"));
}

TEST(QueryParts, OfACrosstab) {
  EXPECT_THAT(
      PartsOf("transform sum(v) as s select c, sum(v) as total from T group by c pivot q"),
      ElementsAre("1 flag 6", "5 1:T", "6 1:s = sum(v)", "6 flag 2 = c",
                  "6 flag 2 1:total = sum(v)", "6 flag 1 = q", "9 flag 2 = c", "9 flag 1 = q"));
}

TEST(QueryParts, OfADataDefinitionAreItsTextAndAZero) {
  const auto parts = QueryParts("create table T (a long)");
  ASSERT_EQ(parts.size(), 1U);
  EXPECT_EQ(parts[0].flag, 7);
  EXPECT_EQ(parts[0].expression, std::string("create table T (a long)\0", 24));
}

// All that can be kept: which column of a star goes where cannot be told, and a table without a
// name cannot be joined.
TEST(QueryParts, MeanWhatTheLibrarysStatementsMean) {
  const std::set<std::string_view> cannot_be_kept = {
      "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
      "select * from split ",
      "select a from (b left outer join c on b.x=c.x) right join (select 1 as x) on b.x=x"};
  for (const std::string_view sql : sql::KnownStatements()) {
    SCOPED_TRACE(sql);
    const bool defines =
        sql.starts_with("create") || sql.starts_with("alter") || sql.starts_with("drop");
    if (cannot_be_kept.contains(sql)) {
      EXPECT_EQ(Fails(sql), kInvalidArgument);
    } else if (defines) {
      EXPECT_EQ(QuerySql(QueryParts(sql)), sql);
    } else {
      ExpectSameMeaningAfterwards(sql);
    }
  }
}

TEST(QueryParts, KeepMeaningWithNamesThatNeedBrackets) {
  for (const char* sql :
       {"select [desc], [año] as [some], [Straße 1].[it's] from [Straße 1] order by [desc] desc",
        "select [T-1].ñ from [T-1] inner join [order] on [T-1].ñ=[order].ç and [order].a=[T-1].b",
        "update [primary] set [primary].[top] = 1, [union] = 2", "delete from [distinctrow]",
        "insert into [values] ([set], [from]) values (1, 2)",
        "select a from A, B inner join C on B.k = C.k, D where a like '*and (*'",
        "select a from ((A inner join B on A.k=B.k) left join C on (B.m=C.m) and (B.n=C.n)) right "
        "join D on C.z = D.z"}) {
    SCOPED_TRACE(sql);
    ExpectSameMeaningAfterwards(sql);
  }
}

std::vector<std::string> InputsSorted(std::vector<std::string> lines) {
  const auto is_input = [](const std::string& line) { return line.starts_with("5 "); };
  const auto first = std::find_if(lines.begin(), lines.end(), is_input);
  std::sort(first, std::find_if_not(first, lines.end(), is_input));
  return lines;
}

class QueryPartsOfSamples : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, QueryPartsOfSamples,
                         testing::Values("accessLike", "pivot", "queryTestV2000", "queryTestV2003"),
                         [](const auto& sample) { return std::string(sample.param); });

// Rows that hold nothing and whether there is a row without options are no matter of meaning. Nor
// is the order of tables that are joined, which their text has as the joins have it. What goes to
// another server cannot be told by its text.
TEST_P(QueryPartsOfSamples, AreTheRowsOfTheirText) {
  const auto file = jetfile::ReadFromDisk(jetfile::SamplePath(GetParam()), "");
  const jetfile::Catalogue catalogue = ReadCatalogue(file);
  const auto all = ReadQueryRows(file, catalogue);
  for (const auto* query : catalogue.UserObjects(jetfile::ObjectType::kQuery)) {
    if (query->name == "PassthroughQuery") continue;
    SCOPED_TRACE(query->name);
    std::vector<std::string> kept;
    for (const QueryRow& row : all) {
      const bool bare = row.part == QueryPart::kFirst || row.part == QueryPart::kLast ||
                        (row.part == QueryPart::kOptions && row.flag == 0);
      if (row.query == query->id && !bare) kept.push_back(Line(row));
    }
    if (kept.front().front() != '1') kept.insert(kept.begin(), "1 flag 1");
    for (std::string& line : kept) {
      const size_t end = line.find_last_not_of("\r\n");
      line.erase(end + 1);
    }
    EXPECT_EQ(InputsSorted(PartsOf(ReadQuerySql(file, catalogue, *query))), InputsSorted(kept));
  }
}

TEST(QueryParts, AreNotMadeOfWhatIsNoStatement) {
  for (const char* sql : {"",
                          ";",
                          "explain T",
                          "select",
                          "select from T",
                          "select a from",
                          "select a, from T",
                          "select a from T where",
                          "select a from T group a",
                          "select a from T where 1 where 2",
                          "select a from T order by a group by b",
                          "select a from T; select b from U",
                          "select a as from T",
                          "select a as b c from T",
                          "select a from T as",
                          "select a from T U V",
                          "select a from A join B on A.k=B.k",
                          "select a from A inner join B",
                          "select a from A inner join B on A.k=B.k inner join C on B.k=C.k",
                          "select a from T, t",
                          "insert T values (1)",
                          "insert into T (a) values 1",
                          "insert into T (a, b) values (1)",
                          "insert into T (a) values (1, 2)",
                          "insert into T (a) select a from A union select b from B",
                          "update T",
                          "update T set",
                          "update T set a",
                          "update T set a + 1 = 2",
                          "update T set a = 1 group by a",
                          "delete T",
                          "select a union",
                          "union select a",
                          "parameters n Longish; select n",
                          "transform sum(v) select c from T group by c",
                          "transform sum(v) select c from T group by c pivot q in (1, 2)"}) {
    EXPECT_EQ(Fails(sql), kInvalidArgument) << sql;
  }
  for (const char* sql : {"select (a from T", "select a) from T", "select 'a from T"}) {
    EXPECT_EQ(Fails(sql), kExpressionSyntax) << sql;
  }
}

}  // namespace
}  // namespace ambrelio::embedded::jet
