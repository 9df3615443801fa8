#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

using testing::ElementsAre;

class Aggregates : public testing::Test {
 protected:
  Aggregates() { db_.Run("create table t (g, k, l, x)"); }

  void Insert(const std::string& rows) { db_.Run("insert into t values " + rows); }
  std::string Of(const std::string& aggregate) {
    return db_.Rows("select quote(" + aggregate + ") from t").at(0);
  }

  FunctionDb db_;
};

TEST_F(Aggregates, SumAndAverageAreDoubles) {
  Insert("(1, 1, 1, 1), (1, 1, 1, 2)");
  EXPECT_EQ(Of("jet_sum(x)"), "3.0");
  EXPECT_EQ(Of("jet_avg(x)"), "1.5");
}

TEST_F(Aggregates, SkipNulls) {
  Insert("(1, 1, 1, 1), (1, 1, 1, null), (1, 1, 1, 3)");
  EXPECT_EQ(Of("jet_sum(x)"), "4.0");
  EXPECT_EQ(Of("jet_avg(x)"), "2.0");
}

TEST_F(Aggregates, AreNullWithoutRows) {
  for (const char* aggregate : {"jet_sum(x)", "jet_avg(x)", "jet_first(x)", "jet_last(x, k)"}) {
    EXPECT_EQ(Of(aggregate), "NULL") << aggregate;
  }
}

TEST_F(Aggregates, AreNullWithNullsOnly) {
  Insert("(1, 1, 1, null), (1, 2, 1, null)");
  for (const char* aggregate : {"jet_sum(x)", "jet_avg(x)", "jet_first(x)", "jet_last(x, k)"}) {
    EXPECT_EQ(Of(aggregate), "NULL") << aggregate;
  }
}

TEST_F(Aggregates, SumRaisesOverflowAndMismatch) {
  Insert("(1, 1, 1, 1e308), (1, 1, 1, 1e308)");
  EXPECT_THROW(Of("jet_sum(x)"), AutomationError);
  EXPECT_THROW(Of("jet_sum('oil')"), AutomationError);
}

TEST_F(Aggregates, FirstAndLastGoByTheKey) {
  Insert("(1, 2, 0, 'b'), (1, 1, 0, 'a'), (1, 3, 0, 'c')");
  EXPECT_EQ(Of("jet_first(x, k)"), "'a'");
  EXPECT_EQ(Of("jet_last(x, k)"), "'c'");
}

TEST_F(Aggregates, LaterKeysDecideBetweenEqualOnes) {
  Insert("(1, 1, 2, 'b'), (1, 1, 1, 'a'), (1, 1, 3, 'c'), (1, 0, 9, 'z')");
  EXPECT_EQ(Of("jet_first(x, k, l)"), "'z'");
  EXPECT_EQ(Of("jet_last(x, k, l)"), "'c'");
}

TEST_F(Aggregates, GoByTheOrderMetWithoutKeys) {
  Insert("(1, 2, 0, 'b'), (1, 1, 0, 'a'), (1, 3, 0, 'c')");
  EXPECT_EQ(Of("jet_first(x)"), "'b'");
  EXPECT_EQ(Of("jet_last(x)"), "'c'");
}

TEST_F(Aggregates, GoByTheOrderMetForEqualKeys) {
  Insert("(1, 1, 0, 'b'), (1, 1, 0, 'a'), (1, 1, 0, 'c')");
  EXPECT_EQ(Of("jet_first(x, k)"), "'b'");
  EXPECT_EQ(Of("jet_last(x, k)"), "'c'");
}

TEST_F(Aggregates, PutANullKeyLowest) {
  Insert("(1, 1, 0, 'a'), (1, null, 0, 'n')");
  EXPECT_EQ(Of("jet_first(x, k)"), "'n'");
  EXPECT_EQ(Of("jet_last(x, k)"), "'a'");
}

TEST_F(Aggregates, CompareTextKeysByTheGeneralOrder) {
  Insert("(1, 'b', 0, 1), (1, 'Á', 0, 2), (1, 'a', 0, 3), (1, 'B ', 1, 4)");
  EXPECT_EQ(Of("jet_first(x, k)"), "3");
  EXPECT_EQ(Of("jet_last(x, k, l)"), "4");
}

TEST_F(Aggregates, CompareWholeAndBrokenNumbersTogether) {
  Insert("(1, 2, 0, 'b'), (1, 1.5, 0, 'a'), (1, 2.5, 0, 'c')");
  EXPECT_EQ(Of("jet_first(x, k)"), "'a'");
  EXPECT_EQ(Of("jet_last(x, k)"), "'c'");
}

TEST_F(Aggregates, KeepTheNullOfTheRowThatTheyChose) {
  Insert("(1, 1, 0, null), (1, 2, 0, 'b')");
  EXPECT_EQ(Of("jet_first(x, k)"), "NULL");
}

TEST_F(Aggregates, WorkForEachGroup) {
  Insert("(1, 1, 0, 'a'), (1, 2, 0, 'b'), (2, 5, 0, 'c'), (2, 4, 0, 'd')");
  EXPECT_THAT(db_.Rows("select jet_first(x, k) || jet_last(x, k) from t group by g order by g"),
              ElementsAre("ab", "dc"));
}

}  // namespace
}  // namespace ambrelio::embedded
