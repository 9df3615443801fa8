#include "sql_layout.h"

#include <gtest/gtest.h>

namespace ambrelio::cli {
namespace {

TEST(SqlLayout, StartsALineForEachClause) {
  EXPECT_EQ(LaidOutSql("SELECT t1.\"a\" AS c0 FROM \"A\" AS t1 LEFT JOIN \"B\" AS t2 ON (x = y) "
                       "WHERE (z > ?1) GROUP BY c0 ORDER BY c0 DESC LIMIT 1"),
            "SELECT t1.\"a\" AS c0\n"
            "FROM \"A\" AS t1\n"
            "LEFT JOIN \"B\" AS t2 ON (x = y)\n"
            "WHERE (z > ?1)\n"
            "GROUP BY c0\n"
            "ORDER BY c0 DESC\n"
            "LIMIT 1\n");
}

TEST(SqlLayout, SetsSelectsInBracketsIn) {
  EXPECT_EQ(LaidOutSql("SELECT c0 FROM (SELECT 1 AS c0 UNION ALL SELECT 2) WHERE (c0 IN (SELECT k "
                       "FROM \"A\"))"),
            "SELECT c0\n"
            "FROM (\n"
            "  SELECT 1 AS c0\n"
            "  UNION ALL\n"
            "  SELECT 2\n"
            ")\n"
            "WHERE (c0 IN (\n"
            "  SELECT k\n"
            "  FROM \"A\"\n"
            "))\n");
}

TEST(SqlLayout, LeavesOtherBracketsWhole) {
  EXPECT_EQ(LaidOutSql("SELECT row_number() OVER (ORDER BY k) FROM (a JOIN b ON c)"),
            "SELECT row_number() OVER (ORDER BY k)\n"
            "FROM (a JOIN b ON c)\n");
}

TEST(SqlLayout, LeavesQuotedTextWhole) {
  EXPECT_EQ(LaidOutSql("SELECT \"a (SELECT FROM \"\" WHERE \" FROM 'it''s ) FROM x'"),
            "SELECT \"a (SELECT FROM \"\" WHERE \"\n"
            "FROM 'it''s ) FROM x'\n");
}

TEST(SqlLayout, LaysOutWrites) {
  EXPECT_EQ(LaidOutSql("UPDATE \"A\" SET \"k\" = ?1 WHERE \"k\" = ?2"),
            "UPDATE \"A\"\nSET \"k\" = ?1\nWHERE \"k\" = ?2\n");
  EXPECT_EQ(LaidOutSql("DELETE FROM \"A\" WHERE x"), "DELETE FROM \"A\"\nWHERE x\n");
  EXPECT_EQ(LaidOutSql("INSERT INTO \"A\" (\"k\") VALUES (?1)"),
            "INSERT INTO \"A\" (\"k\")\nVALUES (?1)\n");
}

TEST(SqlLayout, EndsWithWhatIsBroken) {
  EXPECT_EQ(LaidOutSql("SELECT 'a FROM b"), "SELECT 'a FROM b\n");
  EXPECT_EQ(LaidOutSql("SELECT a) FROM b"), "SELECT a)\nFROM b\n");
  EXPECT_EQ(LaidOutSql(""), "\n");
}

}  // namespace
}  // namespace ambrelio::cli
