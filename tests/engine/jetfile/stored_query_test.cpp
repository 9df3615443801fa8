#include "ambrelio/engine/jetfile/stored_query.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/damage.h"
#include "engine/jetfile/samples.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

std::string SqlOf(const std::string& sample, const std::string& query) {
  const JetFile file = ReadFromDisk(SamplePath(sample));
  const Catalogue catalogue = ReadCatalogue(file);
  const CatalogueObject* object = catalogue.Find(ObjectType::kQuery, query);
  return object == nullptr ? "there is no such query" : ReadQuerySql(file, catalogue, *object);
}

QueryRow Part(QueryPart part, std::string expression, std::string name1 = "",
              std::string name2 = "", int16_t flag = 0) {
  QueryRow row;
  row.part = part;
  row.name1 = std::move(name1);
  row.name2 = std::move(name2);
  row.expression = std::move(expression);
  row.flag = flag;
  return row;
}

TEST(StoredQuery, ShowsASelectOverJoins) {
  EXPECT_EQ(SqlOf("queryTestV2000", "SelectQuery"),
            "SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3\r\n"
            "FROM (Table1 LEFT JOIN Table3 ON Table1.col1 = Table3.col1) INNER JOIN Table2 ON "
            "(Table3.col1 = Table2.col2) AND (Table3.col1 = Table2.col1)\r\n"
            "WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\")))\r\n"
            "ORDER BY Table2.col1;\r\n");
}

TEST(StoredQuery, ShowsAnUpdateWithAParameter) {
  EXPECT_EQ(SqlOf("queryTestV2000", "UpdateQuery"),
            "PARAMETERS [User Name] Text;\r\n"
            "UPDATE Table1 SET Table1.col1 = \"foo\", Table1.col2 = [Table2].[col3], "
            "[Table2].[col1] = [User Name]\r\n"
            "WHERE ((([Table2].[col1]) Is Not Null));\r\n");
}

TEST(StoredQuery, ShowsAnAppend) {
  EXPECT_EQ(SqlOf("queryTestV2000", "AppendQuery"),
            "INSERT INTO Table3 ( col2, col2, col3 )\r\n"
            "SELECT [Table1].[col2], [Table2].[col2], [Table2].[col3]\r\n"
            "FROM Table3, Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1];\r\n");
}

TEST(StoredQuery, ShowsADelete) {
  EXPECT_EQ(SqlOf("queryTestV2000", "DeleteQuery"),
            "DELETE Table1.col1, Table1.col2, Table1.col3\r\n"
            "FROM Table1\r\n"
            "WHERE (((Table1.col1)>\"blah\"));\r\n");
}

TEST(StoredQuery, ShowsAMakeTableWithGroups) {
  EXPECT_EQ(SqlOf("queryTestV2000", "MakeTableQuery"),
            "SELECT Max(Table2.col1) AS MaxOfcol1, Table2.col2, Table3.col2 INTO Table4\r\n"
            "FROM (Table2 INNER JOIN Table1 ON Table2.col1 = Table1.col2) RIGHT JOIN Table3 ON "
            "Table1.col2 = Table3.col3\r\n"
            "GROUP BY Table2.col2, Table3.col2\r\n"
            "HAVING (((Max(Table2.col1))=\"buzz\") AND ((Table2.col2)<>\"blah\"));\r\n");
}

TEST(StoredQuery, ShowsACrosstab) {
  EXPECT_EQ(SqlOf("queryTestV2000", "CrosstabQuery"),
            "TRANSFORM Count([Table2].[col2]) AS CountOfcol2\r\n"
            "SELECT Table2_1.col1, [Table2].[col3], Avg(Table2_1.col2) AS AvgOfcol2\r\n"
            "FROM (Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]) INNER JOIN "
            "Table2 AS Table2_1 ON [Table2].[col1]=Table2_1.col3\r\n"
            "WHERE ((([Table1].[col1])>\"10\") And ((Table2_1.col1) Is Not Null) And "
            "((Avg(Table2_1.col2))>\"10\"))\r\n"
            "GROUP BY Table2_1.col1, [Table2].[col3]\r\n"
            "ORDER BY [Table2].[col3]\r\n"
            "PIVOT [Table1].[col1];\r\n");
  EXPECT_EQ(SqlOf("pivot", "q_trim"),
            "TRANSFORM Sum(t_pivot.[c_val]) AS Sum_Value\r\n"
            "SELECT t_pivot.[c_cod], Sum(t_pivot.[c_val]) AS Total_Value\r\n"
            "FROM t_pivot\r\n"
            "GROUP BY t_pivot.[c_cod]\r\n"
            "PIVOT \"Trim \" & Format([c_dt],\"q\");\r\n");
}

TEST(StoredQuery, ShowsAUnion) {
  EXPECT_EQ(SqlOf("queryTestV2000", "UnionQuery"),
            "Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\n"
            "UNION\r\nSelect Table2.col1, Table2.col2\r\n"
            "UNION ALL Select Table3.col1, Table3.col2\r\nwhere Table3.col3 > \"blah\";\r\n");
}

TEST(StoredQuery, ShowsWhatIsStoredAsText) {
  EXPECT_EQ(SqlOf("queryTestV2000", "PassthroughQuery"), "ALTER TABLE Table4 DROP COLUMN col5;");
  EXPECT_EQ(SqlOf("queryTestV2000", "DataDefinitionQuery"),
            "CREATE TABLE Table5 (col1 CHAR, col2 CHAR);");
}

TEST(StoredQuery, NeedsNoRowOfItsKindForASelect) {
  EXPECT_EQ(SqlOf("accessLike", "q_like2"),
            "SELECT Campo2\r\nFROM t_like2\r\nWHERE Campo2 LIKE \"d*#\";\r\n");
}

TEST(StoredQuery, ShowsTheSameInEveryVersion) {
  for (const char* query : {"SelectQuery", "UpdateQuery", "AppendQuery", "DeleteQuery",
                            "MakeTableQuery", "UnionQuery", "PassthroughQuery"}) {
    EXPECT_EQ(SqlOf("queryTestV2003", query), SqlOf("queryTestV2000", query));
  }
}

// The conditions of a pair are shown from the last to the first.
TEST(StoredQuery, JoinsOnSeveralEqualitiesWithAliases) {
  EXPECT_EQ(
      QuerySql({Part(QueryPart::kFirst, ""), Part(QueryPart::kKind, "", "", "", 1),
                Part(QueryPart::kInput, "", "Left table", "A"),
                Part(QueryPart::kInput, "select * from T;\r\n", "", "B"),
                Part(QueryPart::kOutput, "A.K1", "a1"),
                Part(QueryPart::kOutput, "IIf(IsNull(B.V),A.V,B.V)", "the value"),
                Part(QueryPart::kJoin, "A.K1 = B.K1", "A", "B", 2),
                Part(QueryPart::kJoin, "A.K2 = B.K2", "A", "B", 2), Part(QueryPart::kLast, "")}),
      "SELECT A.K1 AS a1, IIf(IsNull(B.V),A.V,B.V) AS [the value]\r\n"
      "FROM [Left table] AS A LEFT JOIN (select * from T) AS B ON (A.K2 = B.K2) AND "
      "(A.K1 = B.K1);\r\n");
}

TEST(StoredQuery, ShowsOptions) {
  EXPECT_EQ(
      QuerySql({Part(QueryPart::kOptions, "", "5", "", 1 | 8 | 16 | 32 | 4),
                Part(QueryPart::kSource, "", "other.mdb"), Part(QueryPart::kInput, "", "Order"),
                Part(QueryPart::kOrderBy, "N", "D"), Part(QueryPart::kOrderBy, "M")}),
      "SELECT DISTINCTROW TOP 5 PERCENT *\r\nFROM [Order] IN 'other.mdb'\r\n"
      "ORDER BY N DESC, M\r\nWITH OWNERACCESS OPTION;\r\n");
}

TEST(StoredQuery, RefusesWhatMakesNoStatement) {
  EXPECT_EQ(test::ErrorOf([] { QuerySql({Part(QueryPart::kKind, "", "", "", 77)}); }), 3049);
  EXPECT_EQ(test::ErrorOf([] {
              QuerySql({Part(QueryPart::kInput, "", "A"),
                        Part(QueryPart::kJoin, "A.K=C.K", "A", "C", 1)});
            }),
            3049);
}

}  // namespace
}  // namespace ambrelio::jetfile
