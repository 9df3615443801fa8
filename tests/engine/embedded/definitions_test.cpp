// The definition objects: made in memory, stored by appending, and true to what is stored.
#include <gmock/gmock.h>

#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::FieldType;
using test::ErrorOf;
using ::testing::ElementsAre;

class Definitions : public test::EngineTest {
 protected:
  Definitions() : database_(Create()) {}

  template <class T>
  static std::vector<std::string> Names(const dao::Collection<T>& items) {
    std::vector<std::string> names;
    for (int i = 0; i < items.Count(); ++i) names.push_back(items.Item(i)->Name());
    return names;
  }
  std::shared_ptr<dao::TableDef> Tanks() { return database_->TableDefs().Item("Tanques"); }

  DatabasePtr database_;
};

TEST_F(Definitions, StoreATableWithItsLastAppend) {
  const auto table = database_->CreateTableDef("Depositos");
  table->Fields().Append(table->CreateField("Codigo", FieldType::kLong));
  const auto name = table->CreateField("Nombre", FieldType::kText, 40);
  name->SetAllowZeroLength(true);
  table->Fields().Append(name);
  const auto key = table->CreateIndex("key");
  key->SetPrimary(true);
  key->Fields().Append(key->CreateField("Codigo"));
  table->Indexes().Append(key);
  EXPECT_EQ(database_->TableDefs().Count(), 0);
  database_->TableDefs().Append(table);

  const auto stored = database_->TableDefs().Item("DEPOSITOS");
  EXPECT_THAT(Names(stored->Fields()), ElementsAre("Codigo", "Nombre"));
  EXPECT_EQ(stored->Fields().Item("nombre")->Size(), 40);
  EXPECT_TRUE(stored->Fields().Item(1)->AllowZeroLength());
  EXPECT_TRUE(stored->Indexes().Item("Key")->Primary());
  EXPECT_THAT(Names(stored->Indexes().Item(0)->Fields()), ElementsAre("Codigo"));
}

TEST_F(Definitions, CountFromZeroAndFindByPlaceAndName) {
  AddTanks(*database_);
  const auto& tables = database_->TableDefs();
  EXPECT_EQ(tables.Item(0)->Name(), "Tanques");
  EXPECT_EQ(tables.Item("TANQUES")->Name(), "Tanques");
  EXPECT_EQ(ErrorOf([&] { tables.Item(1); }), 3265);
  EXPECT_EQ(ErrorOf([&] { tables.Item(-1); }), 3265);
  EXPECT_EQ(ErrorOf([&] { tables.Item("Tolvas"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Fields().Item("Color"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Indexes().Item("key2"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { database_->QueryDefs().Item(0); }), 3265);
}

TEST_F(Definitions, ListOnlyTheUsersTables) {
  AddTanks(*database_);
  EXPECT_THAT(Names(database_->TableDefs()), ElementsAre("Tanques"));
}

TEST_F(Definitions, RefuseATableWithoutFields) {
  EXPECT_EQ(ErrorOf([&] { database_->TableDefs().Append(database_->CreateTableDef("T")); }), 3264);
}

TEST_F(Definitions, RefuseATableWhoseNameIsTaken) {
  AddTanks(*database_);
  EXPECT_EQ(ErrorOf([&] { AddTanks(*database_, "tanques"); }), 3010);
  database_->CreateQueryDef("Consulta", "select Numero from Tanques");
  EXPECT_EQ(ErrorOf([&] { AddTanks(*database_, "CONSULTA"); }), 3012);
}

TEST_F(Definitions, RefuseATableAppendedTwice) {
  const auto table = database_->CreateTableDef("T");
  table->Fields().Append(table->CreateField("A", FieldType::kLong));
  database_->TableDefs().Append(table);
  EXPECT_EQ(ErrorOf([&] { database_->TableDefs().Append(table); }), 3266);
}

TEST_F(Definitions, RefuseWhatOneCollectionHasAlready) {
  const auto table = database_->CreateTableDef("T");
  const auto field = table->CreateField("A", FieldType::kLong);
  table->Fields().Append(field);
  EXPECT_EQ(ErrorOf([&] { table->Fields().Append(field); }), 3266);
  EXPECT_EQ(ErrorOf([&] { table->Fields().Append(table->CreateField("a", FieldType::kText)); }),
            3367);
  const auto index = table->CreateIndex("i");
  index->Fields().Append(index->CreateField("A"));
  EXPECT_EQ(ErrorOf([&] { index->Fields().Append(index->CreateField("a")); }), 3367);
  table->Indexes().Append(index);
  EXPECT_EQ(ErrorOf([&] { table->Indexes().Append(index); }), 3266);
  EXPECT_EQ(ErrorOf([&] { table->Indexes().Append(table->CreateIndex("I")); }), 3367);
  database_->TableDefs().Append(table);
  EXPECT_EQ(ErrorOf([&] { table->Fields().Append(field); }), 3266);
  EXPECT_EQ(ErrorOf([&] { table->Indexes().Append(index); }), 3266);
}

TEST_F(Definitions, RefuseASecondFieldOrIndexOfOneNameInAStoredTable) {
  AddTanks(*database_);
  const auto table = Tanks();
  EXPECT_EQ(
      ErrorOf([&] { table->Fields().Append(table->CreateField("LITROS", FieldType::kLong)); }),
      3191);
  const auto index = table->CreateIndex("KEY");
  index->Fields().Append(index->CreateField("Litros"));
  EXPECT_EQ(ErrorOf([&] { table->Indexes().Append(index); }), 3284);
}

TEST_F(Definitions, LetAFieldGoAfterAFailedAppend) {
  AddTanks(*database_);
  const auto field = Tanks()->CreateField("Litros", FieldType::kLong);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Fields().Append(field); }), 3191);
  field->SetName("Kilos");
  Tanks()->Fields().Append(field);
  EXPECT_EQ(Tanks()->Fields().Count(), 3);
}

TEST_F(Definitions, TakeAnItemOutOfAListInMemory) {
  const auto table = database_->CreateTableDef("T");
  const auto field = table->CreateField("A", FieldType::kLong);
  table->Fields().Append(field);
  table->Fields().Append(table->CreateField("B", FieldType::kLong));
  table->Fields().Delete("a");
  EXPECT_THAT(Names(table->Fields()), ElementsAre("B"));
  table->Fields().Append(field);
  EXPECT_THAT(Names(table->Fields()), ElementsAre("B", "A"));
  EXPECT_EQ(ErrorOf([&] { table->Fields().Delete("C"); }), 3265);
}

TEST_F(Definitions, SizeFieldsByTheirTypes) {
  const auto table = database_->CreateTableDef("T");
  const auto size = [&](FieldType type, int32_t wanted = 0) {
    return table->CreateField("F", type, wanted)->Size();
  };
  EXPECT_EQ(size(FieldType::kBoolean), 1);
  EXPECT_EQ(size(FieldType::kByte), 1);
  EXPECT_EQ(size(FieldType::kInteger, 9), 2);
  EXPECT_EQ(size(FieldType::kLong), 4);
  EXPECT_EQ(size(FieldType::kSingle), 4);
  EXPECT_EQ(size(FieldType::kCurrency), 8);
  EXPECT_EQ(size(FieldType::kDouble), 8);
  EXPECT_EQ(size(FieldType::kDate), 8);
  EXPECT_EQ(size(FieldType::kText), 50);
  EXPECT_EQ(size(FieldType::kText, 20), 20);
  EXPECT_EQ(size(FieldType::kMemo, 20), 0);
}

TEST_F(Definitions, StartAFieldWithoutRules) {
  const auto field = database_->CreateTableDef("T")->CreateField("A", FieldType::kText, 10);
  EXPECT_FALSE(field->Required());
  EXPECT_FALSE(field->AllowZeroLength());
  EXPECT_EQ(field->DefaultValue(), "");
  EXPECT_EQ(field->OrdinalPosition(), 0);
  EXPECT_EQ(field->Attributes(), 0);
}

TEST_F(Definitions, GiveStoredFieldsTheAttributesOfTheirTypes) {
  const auto table = database_->CreateTableDef("T");
  const auto counter = table->CreateField("A", FieldType::kLong);
  counter->SetAttributes(dao::kAutoIncrement);
  table->Fields().Append(counter);
  table->Fields().Append(table->CreateField("B", FieldType::kText));
  database_->TableDefs().Append(table);
  EXPECT_EQ(counter->Attributes(), dao::kFixedField | dao::kAutoIncrement | dao::kUpdatable);
  EXPECT_EQ(table->Fields().Item("B")->Attributes(), dao::kVariableField | dao::kUpdatable);
  EXPECT_EQ(ErrorOf([&] { counter->SetAttributes(0); }), 3268);
}

TEST_F(Definitions, NumberFieldsInTheOrderOfTheirAppending) {
  const auto table = database_->CreateTableDef("T");
  for (const char* const name : {"C", "A", "B"}) {
    table->Fields().Append(table->CreateField(name, FieldType::kLong));
  }
  EXPECT_EQ(table->Fields().Item("A")->OrdinalPosition(), 1);
  database_->TableDefs().Append(table);
  EXPECT_THAT(Names(table->Fields()), ElementsAre("C", "A", "B"));
  EXPECT_EQ(table->Fields().Item("B")->OrdinalPosition(), 2);
}

TEST_F(Definitions, PlaceAFieldBeforeTheNextNameAtItsPosition) {
  const auto table = database_->CreateTableDef("Descargas");
  for (const char* const name : {"Tolva", "Descarga", "MomentoDesde", "MomentoHasta"}) {
    table->Fields().Append(table->CreateField(name, FieldType::kLong));
  }
  database_->TableDefs().Append(table);
  const auto mill = table->CreateField("Molino", FieldType::kInteger);
  mill->SetOrdinalPosition(2);
  table->Fields().Append(mill);
  EXPECT_THAT(Names(table->Fields()),
              ElementsAre("Tolva", "Descarga", "Molino", "MomentoDesde", "MomentoHasta"));
}

TEST_F(Definitions, ChangeTheWritablePropertiesOfAStoredField) {
  AddTanks(*database_);
  const auto field = Tanks()->Fields().Item("Litros");
  field->SetName("Kilos");
  field->SetOrdinalPosition(0);
  field->SetRequired(true);
  field->SetAllowZeroLength(true);
  field->SetDefaultValue("=10 + 1");
  const auto stored = Tanks()->Fields().Item(0);
  EXPECT_EQ(stored->Name(), "Kilos");
  EXPECT_EQ(stored->OrdinalPosition(), 0);
  EXPECT_TRUE(stored->Required());
  EXPECT_TRUE(stored->AllowZeroLength());
  EXPECT_EQ(stored->DefaultValue(), "10 + 1");
  EXPECT_EQ(stored->Type(), FieldType::kLong);
}

TEST_F(Definitions, ShowWhatAnotherObjectChanged) {
  AddTanks(*database_);
  const auto field = Tanks()->Fields().Item("Litros");
  const auto table = Tanks();
  Tanks()->SetName("Depositos");
  database_->TableDefs().Item("Depositos")->Fields().Item("Litros")->SetName("Kilos");
  EXPECT_EQ(field->Name(), "Kilos");
  EXPECT_EQ(table->Name(), "Depositos");
  EXPECT_THAT(Names(table->Fields()), ElementsAre("Numero", "Kilos"));
}

TEST_F(Definitions, ShowTheAppendedObjectAsStored) {
  AddTanks(*database_);
  const auto field = Tanks()->CreateField("Color", FieldType::kText, 10);
  Tanks()->Fields().Append(field);
  EXPECT_EQ(field->OrdinalPosition(), 2);
  Tanks()->Fields().Item("Color")->SetRequired(true);
  EXPECT_TRUE(field->Required());
}

TEST_F(Definitions, RefuseObjectsOfWhatWasDeleted) {
  AddTanks(*database_);
  const auto table = Tanks();
  const auto field = table->Fields().Item("Litros");
  const auto index = table->Indexes().Item("key");
  table->Fields().Delete("Litros");
  EXPECT_EQ(ErrorOf([&] { field->Name(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { field->SetName("x"); }), 3420);
  table->Indexes().Delete("key");
  EXPECT_EQ(ErrorOf([&] { index->Name(); }), 3420);
  database_->TableDefs().Delete("Tanques");
  EXPECT_EQ(ErrorOf([&] { table->Fields().Count(); }), 3420);
  AddTanks(*database_);
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
}

TEST_F(Definitions, RaiseOnDeletingWhatIsNotThere) {
  AddTanks(*database_);
  EXPECT_EQ(ErrorOf([&] { database_->TableDefs().Delete("Tolvas"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { database_->QueryDefs().Delete("Consulta"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Fields().Delete("Color"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Indexes().Delete("key2"); }), 3265);
}

TEST_F(Definitions, HaveNoValuesOutsideARecordset) {
  AddTanks(*database_);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Fields().Item(0)->Value(); }), 3219);
}

TEST_F(Definitions, MakeAPrimaryIndexUniqueAndRequired) {
  const auto index = database_->CreateTableDef("T")->CreateIndex("i");
  EXPECT_FALSE(index->Unique());
  index->SetPrimary(true);
  EXPECT_TRUE(index->Unique());
  EXPECT_TRUE(index->Required());
  EXPECT_FALSE(index->IgnoreNulls());
}

TEST_F(Definitions, FixAnIndexOnceItIsStored) {
  AddTanks(*database_);
  const auto index = Tanks()->Indexes().Item("key");
  EXPECT_EQ(ErrorOf([&] { index->SetName("x"); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->SetPrimary(false); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->SetUnique(false); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->SetIgnoreNulls(true); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->SetRequired(false); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->Fields().Append(index->CreateField("Litros")); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->Fields().Delete("Numero"); }), 3268);
  EXPECT_EQ(ErrorOf([&] { index->Fields().Item(0)->SetName("Litros"); }), 3268);
}

TEST_F(Definitions, RebuildAPrimaryKeyOverMoreFields) {
  AddTanks(*database_);
  AddTank(*database_, 1);
  const auto table = Tanks();
  table->Indexes().Delete("key");
  const auto key = table->CreateIndex("key");
  key->Fields().Append(key->CreateField("Numero"));
  const auto litres = key->CreateField("Litros");
  litres->SetAttributes(dao::kDescending);
  key->Fields().Append(litres);
  key->SetPrimary(true);
  table->Indexes().Append(key);
  const auto stored = Tanks()->Indexes().Item("key");
  EXPECT_THAT(Names(stored->Fields()), ElementsAre("Numero", "Litros"));
  EXPECT_EQ(stored->Fields().Item(0)->Attributes(), 0);
  EXPECT_EQ(stored->Fields().Item(1)->Attributes(), dao::kDescending);
  EXPECT_EQ(stored->Fields().Item(1)->Type(), FieldType::kLong);
  EXPECT_EQ(CountRows(*database_), 1);
}

TEST_F(Definitions, CheckTheDataOfANewIndex) {
  AddTanks(*database_);
  AddTank(*database_, 1);
  AddTank(*database_, 2);
  const auto index = Tanks()->CreateIndex("i");
  index->Fields().Append(index->CreateField("Litros"));
  index->SetUnique(true);
  EXPECT_EQ(ErrorOf([&] { Tanks()->Indexes().Append(index); }), 3022);
  EXPECT_EQ(Tanks()->Indexes().Count(), 1);
  index->SetUnique(false);
  Tanks()->Indexes().Append(index);
  EXPECT_EQ(Tanks()->Indexes().Count(), 2);
}

TEST_F(Definitions, StoreANamedQueryAtOnce) {
  const std::string sql = "select Numero from Tanques where Litros > 0";
  const auto query = database_->CreateQueryDef("Llenos", sql);
  EXPECT_EQ(database_->QueryDefs().Item("LLENOS")->Sql(), sql);
  query->SetSql("select Litros from Tanques");
  EXPECT_EQ(database_->QueryDefs().Item(0)->Sql(), "select Litros from Tanques");
}

TEST_F(Definitions, RefuseAQueryWhoseNameIsTaken) {
  AddTanks(*database_);
  database_->CreateQueryDef("Llenos", "select 1 as uno");
  EXPECT_EQ(ErrorOf([&] { database_->CreateQueryDef("LLENOS", "select 1 as uno"); }), 3012);
  EXPECT_EQ(ErrorOf([&] { database_->CreateQueryDef("tanques", "select 1 as uno"); }), 3012);
}

TEST_F(Definitions, ParseTheTextOfAQuery) {
  EXPECT_NE(ErrorOf([&] { database_->CreateQueryDef("q", "select from where"); }), 0);
  EXPECT_EQ(database_->QueryDefs().Count(), 0);
  const auto query = database_->CreateQueryDef("q", "select 1 as uno");
  EXPECT_NE(ErrorOf([&] { query->SetSql("select (1 as uno"); }), 0);
  EXPECT_EQ(query->Sql(), "select 1 as uno");
}

TEST_F(Definitions, KeepAQueryWithoutANameInMemory) {
  const auto query = database_->CreateQueryDef("", "select 1 as uno");
  query->SetSql("select 2 as dos");
  EXPECT_EQ(query->Sql(), "select 2 as dos");
  EXPECT_EQ(database_->QueryDefs().Count(), 0);
  EXPECT_EQ(ErrorOf([&] { database_->QueryDefs().Append(query); }), 3125);
}

TEST_F(Definitions, DeleteAQuery) {
  const auto query = database_->CreateQueryDef("q", "select 1 as uno");
  database_->QueryDefs().Delete("Q");
  EXPECT_EQ(database_->QueryDefs().Count(), 0);
  EXPECT_EQ(ErrorOf([&] { query->Sql(); }), 3420);
}

}  // namespace
}  // namespace ambrelio::embedded
