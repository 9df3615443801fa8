// Walking recordsets: ends, moves, what a dynaset sees of later changes, and what is closed.
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::RecordsetType;
using test::ErrorOf;

class RecordsetTest : public test::EngineTest {
 protected:
  RecordsetTest() : database_(Create()) {
    AddTanks(*database_);
    for (int number : {3, 1, 2}) {
      AddTank(*database_, number);
      database_->Execute("update Tanques set Litros = " + std::to_string(number * 100) +
                         " where Numero = " + std::to_string(number));
    }
  }

  std::unique_ptr<dao::Recordset> Select(const std::string& rest = "",
                                         RecordsetType type = RecordsetType::kDefault) {
    return database_->OpenRecordset("select Numero, Litros from Tanques " + rest, type);
  }
  static int32_t Number(dao::Recordset& rows) { return rows.Value("Numero").as<int32_t>(); }
  static int32_t Litres(dao::Recordset& rows) { return rows.Value("Litros").as<int32_t>(); }

  DatabasePtr database_;
};

TEST_F(RecordsetTest, OpensOnTheFirstRow) {
  const auto rows = Select();
  EXPECT_FALSE(rows->AtEnd());
  EXPECT_FALSE(rows->AtStart());
  EXPECT_EQ(Number(*rows), 1);
}

TEST_F(RecordsetTest, WalksForwardToTheEnd) {
  const auto rows = Select();
  rows->MoveNext();
  EXPECT_EQ(Number(*rows), 2);
  rows->MoveNext();
  EXPECT_EQ(Number(*rows), 3);
  rows->MoveNext();
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_FALSE(rows->AtStart());
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3021);
}

TEST_F(RecordsetTest, WalksBackToTheStartAndOverItAgain) {
  const auto rows = Select();
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 3);
  rows->MovePrevious();
  rows->MovePrevious();
  rows->MovePrevious();
  EXPECT_TRUE(rows->AtStart());
  EXPECT_EQ(ErrorOf([&] { rows->MovePrevious(); }), 3021);
  rows->MoveNext();
  EXPECT_EQ(Number(*rows), 1);
}

TEST_F(RecordsetTest, ComesBackFromTheEnd) {
  const auto rows = Select();
  rows->MoveLast();
  rows->MoveNext();
  rows->MovePrevious();
  EXPECT_EQ(Number(*rows), 3);
  rows->MoveFirst();
  EXPECT_EQ(Number(*rows), 1);
}

TEST_F(RecordsetTest, HasBothEndsAndNoMovesWhenEmpty) {
  for (const RecordsetType type : {RecordsetType::kDefault, RecordsetType::kSnapshot}) {
    const auto rows = Select("where Numero > 9", type);
    EXPECT_TRUE(rows->AtEnd());
    EXPECT_TRUE(rows->AtStart());
    EXPECT_EQ(ErrorOf([&] { rows->MoveFirst(); }), 3021);
    EXPECT_EQ(ErrorOf([&] { rows->MoveLast(); }), 3021);
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3021);
    EXPECT_EQ(ErrorOf([&] { rows->MovePrevious(); }), 3021);
    EXPECT_EQ(ErrorOf([&] { rows->Value("Numero"); }), 3021);
  }
}

TEST_F(RecordsetTest, HasNoValuesAtItsEnds) {
  const auto rows = Select();
  rows->MoveLast();
  rows->MoveNext();
  EXPECT_EQ(ErrorOf([&] { rows->Value(0); }), 3021);
  rows->MoveFirst();
  rows->MovePrevious();
  EXPECT_EQ(ErrorOf([&] { rows->Value(0); }), 3021);
}

TEST_F(RecordsetTest, FindsFieldsByPlaceAndByNameInAnyCase) {
  const auto rows = Select();
  EXPECT_EQ(rows->Fields().Count(), 2);
  EXPECT_EQ(rows->Fields().Item(1)->Name(), "Litros");
  EXPECT_EQ(rows->Value("LITROS"), Variant(int32_t{100}));
  EXPECT_EQ(ErrorOf([&] { rows->Value("Kilos"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { rows->Value(2); }), 3265);
  EXPECT_EQ(ErrorOf([&] { rows->Value(-1); }), 3265);
}

TEST_F(RecordsetTest, AFieldFollowsTheCurrentRow) {
  const auto rows = Select();
  const auto field = rows->Fields().Item("Numero");
  rows->MoveLast();
  EXPECT_EQ(field->Value(), Variant(int32_t{3}));
}

TEST_F(RecordsetTest, DescribesItsFields) {
  database_->Execute("create table T (b yesno, t text(12), d datetime, x double)");
  const auto rows = database_->OpenRecordset("select t, b, d, x, 'abc' as y from T");
  const auto size = [&](int field) { return rows->Fields().Item(field)->Size(); };
  EXPECT_EQ(size(0), 12);
  EXPECT_EQ(size(1), 1);
  EXPECT_EQ(size(2), 8);
  EXPECT_EQ(size(3), 8);
  EXPECT_EQ(size(4), 255);
  EXPECT_EQ(rows->Fields().Item(2)->OrdinalPosition(), 2);
  EXPECT_EQ(rows->Fields().Item(0)->Attributes(), dao::kVariableField);
  EXPECT_EQ(rows->Fields().Item(1)->Attributes(), dao::kFixedField);
}

TEST_F(RecordsetTest, FieldsCannotBeChanged) {
  const auto rows = Select();
  const auto field = rows->Fields().Item(0);
  EXPECT_EQ(ErrorOf([&] { field->SetName("x"); }), 3268);
  EXPECT_EQ(ErrorOf([&] { field->SetDefaultValue("1"); }), 3268);
  EXPECT_EQ(ErrorOf([&] { rows->Fields().Append(field); }), 3219);
  EXPECT_EQ(ErrorOf([&] { rows->Fields().Delete("Numero"); }), 3219);
}

TEST_F(RecordsetTest, ADynasetReadsARowWhenItBecomesCurrent) {
  const auto rows = Select();
  database_->Execute("update Tanques set Litros = 0");
  EXPECT_EQ(Litres(*rows), 100);
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 0);
}

TEST_F(RecordsetTest, ADynasetKeepsRowsThatNoLongerSatisfyItsCondition) {
  const auto rows = Select("where Litros > 50");
  database_->Execute("update Tanques set Litros = 0");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 3);
  EXPECT_EQ(Litres(*rows), 0);
}

TEST_F(RecordsetTest, ADynasetHasHolesWhereRowsWereDeleted) {
  const auto rows = Select();
  database_->Execute("delete from Tanques where Numero = 2");
  rows->MoveNext();
  EXPECT_FALSE(rows->AtEnd());
  EXPECT_EQ(ErrorOf([&] { rows->Value("Numero"); }), 3167);
  rows->MoveNext();
  EXPECT_EQ(Number(*rows), 3);
}

TEST_F(RecordsetTest, ADynasetDoesNotGrow) {
  const auto rows = Select();
  AddTank(*database_, 4);
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 3);
}

TEST_F(RecordsetTest, ADynasetKeepsItsOrderWhenTheOrderChanges) {
  const auto rows = Select("order by Litros desc");
  database_->Execute("update Tanques set Litros = 999 where Numero = 1");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 1);
}

TEST_F(RecordsetTest, ADynasetUsesItsLiteralsForEveryRow) {
  const auto rows =
      database_->OpenRecordset("select Litros + 7 as mas, 'x' as t from Tanques where Numero > 1");
  EXPECT_EQ(rows->Value("mas"), Variant(int32_t{207}));
  rows->MoveNext();
  EXPECT_EQ(rows->Value("mas"), Variant(int32_t{307}));
  EXPECT_EQ(rows->Value("t"), Variant("x"));
}

TEST_F(RecordsetTest, ABareTableNameIsADynaset) {
  const auto rows = database_->OpenRecordset("Tanques");
  database_->Execute("update Tanques set Litros = 5");
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 5);
}

TEST_F(RecordsetTest, ASnapshotNeverChanges) {
  const auto rows = Select("", RecordsetType::kSnapshot);
  database_->Execute("update Tanques set Litros = 0");
  database_->Execute("delete from Tanques where Numero = 3");
  rows->MoveLast();
  EXPECT_EQ(Number(*rows), 3);
  EXPECT_EQ(Litres(*rows), 300);
}

TEST_F(RecordsetTest, GroupsJoinsAndUnionsAreComputedAtOpening) {
  const auto sum = database_->OpenRecordset("select sum(Litros) as s from Tanques");
  const auto join = database_->OpenRecordset(
      "select a.Litros as x from Tanques as a, Tanques as b where a.Numero = b.Numero");
  const auto both =
      database_->OpenRecordset("select Litros as x from Tanques union select 1 from Tanques");
  database_->Execute("delete from Tanques");
  EXPECT_EQ(sum->Value("s"), Variant(600.0));
  join->MoveLast();
  EXPECT_EQ(join->Value("x"), Variant(int32_t{300}));
  both->MoveLast();
  EXPECT_EQ(both->Value("x"), Variant(int32_t{300}));
}

TEST_F(RecordsetTest, SeveralOfOneTextWalkIndependently) {
  const auto a = Select("where Numero > 0");
  const auto b = Select("where Numero > 1");
  a->MoveNext();
  a->MoveNext();
  EXPECT_EQ(Number(*a), 3);
  EXPECT_EQ(Number(*b), 2);
  b->MoveNext();
  EXPECT_EQ(Number(*b), 3);
}

TEST_F(RecordsetTest, AnOverflowIsRaisedForItsColumnAlone) {
  database_->Execute("update Tanques set Litros = 2147483647 where Numero = 1");
  const auto rows = database_->OpenRecordset("select Litros + 1 as x, Numero from Tanques");
  EXPECT_EQ(ErrorOf([&] { rows->Value("x"); }), 6);
  EXPECT_EQ(Number(*rows), 1);
}

TEST_F(RecordsetTest, IsClosedOnce) {
  const auto rows = Select();
  const auto field = rows->Fields().Item(0);
  rows->Close();
  EXPECT_EQ(ErrorOf([&] { rows->Close(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { (void)rows->AtEnd(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { rows->Fields(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
}

TEST_F(RecordsetTest, EndsWithItsDatabase) {
  const auto dynaset = Select();
  const auto snapshot = Select("", RecordsetType::kSnapshot);
  database_->Close();
  EXPECT_EQ(ErrorOf([&] { dynaset->MoveNext(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { dynaset->Value("Numero"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { snapshot->Value(0); }), 3420);
}

TEST_F(RecordsetTest, OutlivesTheEngineWithoutHarm) {
  auto rows = Select();
  database_.reset();
  engine_.reset();
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3420);
  rows.reset();
}

TEST_F(RecordsetTest, AFieldOutlivesItsRecordset) {
  auto rows = Select();
  const auto field = rows->Fields().Item(0);
  rows.reset();
  EXPECT_EQ(ErrorOf([&] { field->Value(); }), 3420);
  EXPECT_EQ(field->Name(), "Numero");
}

TEST_F(RecordsetTest, AnOpenOneHindersNoTransaction) {
  const auto rows = Select();
  rows->MoveNext();
  workspace().BeginTrans();
  database_->Execute("update Tanques set Litros = 1");
  workspace().Rollback();
  rows->MoveNext();
  EXPECT_EQ(Litres(*rows), 300);
}

TEST_F(RecordsetTest, OpensOnlyWhatGivesRows) {
  EXPECT_EQ(ErrorOf([&] { database_->OpenRecordset("delete from Tanques"); }), 3219);
  EXPECT_EQ(ErrorOf([&] { database_->OpenRecordset("create table T (a long)"); }), 3219);
  EXPECT_EQ(CountRows(*database_), 3);
}

}  // namespace
}  // namespace ambrelio::embedded
