#include <gmock/gmock.h>

#include "sql_test.h"

namespace ambrelio::embedded::sql {
namespace {

TEST(Insert, ReadsValues) {
  EXPECT_EQ(Printed("insert into t (a, [b c]) values (1, -2.5, 'x', Null, Now())"),
            "insert into t (a, b c) values (1, (-2.500000), 'x', Null, Now())");
}

TEST(Insert, NeedsNoColumns) {
  EXPECT_EQ(Printed("INSERT INTO t VALUES (1);"), "insert into t values (1)");
}

TEST(Insert, ReadsRowsFromAQuery) {
  EXPECT_EQ(Printed("insert into t (a, b) select * from u where c = 1"),
            "insert into t (a, b) {select * from u where (c = 1)}");
  EXPECT_EQ(Printed("insert into t select a from u union select b from v"),
            "insert into t {{select a from u} union {select b from v}}");
}

TEST(Insert, TellsAQueryInBracketsFromAListOfColumns) {
  EXPECT_EQ(Printed("insert into t (select a from u)"), "insert into t {select a from u}");
  EXPECT_EQ(Printed("insert into t (a) (select a from u)"), "insert into t (a) {select a from u}");
}

TEST(Insert, RefusesAnEmptyValue) {
  for (const char* text : {"insert into t (a, b) values (1, )", "insert into t (a, b) values (, 1)",
                           "insert into t (a, b) values (1, , 2)", "insert into t values ()",
                           "insert into Vaciados (Deposito, Uso, Lote) values (5, 3, 'L-07', ) "}) {
    EXPECT_EQ(ErrorNumberOf(text), 3134) << text;
  }
}

TEST(Insert, RefusesAFaultyStatement) {
  for (const char* text :
       {"insert", "insert t", "insert into", "insert into (a) values (1)",
        "insert into  (Codigo, Nombre) values (1, 'a') ", "insert into t", "insert into t (a)",
        "insert into t (a,) values (1)", "insert into t () values (1)",
        "insert into t (a values (1)", "insert into t (1) values (1)", "insert into t values 1",
        "insert into t values", "insert into t values (1", "insert into t set a = 1",
        "insert into where (a) values (1)"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3134) << text;
  }
}

TEST(Insert, RefusesAFaultyValue) {
  EXPECT_EQ(ErrorNumberOf("insert into t values (1 2)"), 3075);
  EXPECT_EQ(ErrorNumberOf("insert into t values (1 +)"), 3075);
}

TEST(Insert, ReadsADecimalCommaAsTwoValues) {
  const Insert insert = std::get<Insert>(Parse("insert into t (a, b) values (1, 0,5)"));
  EXPECT_EQ(insert.values.size(), 3u);
}

TEST(Update, ReadsAssignments) {
  EXPECT_EQ(Printed("update t set a = a + 1, t.b=Null, t![c d] = 'x' where e = 2"),
            "update t set a = (a + 1), t.b = Null, t.c d = 'x' where (e = 2)");
}

TEST(Update, ReadsSourcesOfEveryKind) {
  EXPECT_EQ(Printed("update a as x, b set x.c = b.c"), "update a as x, b set x.c = b.c");
  EXPECT_EQ(Printed("update a left join b on a.k = b.k set a.c = b.c"),
            "update (a left join b on (a.k = b.k)) set a.c = b.c");
  EXPECT_EQ(Printed("update (select * from a, b where a.k = b.k)set a.c = b.c"),
            "update {select * from a, b where (a.k = b.k)} set a.c = b.c");
}

TEST(Update, ReadsAComparisonBehindTheFirstEqualSign) {
  EXPECT_EQ(Printed("update t set a = b = c"), "update t set a = (b = c)");
}

TEST(Update, RefusesAFaultyStatement) {
  for (const char* text :
       {"update", "update set a = 1", "update  set Nombre= 'a' where Codigo=1 ", "update t",
        "update t a = 1", "update t where a = 1", "update t set", "update t set a",
        "update t set a =", "update t set a = 1,", "update t set = 1", "update t set a = , b = 2",
        "update t set 5 = a", "update t, set a = 1", "update t set a = where b = 1",
        "update t set a + 1 = 2", "update t u v set a = 1", "update (t set a = 1"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3144) << text;
  }
}

TEST(Update, RefusesAFaultyValue) {
  EXPECT_EQ(ErrorNumberOf("update t set a = 1 b = 2"), 3075);
  EXPECT_EQ(ErrorNumberOf("update t set a = (1"), 3075);
  EXPECT_EQ(ErrorNumberOf("update t set a = 'x"), 3075);
}

TEST(Update, RefusesAFaultyWhere) { EXPECT_EQ(ErrorNumberOf("update t set a = 1 where"), 3145); }

TEST(Delete, ReadsEveryForm) {
  EXPECT_EQ(Printed("delete from t"), "delete from t");
  EXPECT_EQ(Printed("DELETE * FROM t WHERE a = 1"), "delete from t where (a = 1)");
  EXPECT_EQ(Printed("delete t.* from t inner join u on t.a = u.a"),
            "delete t.* from (t inner join u on (t.a = u.a))");
}

TEST(Delete, RefusesAFaultyStatement) {
  for (const char* text : {"delete", "delete t", "delete t from t", "delete t. from t",
                           "delete where a = 1", "delete *", "delete a, b from t"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3130) << text;
  }
}

TEST(Delete, RefusesAFaultyFromClause) {
  EXPECT_EQ(ErrorNumberOf("delete from"), 3131);
  EXPECT_EQ(ErrorNumberOf("delete from  where Codigo=1"), 3131);
}

TEST(Statement, StartsWithAWordOfItsOwn) {
  for (const char* text : {"", " ", ";", "t", "hello world", "exec t", "(t)", "()", "(", "5", "'a'",
                           "[select] a", "begin transaction", "transform a", "selecta from t"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3129) << text;
  }
}

TEST(Statement, MayEndWithASemicolon) {
  EXPECT_EQ(Printed("select a from t;"), "select a from t");
  EXPECT_EQ(Printed("select a from t ;\r\n"), "select a from t");
}

TEST(Statement, HasNothingBehindTheSemicolon) {
  EXPECT_EQ(ErrorNumberOf("select a from t; select b from t"), 3142);
  EXPECT_EQ(ErrorNumberOf("delete from t;;"), 3142);
}

TEST(Statement, HasNoJunkAtItsEnd) {
  for (const char* text :
       {"select a from t where b = 1 where c = 2", "delete from t where a = 1 order by b",
        "insert into t values (1), (2)", "insert into t values (1) where a = 1", "drop table t u",
        "select a from t)", "update t set a = 1 order by a",
        "select a from t order by a where b = 1"}) {
    EXPECT_EQ(ErrorNumberOf(text), 3137) << text;
  }
}

TEST(Statement, IsReadWithoutRegardToCase) {
  EXPECT_EQ(Printed("SeLeCt A fRoM t WHERE a LIKE 'X' GROUP BY a"),
            "select A from t where (a like 'X') group by a");
}

TEST(SyntaxError, NamesItsSourceAndTheTextNearTheFault) {
  const AutomationError error = ErrorOf("select a from t where a = 1 borrado = 2");
  EXPECT_EQ(error.source(), "DAO.Database");
  EXPECT_THAT(error.description(), testing::HasSubstr("borrado = 2"));
}

TEST(SyntaxError, ShowsTheEndOfTheTextWhenThatIsWhereTheFaultIs) {
  EXPECT_THAT(ErrorOf("select Codigo, Nombre from").description(),
              testing::HasSubstr("select Codigo, Nombre from"));
}

TEST(SyntaxError, CutsALongText) {
  const std::string text = "select a from t where a = 1 b " + std::string(1000, 'x');
  EXPECT_LT(ErrorOf(text).description().size(), 120u);
}

}  // namespace
}  // namespace ambrelio::embedded::sql
