// The last row of recordsets that were not read to their end, and errors in the middle of a walk.
#include <gmock/gmock.h>

#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::RecordsetType;
using test::ErrorOf;
using testing::ElementsAre;
using Numbers = std::vector<int32_t>;

constexpr RecordsetType kBoth[] = {RecordsetType::kDynaset, RecordsetType::kSnapshot};

class LastRow : public test::EngineTest {
 protected:
  LastRow() : database_(Create()) {
    database_->Execute("create table T (id long primary key, a long, t text(5))");
    const char* const rows[] = {"1, 30, 'b'", "2, 10, 'A'", "3, null, null",
                                "4, 30, 'B'", "5, 20, 'a'", "6, 10, 'c'"};
    for (const char* const row : rows) {
      database_->Execute("insert into T values (" + std::string(row) + ")");
    }
  }

  std::unique_ptr<dao::Recordset> Open(const std::string& sql,
                                       RecordsetType type = RecordsetType::kDefault) {
    return database_->OpenRecordset(sql, type);
  }
  static Variant Now(dao::Recordset& rows) { return rows.Value(0); }
  static std::vector<Variant> Walk(dao::Recordset& rows) {
    std::vector<Variant> values;
    for (; !rows.AtEnd(); rows.MoveNext()) values.push_back(Now(rows));
    return values;
  }

  DatabasePtr database_;
};

// Each way to the last row and back, beside a walk over all rows.
TEST_F(LastRow, IsTheOneThatAWalkMeetsLast) {
  for (const char* const sql : {
           "select id from T",
           "select id from T order by a",
           "select id from T order by a desc",
           "select id from T order by t, a desc",
           "select id from T order by t desc",
           "select id from T order by a, id desc",
           "select id from T where a > 10 order by t",
           "select id from T where id = 4",
           "select top 2 id from T order by a",
           "select top 4 id from T order by a desc",
           "select top 50 percent id from T order by a",
           "select distinct t from T",
           "select distinct a from T order by a desc",
           "select max(id) from T",
           "select max(id) from T group by a order by a desc",
           "select id from T union select 7 from T",
           "select t from T union select 'C' from T order by t desc",
           "select id from T union all select 9 from T",
           "select id from T union all select id from T order by id",
           "select x.id from T as x, T as y where x.a = y.a",
           "select y.id from T as x inner join T as y on x.a = y.a order by x.a, y.a",
           "select x.id from T as x left join T as y on x.id = y.a order by y.id",
           "select x.id from T as x left join T as y on x.a = y.a where y.t is null or x.id > 2",
           "select t from (select t from T union all select t from T) order by t",
           "select t from (select t from T union all select t from T) where t < 'c' order by t",
           "select t from (select t from T union select t from T) order by t desc",
           "select q.a from (select a from T group by a) as q, T as r where r.id < 3",
           "select q.id from (select top 3 id, a from T order by a) as q order by q.a",
       }) {
    for (const RecordsetType type : kBoth) {
      const std::vector<Variant> all = Walk(*Open(sql, type));
      ASSERT_FALSE(all.empty()) << sql;
      const auto rows = Open(sql, type);
      rows->MoveLast();
      EXPECT_EQ(Now(*rows), all.back()) << sql;
      rows->MoveLast();
      EXPECT_EQ(Now(*rows), all.back()) << sql;
      rows->MoveNext();
      EXPECT_TRUE(rows->AtEnd()) << sql;
      EXPECT_FALSE(rows->AtStart()) << sql;
      for (size_t i = all.size(); i-- > 0;) {
        rows->MovePrevious();
        EXPECT_EQ(Now(*rows), all[i]) << sql << " at " << i;
      }
      rows->MovePrevious();
      EXPECT_TRUE(rows->AtStart()) << sql;
      rows->MoveNext();
      EXPECT_EQ(Walk(*rows), all) << sql;
    }
  }
}

TEST_F(LastRow, IsTheOneWithTheHighestKeyOfThoseThatTie) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T order by a", type);
    rows->MoveLast();
    EXPECT_EQ(Now(*rows), Variant(int32_t{4}));
    const auto turned = Open("select id from T where a is not null order by a desc", type);
    turned->MoveLast();
    EXPECT_EQ(Now(*turned), Variant(int32_t{6}));
  }
}

TEST_F(LastRow, LeadsBackToTheOneBeforeIt) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T", type);
    rows->MoveLast();
    rows->MovePrevious();
    EXPECT_EQ(Now(*rows), Variant(int32_t{5}));
    rows->MoveNext();
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    rows->MoveNext();
    EXPECT_TRUE(rows->AtEnd());
  }
}

TEST_F(LastRow, LeadsToTheEndAndBack) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T", type);
    rows->MoveLast();
    rows->MoveNext();
    EXPECT_TRUE(rows->AtEnd());
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3021);
    EXPECT_EQ(ErrorOf([&] { Now(*rows); }), 3021);
    rows->MovePrevious();
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
  }
}

TEST_F(LastRow, LeadsToTheFirst) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T", type);
    rows->MoveLast();
    rows->MoveFirst();
    EXPECT_EQ(Walk(*rows).size(), 6U);
  }
}

TEST_F(LastRow, OfOneRowIsTheFirst) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T where id = 3", type);
    rows->MoveLast();
    EXPECT_EQ(Now(*rows), Variant(int32_t{3}));
    rows->MovePrevious();
    EXPECT_TRUE(rows->AtStart());
    EXPECT_FALSE(rows->AtEnd());
    rows->MoveNext();
    EXPECT_EQ(Now(*rows), Variant(int32_t{3}));
  }
}

TEST_F(LastRow, OfNoneIsNone) {
  for (const RecordsetType type : kBoth) {
    EXPECT_EQ(ErrorOf([&] { Open("select id from T where id = 9", type)->MoveLast(); }), 3021);
  }
}

TEST_F(LastRow, StaysCurrentWhenAWriteHasTheRestRead) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Open("select id from T order by id", type);
    rows->MoveLast();
    database_->Execute("insert into T values (9, 9, 'z')");
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    rows->MoveNext();
    EXPECT_TRUE(rows->AtEnd());
    rows->MovePrevious();
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    rows->MovePrevious();
    EXPECT_EQ(Now(*rows), Variant(int32_t{5}));
    database_->Execute("delete from T where id = 9");
  }
}

TEST_F(LastRow, UsesTheLiteralsOfItsText) {
  for (const int limit : {3, 5, 4}) {
    for (const RecordsetType type : kBoth) {
      const auto rows = Open("select id, '" + std::to_string(limit) + "' as t from T where id <= " +
                                 std::to_string(limit) + " order by id",
                             type);
      rows->MoveLast();
      EXPECT_EQ(Now(*rows), Variant(int32_t{limit}));
      EXPECT_EQ(rows->Value("t"), Variant(std::to_string(limit)));
    }
  }
}

// Errors in the middle.

class ErrorInTheMiddle : public LastRow {
 protected:
  ErrorInTheMiddle() { database_->Execute("update T set a = id - 3"); }

  // Row 3 divides by zero in its value.
  std::unique_ptr<dao::Recordset> Values(RecordsetType type) {
    return Open("select id, 6 / a as x from T order by id", type);
  }
  // Row 3 divides by zero in the condition.
  std::unique_ptr<dao::Recordset> Conditions(RecordsetType type) {
    return Open("select id from T where 6 / a < 100 order by id", type);
  }
};

TEST_F(ErrorInTheMiddle, IsRaisedWhenItsRowIsReached) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Conditions(type);
    rows->MoveNext();
    EXPECT_EQ(Now(*rows), Variant(int32_t{2}));
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
  }
  const auto rows = Values(RecordsetType::kSnapshot);
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
}

TEST_F(ErrorInTheMiddle, IsRaisedAgainByEachAttempt) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Conditions(type);
    rows->MoveNext();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
    EXPECT_FALSE(rows->AtEnd());
    EXPECT_EQ(Now(*rows), Variant(int32_t{2}));
    rows->MovePrevious();
    EXPECT_EQ(Now(*rows), Variant(int32_t{1}));
    rows->MoveNext();
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
    EXPECT_EQ(ErrorOf([&] { rows->MoveLast(); }), 11);
  }
}

TEST_F(ErrorInTheMiddle, IsKeptForItsRowWhenAWriteHasTheRestRead) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Conditions(type);
    database_->Execute("update T set t = 'x'", dao::kFailOnError);
    EXPECT_EQ(database_->RecordsAffected(), 6);
    rows->MoveNext();
    EXPECT_EQ(Now(*rows), Variant(int32_t{2}));
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
  }
}

TEST_F(ErrorInTheMiddle, OfADynasetsValueBelongsToThatRowAlone) {
  const auto rows = Values(RecordsetType::kDynaset);
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
  rows->MoveNext();
  EXPECT_EQ(Now(*rows), Variant(int32_t{4}));
}

TEST_F(ErrorInTheMiddle, OfTheFirstRowIsRaisedAtTheOpening) {
  for (const RecordsetType type : kBoth) {
    EXPECT_EQ(ErrorOf([&] { Open("select 1 / a as x from T where id > 2", type); }), 11);
    EXPECT_EQ(ErrorOf([&] { Open("select id from T where 1 / a < 9 and id > 2", type); }), 11);
  }
}

TEST_F(ErrorInTheMiddle, DoesNotKeepFromTheLastRow) {
  for (const RecordsetType type : kBoth) {
    const auto rows = Conditions(type);
    rows->MoveLast();
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    EXPECT_EQ(ErrorOf([&] { rows->MovePrevious(); }), 11);
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    rows->MoveLast();
    EXPECT_EQ(Now(*rows), Variant(int32_t{6}));
    rows->MoveFirst();
    rows->MoveNext();
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
  }
}

TEST_F(ErrorInTheMiddle, LeavesTheStatementFitForTheNext) {
  for (const RecordsetType type : kBoth) {
    {
      const auto rows = Conditions(type);
      rows->MoveNext();
      EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 11);
    }
    database_->Execute("update T set a = 7 where id = 3");
    EXPECT_EQ(Walk(*Conditions(type)).size(), 6U);
    database_->Execute("update T set a = 0 where id = 3");
  }
}

}  // namespace
}  // namespace ambrelio::embedded
