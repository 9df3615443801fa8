#include "ambrelio/data/queries.h"

#include "support/mill.h"

namespace ambrelio::data {
namespace {

class Queries : public test::MillTest {
 protected:
  void SetUp() override {
    MillTest::SetUp();
    MillTest::Execute("insert into Depositos (Codigo, Nombre) values (1, 'Uno')");
    MillTest::Execute("insert into Depositos (Codigo, Nombre) values (2, Null)");
  }
};

TEST_F(Queries, HasRowsTellsAnEmptyResult) {
  EXPECT_TRUE(HasRows(session, "select Codigo from Depositos where Codigo=2"));
  EXPECT_FALSE(HasRows(session, "select Codigo from Depositos where Codigo=3"));
}

TEST_F(Queries, FirstAndLastValueAreOfTheFirstColumn) {
  const char* const sql = "select Codigo, Nombre from Depositos order by Codigo";
  EXPECT_EQ(FirstValue(session, sql), Variant(int32_t{1}));
  EXPECT_EQ(LastValue(session, sql), Variant(int32_t{2}));
}

TEST_F(Queries, ANullValueIsNotTheAbsenceOfRows) {
  EXPECT_EQ(FirstValue(session, "select Nombre from Depositos where Codigo=2"), Variant::Null());
  EXPECT_EQ(FirstValue(session, "select Nombre from Depositos where Codigo=3"), std::nullopt);
  EXPECT_EQ(LastValue(session, "select Nombre from Depositos where Codigo=3"), std::nullopt);
}

TEST_F(Queries, AggregateOverNoRowsIsNull) {
  EXPECT_EQ(Aggregate(session, "select max(Codigo) from Depositos"), Variant(int32_t{2}));
  EXPECT_EQ(Aggregate(session, "select max(Codigo) from Depositos where Codigo>2"),
            Variant::Null());
}

TEST_F(Queries, ExecuteCountsTheRowsItWrote) {
  EXPECT_EQ(data::Execute(session, "update Depositos set Nombre='Dos'"), 2);
  EXPECT_EQ(data::Execute(session, "delete from Depositos where Codigo=3"), 0);
}

TEST_F(Queries, ExecuteLeavesOutARowThatRepeatsAKeyWithoutAnError) {
  EXPECT_EQ(data::Execute(session, "insert into Depositos (Codigo) values (1)"), 0);
}

}  // namespace
}  // namespace ambrelio::data
