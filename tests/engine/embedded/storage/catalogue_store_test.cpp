#include "ambrelio/engine/embedded/storage/catalogue_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using dao::FieldType;
using test::ErrorOf;
using ::testing::ElementsAre;

FieldInfo NewField(const std::string& name, FieldType type = FieldType::kLong) {
  FieldInfo field;
  field.name = name;
  field.type = type;
  return field;
}

IndexInfo NewIndex(const std::string& name, const std::vector<std::string>& columns) {
  IndexInfo index;
  index.name = name;
  for (const std::string& column : columns) index.columns.push_back({column, false});
  return index;
}

IndexInfo PrimaryKey(const std::vector<std::string>& columns) {
  IndexInfo index = NewIndex("key", columns);
  index.primary = true;
  return index;
}

IndexInfo UniqueIndex(const std::vector<std::string>& columns) {
  IndexInfo index = NewIndex("unique", columns);
  index.unique = true;
  return index;
}

TableInfo NewTable(const std::string& name, const std::vector<FieldInfo>& fields,
                   const std::vector<IndexInfo>& indexes = {}) {
  TableInfo table;
  table.name = name;
  table.fields = fields;
  table.indexes = indexes;
  return table;
}

class CatalogueStoreTest : public ::testing::Test {
 protected:
  const TableInfo& Table(const std::string& name = "T") {
    return *store_.Current().FindTable(name);
  }
  std::vector<std::string> FieldNames(const std::string& table = "T") {
    std::vector<std::string> names;
    for (const FieldInfo& field : Table(table).fields) names.push_back(field.name);
    return names;
  }
  void Run(const std::string& sql) { storage_->Run(sql); }
  int RunError(const std::string& sql) {
    return ErrorOf([&] { Run(sql); });
  }
  // The first column of all rows as text, Null as "-".
  std::vector<std::string> Rows(const std::string& sql) {
    StorageStatement statement(storage_->raw(), sql);
    std::vector<std::string> rows;
    while (statement.Step()) {
      rows.push_back(statement.IsNull(0) ? "-" : std::string(statement.Text(0)));
    }
    return rows;
  }
  int CreateError(const TableInfo& table) {
    return ErrorOf([&] { store_.CreateTable(table); });
  }
  int CreateError(const std::string& table_name) {
    return CreateError(NewTable(table_name, {NewField("A")}));
  }

  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_ = Storage::Create(folder_.File("a.sqlite"));
  CatalogueStore store_{*storage_};
};

TEST_F(CatalogueStoreTest, StartsEmpty) {
  EXPECT_TRUE(store_.Current().tables.empty());
  EXPECT_TRUE(store_.Current().queries.empty());
}

TEST_F(CatalogueStoreTest, KeepsATableAsItWasDefined) {
  FieldInfo name = NewField("Nombre", FieldType::kText);
  name.size = 40;
  name.required = true;
  name.allow_zero_length = true;
  name.default_value = "'-'";
  FieldInfo counter = NewField("Codigo");
  counter.attributes = dao::kAutoIncrement | dao::kUpdatable;
  IndexInfo index = NewIndex("byName", {"nombre"});
  index.columns[0].descending = true;
  index.ignore_nulls = true;
  store_.CreateTable(NewTable("Depositos", {counter, name}, {PrimaryKey({"Codigo"}), index}));

  CatalogueStore reopened(*storage_);
  const TableInfo& table = *reopened.Current().FindTable("DEPOSITOS");
  EXPECT_EQ(table.name, "Depositos");
  ASSERT_EQ(table.fields.size(), 2U);
  EXPECT_EQ(table.fields[0].attributes, dao::kAutoIncrement);
  const FieldInfo& field = table.fields[1];
  EXPECT_EQ(field.name, "Nombre");
  EXPECT_EQ(field.type, FieldType::kText);
  EXPECT_EQ(field.size, 40);
  EXPECT_EQ(field.position, 1);
  EXPECT_TRUE(field.required);
  EXPECT_TRUE(field.allow_zero_length);
  EXPECT_EQ(field.default_value, "'-'");
  ASSERT_EQ(table.indexes.size(), 2U);
  EXPECT_EQ(table.PrimaryKey(), &table.indexes[0]);
  EXPECT_TRUE(table.indexes[0].unique);
  EXPECT_TRUE(table.indexes[0].required);
  const IndexInfo& by_name = *table.FindIndex("BYNAME");
  EXPECT_FALSE(by_name.primary);
  EXPECT_FALSE(by_name.unique);
  EXPECT_TRUE(by_name.ignore_nulls);
  ASSERT_EQ(by_name.columns.size(), 1U);
  EXPECT_EQ(by_name.columns[0].name, "Nombre");
  EXPECT_TRUE(by_name.columns[0].descending);
}

TEST_F(CatalogueStoreTest, ListsTablesAndQueriesByName) {
  for (const char* const name : {"b", "C", "á", "a"}) {
    store_.CreateTable(NewTable(name, {NewField("A")}));
  }
  for (const char* const name : {"z", "Y"}) store_.CreateQuery({name, "select 1 as uno"});
  std::vector<std::string> names;
  for (const TableInfo& table : store_.Current().tables) names.push_back(table.name);
  EXPECT_THAT(names, ElementsAre("a", "á", "b", "C"));
  EXPECT_EQ(store_.Current().queries[0].name, "Y");
}

TEST_F(CatalogueStoreTest, TakesNamesWithoutRegardToCaseButWithAccents) {
  EXPECT_TRUE(SameName("Descargas", "DESCARGAS"));
  EXPECT_TRUE(SameName("CAMPAÑA", "campaña"));
  EXPECT_TRUE(SameName("Á", "á"));
  EXPECT_FALSE(SameName("a", "á"));
  EXPECT_FALSE(SameName("campana", "campaña"));
}

TEST_F(CatalogueStoreTest, RefusesANameThatIsTaken) {
  store_.CreateTable(NewTable("Tolvas", {NewField("A")}));
  store_.CreateQuery({"Consulta", "select 1 as uno"});
  EXPECT_EQ(CreateError("TOLVAS"), 3010);
  EXPECT_EQ(CreateError("consulta"), 3012);
  EXPECT_EQ(ErrorOf([&] { store_.CreateQuery({"tolvas", "x"}); }), 3012);
  EXPECT_EQ(ErrorOf([&] { store_.CreateQuery({"CONSULTA", "x"}); }), 3012);
}

TEST_F(CatalogueStoreTest, RefusesWhatIsNoName) {
  for (const char* const name : {"", " a", "a.b", "a!b", "a[b", "a]b", "a`b", "a\tb", "a\x7F",
                                 "sqlite_x", "SQLite_y", "\xFF"}) {
    EXPECT_EQ(CreateError(name), 3125) << name;
    EXPECT_EQ(CreateError(NewTable("T", {NewField(name)})), 3125) << name;
    EXPECT_EQ(CreateError(NewTable("T", {NewField("A")}, {NewIndex(name, {"A"})})), 3125) << name;
    EXPECT_EQ(ErrorOf([&] { store_.CreateQuery({name, "select 1 as uno"}); }), 3125) << name;
  }
  EXPECT_TRUE(store_.Current().tables.empty());
}

TEST_F(CatalogueStoreTest, TakesNamesOfSixtyFourCharacters) {
  std::string name;
  for (int i = 0; i < 64; ++i) name += "ñ";
  EXPECT_EQ(CreateError(name), 0);
  EXPECT_EQ(CreateError(name + "x"), 3125);
}

TEST_F(CatalogueStoreTest, TakesNamesWithQuotesBlanksAndWordsOfSql) {
  for (const char* const name : {"a \"b\"", "d'oliva", "select", "Kg/ha (%)"}) {
    store_.CreateTable(NewTable(name, {NewField(name, FieldType::kText)}, {PrimaryKey({name})}));
    EXPECT_EQ(Rows("select count(*) from " + QuoteName(name)), std::vector<std::string>{"0"});
    store_.DropTable(name);
  }
}

TEST_F(CatalogueStoreTest, KeepsItsOwnTablesApartFromTheUsers) {
  EXPECT_EQ(CreateError("settings"), 0);
  EXPECT_EQ(CreateError("jet.settings"), 3125);
}

TEST_F(CatalogueStoreTest, RefusesATableWithoutFields) {
  EXPECT_EQ(CreateError(NewTable("T", {})), 3264);
}

TEST_F(CatalogueStoreTest, RefusesAFieldDefinedTwice) {
  EXPECT_EQ(CreateError(NewTable("T", {NewField("Año"), NewField("AÑO")})), 3191);
  store_.CreateTable(NewTable("T", {NewField("A")}));
  EXPECT_EQ(ErrorOf([&] { store_.AddField("T", NewField("a")); }), 3191);
}

TEST_F(CatalogueStoreTest, HoldsTwoHundredFiftyFiveFields) {
  TableInfo table = NewTable("T", {});
  for (int i = 0; i < 255; ++i) table.fields.push_back(NewField("F" + std::to_string(i)));
  store_.CreateTable(table);
  EXPECT_EQ(ErrorOf([&] { store_.AddField("T", NewField("Another")); }), 3190);
  EXPECT_EQ(Table().fields.size(), 255U);
}

TEST_F(CatalogueStoreTest, SizesTextFields) {
  FieldInfo text = NewField("A", FieldType::kText);
  store_.CreateTable(NewTable("T", {text}));
  EXPECT_EQ(Table().fields[0].size, 50);
  for (const auto& [size, error] : {std::pair{1, 0}, {255, 0}, {256, 3259}, {-1, 3259}}) {
    text.name = "B" + std::to_string(size + 1);
    text.size = size;
    EXPECT_EQ(ErrorOf([&] { store_.AddField("T", text); }), error) << size;
  }
}

TEST_F(CatalogueStoreTest, RefusesTypesThatAreNone) {
  EXPECT_EQ(CreateError(NewTable("T", {NewField("A", FieldType{9})})), 3259);
  FieldInfo counter = NewField("A", FieldType::kDouble);
  counter.attributes = dao::kAutoIncrement;
  EXPECT_EQ(CreateError(NewTable("T", {counter})), 3259);
}

TEST_F(CatalogueStoreTest, RefusesADefaultThatIsNoExpression) {
  FieldInfo field = NewField("A");
  field.default_value = "1 +";
  EXPECT_EQ(CreateError(NewTable("T", {field})), 3075);
}

TEST_F(CatalogueStoreTest, PutsNewFieldsBehindTheOthers) {
  store_.CreateTable(NewTable("T", {NewField("Z"), NewField("A")}));
  store_.AddField("T", NewField("M"));
  EXPECT_THAT(FieldNames(), ElementsAre("Z", "A", "M"));
  EXPECT_EQ(Table().fields[2].position, 2);
}

TEST_F(CatalogueStoreTest, DeliversEqualPositionsByName) {
  store_.CreateTable(NewTable("T", {NewField("Tolva"), NewField("Fraccion"), NewField("Zona")}));
  FieldInfo mill = NewField("Molino");
  mill.position = 1;
  store_.AddField("T", mill);
  EXPECT_THAT(FieldNames(), ElementsAre("Tolva", "Fraccion", "Molino", "Zona"));
  FieldInfo far = NewField("Campo");
  far.position = 30000;
  store_.AddField("T", far);
  EXPECT_EQ(FieldNames().back(), "Campo");
}

TEST_F(CatalogueStoreTest, StoresEachTypeInItsForm) {
  std::vector<FieldInfo> fields;
  for (const FieldType type :
       {FieldType::kBoolean, FieldType::kByte, FieldType::kInteger, FieldType::kLong,
        FieldType::kCurrency, FieldType::kSingle, FieldType::kDouble, FieldType::kDate,
        FieldType::kText, FieldType::kMemo}) {
    fields.push_back(NewField("F" + std::to_string(static_cast<int>(type)), type));
  }
  store_.CreateTable(NewTable("T", fields));
  EXPECT_THAT(Rows("select type from pragma_table_info('T')"),
              ElementsAre("INTEGER", "INTEGER", "INTEGER", "INTEGER", "REAL", "REAL", "REAL",
                          "REAL", "TEXT", "TEXT"));
}

TEST_F(CatalogueStoreTest, ComparesTextWithoutRegardToCase) {
  store_.CreateTable(NewTable("T", {NewField("A", FieldType::kText)}, {UniqueIndex({"A"})}));
  Run("insert into T values('Cañada')");
  EXPECT_EQ(RunError("insert into T values('CAÑADA  ')"), 3022);
  EXPECT_EQ(RunError("insert into T values('Canada')"), 0);
}

TEST_F(CatalogueStoreTest, RefusesNullAndRepetitionInAPrimaryKey) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B")}, {PrimaryKey({"A", "B"})}));
  Run("insert into T values(1, 1), (1, 2)");
  EXPECT_EQ(RunError("insert into T values(1, 2)"), 3022);
  EXPECT_EQ(RunError("insert into T values(2, null)"), 3058);
}

TEST_F(CatalogueStoreTest, AllowsManyNullsInAUniqueIndex) {
  store_.CreateTable(NewTable("T", {NewField("A")}, {UniqueIndex({"A"})}));
  Run("insert into T values(null), (null), (1)");
  EXPECT_EQ(RunError("insert into T values(1)"), 3022);
}

TEST_F(CatalogueStoreTest, RefusesNullInARequiredFieldAndInARequiredIndex) {
  FieldInfo required = NewField("A");
  required.required = true;
  IndexInfo index = NewIndex("i", {"B"});
  index.required = true;
  store_.CreateTable(NewTable("T", {required, NewField("B")}, {index}));
  EXPECT_EQ(RunError("insert into T values(null, 1)"), 3314);
  EXPECT_EQ(RunError("insert into T values(1, null)"), 3058);
}

TEST_F(CatalogueStoreTest, RefusesZeroLengthUnlessAllowed) {
  FieldInfo open = NewField("B", FieldType::kText);
  open.allow_zero_length = true;
  store_.CreateTable(
      NewTable("T", {NewField("A", FieldType::kText), open, NewField("C", FieldType::kMemo)}));
  EXPECT_EQ(RunError("insert into T values('', '', 'c')"), 3315);
  EXPECT_EQ(RunError("insert into T values('a', '', '')"), 3315);
  EXPECT_EQ(RunError("insert into T values(null, '', null)"), 0);
}

TEST_F(CatalogueStoreTest, FillsAnAddedFieldWithNullAndABooleanWithFalse) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  Run("insert into T values(1)");
  store_.AddField("T", NewField("B", FieldType::kText));
  store_.AddField("T", NewField("C", FieldType::kBoolean));
  EXPECT_THAT(Rows("select B from T"), ElementsAre("-"));
  EXPECT_THAT(Rows("select C from T"), ElementsAre("0"));
  EXPECT_EQ(RunError("update T set B = ''"), 3315);
}

TEST_F(CatalogueStoreTest, AddsARequiredFieldToAnEmptyTableOnly) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  FieldInfo required = NewField("B");
  required.required = true;
  store_.AddField("T", required);
  EXPECT_EQ(RunError("insert into T values(1, null)"), 3314);
  Run("insert into T values(1, 1)");
  required.name = "C";
  EXPECT_EQ(ErrorOf([&] { store_.AddField("T", required); }), 3314);
  EXPECT_THAT(FieldNames(), ElementsAre("A", "B"));
}

TEST_F(CatalogueStoreTest, KeepsRowsAndTheirNumbersWhenATableIsRemade) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B", FieldType::kText)}));
  Run("insert into T(rowid, A, B) values(3, 30, 'x'), (8, 80, null)");
  store_.CreateIndex("T", PrimaryKey({"A"}));
  store_.DropIndex("T", "KEY");
  EXPECT_THAT(Rows("select rowid || ' ' || A || ' ' || coalesce(B, '-') from T order by rowid"),
              ElementsAre("3 30 x", "8 80 -"));
}

TEST_F(CatalogueStoreTest, KeepsRowNumbersBesideAFieldNamedRowid) {
  store_.CreateTable(NewTable("T", {NewField("RowId"), NewField("B")}));
  EXPECT_EQ(RowIdName(Table()), "_rowid_");
  Run("insert into T(_rowid_, RowId, B) values(5, 7, 1)");
  store_.CreateIndex("T", PrimaryKey({"B"}));
  EXPECT_THAT(Rows("select _rowid_ || ' ' || RowId from T"), ElementsAre("5 7"));
  store_.AddField("T", NewField("oid"));
  EXPECT_EQ(ErrorOf([&] { store_.AddField("T", NewField("_rowid_")); }), 3125);
}

TEST_F(CatalogueStoreTest, ChecksTheDataOfANewIndex) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B")}));
  Run("insert into T values(1, 1), (1, null)");
  EXPECT_EQ(ErrorOf([&] { store_.CreateIndex("T", UniqueIndex({"A"})); }), 3022);
  EXPECT_EQ(ErrorOf([&] { store_.CreateIndex("T", PrimaryKey({"A"})); }), 3022);
  EXPECT_EQ(ErrorOf([&] { store_.CreateIndex("T", PrimaryKey({"B"})); }), 3058);
  EXPECT_TRUE(Table().indexes.empty());
  EXPECT_EQ(RunError("insert into T values(1, null)"), 0);
}

TEST_F(CatalogueStoreTest, RefusesAnIndexThatIsWrong) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B")}, {PrimaryKey({"A"})}));
  const auto error = [&](const IndexInfo& index) {
    return ErrorOf([&] { store_.CreateIndex("T", index); });
  };
  EXPECT_EQ(error(NewIndex("KEY", {"B"})), 3284);
  IndexInfo second = PrimaryKey({"B"});
  second.name = "key2";
  EXPECT_EQ(error(second), 3283);
  EXPECT_EQ(error(NewIndex("i", {"C"})), 3409);
  EXPECT_EQ(error(NewIndex("i", {})), 3264);
  EXPECT_EQ(error(NewIndex("i", {"A", "a"})), 3367);
  EXPECT_EQ(Table().indexes.size(), 1U);
}

TEST_F(CatalogueStoreTest, AllowsNullAgainWithoutThePrimaryKey) {
  store_.CreateTable(NewTable("T", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.DropIndex("T", "key");
  EXPECT_EQ(RunError("insert into T values(null), (1), (1)"), 0);
}

TEST_F(CatalogueStoreTest, GivesSeveralTablesIndexesOfOneName) {
  store_.CreateTable(NewTable("T", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.CreateTable(NewTable("U", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.DropIndex("U", "key");
  EXPECT_NE(Table("T").PrimaryKey(), nullptr);
}

TEST_F(CatalogueStoreTest, DropsAFieldButNoneOfAnIndexAndNotTheLast) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B")}, {PrimaryKey({"A"})}));
  Run("insert into T values(1, 2)");
  EXPECT_EQ(ErrorOf([&] { store_.DropField("T", "a"); }), 3280);
  store_.DropField("T", "b");
  EXPECT_THAT(FieldNames(), ElementsAre("A"));
  EXPECT_THAT(Rows("select * from T"), ElementsAre("1"));
  store_.DropIndex("T", "key");
  EXPECT_EQ(ErrorOf([&] { store_.DropField("T", "A"); }), 3264);
}

TEST_F(CatalogueStoreTest, RenamesAFieldWithItsDataAndIndexes) {
  store_.CreateTable(NewTable("T", {NewField("A"), NewField("B")}, {PrimaryKey({"A"})}));
  Run("insert into T values(1, 2)");
  FieldInfo changed = Table().fields[0];
  changed.name = "B";
  EXPECT_EQ(ErrorOf([&] { store_.ChangeField("T", "A", changed); }), 3191);
  changed.name = "Año";
  store_.ChangeField("T", "A", changed);
  EXPECT_EQ(Table().indexes[0].columns[0].name, "Año");
  EXPECT_THAT(Rows("select \"Año\" from T"), ElementsAre("1"));
  EXPECT_EQ(RunError("insert into T values(1, 3)"), 3022);
}

TEST_F(CatalogueStoreTest, RespellsAFieldInItsOwnName) {
  store_.CreateTable(NewTable("T", {NewField("tolva")}));
  FieldInfo changed = Table().fields[0];
  changed.name = "TOLVA";
  store_.ChangeField("T", "tolva", changed);
  EXPECT_THAT(FieldNames(), ElementsAre("TOLVA"));
}

TEST_F(CatalogueStoreTest, ChangesTheRulesOfAFieldOverItsData) {
  store_.CreateTable(NewTable("T", {NewField("A", FieldType::kText)}));
  Run("insert into T values(null)");
  FieldInfo changed = Table().fields[0];
  changed.required = true;
  EXPECT_EQ(ErrorOf([&] { store_.ChangeField("T", "A", changed); }), 3314);
  EXPECT_FALSE(Table().fields[0].required);
  changed.required = false;
  changed.allow_zero_length = true;
  store_.ChangeField("T", "A", changed);
  Run("update T set A = ''");
  changed.allow_zero_length = false;
  EXPECT_EQ(ErrorOf([&] { store_.ChangeField("T", "A", changed); }), 3315);
}

TEST_F(CatalogueStoreTest, ChangesNeitherTypeNorSizeOfAStoredField) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  FieldInfo changed = NewField("A", FieldType::kText);
  store_.ChangeField("T", "A", changed);
  EXPECT_EQ(Table().fields[0].type, FieldType::kLong);
}

TEST_F(CatalogueStoreTest, RenamesATableWithItsIndexes) {
  store_.CreateTable(NewTable("T", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.CreateTable(NewTable("U", {NewField("A")}));
  Run("insert into T values(1)");
  EXPECT_EQ(ErrorOf([&] { store_.RenameTable("T", "u"); }), 3010);
  store_.RenameTable("T", "V");
  EXPECT_EQ(store_.Current().FindTable("T"), nullptr);
  EXPECT_THAT(Rows("select A from V"), ElementsAre("1"));
  EXPECT_EQ(CreateError(NewTable("T", {NewField("A")}, {PrimaryKey({"A"})})), 0);
}

TEST_F(CatalogueStoreTest, RespellsATableInItsOwnName) {
  store_.CreateTable(NewTable("tolvas", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.RenameTable("tolvas", "TOLVAS");
  EXPECT_EQ(store_.Current().tables[0].name, "TOLVAS");
}

TEST_F(CatalogueStoreTest, DropsATableWithAllThatBelongsToIt) {
  store_.CreateTable(NewTable("T", {NewField("A")}, {PrimaryKey({"A"})}));
  store_.DropTable("t");
  EXPECT_TRUE(store_.Current().tables.empty());
  for (const char* const rest : {"jet.fields", "jet.indexes", "jet.index_columns"}) {
    EXPECT_THAT(Rows("select count(*) from " + QuoteName(rest)), ElementsAre("0")) << rest;
  }
  EXPECT_EQ(RunError("select * from T"), 3000);
}

TEST_F(CatalogueStoreTest, DoesNotFindWhatIsNotThere) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  EXPECT_EQ(ErrorOf([&] { store_.DropTable("U"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { store_.AddField("U", NewField("A")); }), 3078);
  EXPECT_EQ(ErrorOf([&] { store_.DropField("T", "B"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { store_.ChangeField("T", "B", NewField("B")); }), 3265);
  EXPECT_EQ(ErrorOf([&] { store_.DropIndex("T", "key"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { store_.ChangeQuery("q", "x"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { store_.DropQuery("q"); }), 3265);
}

TEST_F(CatalogueStoreTest, KeepsTheTextOfAQueryAsItIs) {
  const std::string sql = "select  A as [a],\r\n 'd''oliva' from T ;";
  store_.CreateQuery({"q", "select 1 as uno"});
  store_.ChangeQuery("Q", sql);
  EXPECT_EQ(store_.Current().FindQuery("q")->sql, sql);
  store_.DropQuery("Q");
  EXPECT_TRUE(store_.Current().queries.empty());
}

TEST_F(CatalogueStoreTest, TellsByItsVersionThatItHasChanged) {
  store_.Current();
  const int64_t before = store_.version();
  Run("create table other(a)");
  store_.Current();
  EXPECT_EQ(store_.version(), before);
  store_.CreateTable(NewTable("T", {NewField("A")}));
  store_.Current();
  EXPECT_NE(store_.version(), before);
}

TEST_F(CatalogueStoreTest, FollowsARollback) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  storage_->Begin();
  store_.AddField("T", NewField("B"));
  EXPECT_THAT(FieldNames(), ElementsAre("A", "B"));
  storage_->Begin();
  store_.AddField("T", NewField("C"));
  EXPECT_THAT(FieldNames(), ElementsAre("A", "B", "C"));
  storage_->Rollback();
  EXPECT_THAT(FieldNames(), ElementsAre("A", "B"));
  storage_->RollbackAll();
  EXPECT_THAT(FieldNames(), ElementsAre("A"));
}

TEST_F(CatalogueStoreTest, KeepsWhatItKnowsWhenOnlyRowsWereRolledBack) {
  store_.CreateTable(NewTable("T", {NewField("A")}));
  store_.Current();
  const int64_t before = store_.version();
  storage_->Begin();
  Run("insert into T values(1)");
  storage_->Rollback();
  store_.Current();
  EXPECT_EQ(store_.version(), before);
}

TEST_F(CatalogueStoreTest, FollowsTheChangesOfOthers) {
  const auto other = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kShared);
  CatalogueStore others(*other);
  store_.CreateTable(NewTable("T", {NewField("A")}));
  others.AddField("T", NewField("B"));
  EXPECT_THAT(FieldNames(), ElementsAre("A", "B"));
}

TEST_F(CatalogueStoreTest, IsNotMisledWhenAnotherChangesWhatItHadUndone) {
  const auto other = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kShared);
  CatalogueStore others(*other);
  store_.CreateTable(NewTable("T", {NewField("A")}));
  storage_->Begin();
  store_.AddField("T", NewField("Mine"));
  store_.Current();
  storage_->Rollback();
  others.AddField("T", NewField("Theirs"));
  EXPECT_THAT(FieldNames(), ElementsAre("A", "Theirs"));
}

TEST_F(CatalogueStoreTest, SeesTheRowsThatItsChangeIsCheckedAgainst) {
  const auto other = Storage::Open(folder_.File("a.sqlite"), Storage::Access::kShared);
  store_.CreateTable(NewTable("T", {NewField("A")}));
  other->Run("insert into T values(1), (1)");
  EXPECT_EQ(ErrorOf([&] { store_.CreateIndex("T", UniqueIndex({"A"})); }), 3022);
}

TEST_F(CatalogueStoreTest, ForgetsAChangeThatTheDiskRefused) {
  store_.CreateTable(NewTable("T", {NewField("A", FieldType::kMemo)}));
  Run("insert into T values(printf('%1000000c', 'x'))");
  Run("pragma max_page_count = 1");  // no page more than there are
  EXPECT_EQ(ErrorOf([&] { store_.CreateIndex("T", PrimaryKey({"A"})); }), 3026);
  EXPECT_TRUE(Table().indexes.empty());
  EXPECT_EQ(storage_->level(), 0);
  EXPECT_THAT(Rows("select count(*) from T"), ElementsAre("1"));
}

TEST_F(CatalogueStoreTest, KeepsSettings) {
  EXPECT_EQ(store_.Setting("colour"), "");
  store_.SetSetting("colour", "green");
  store_.SetSetting("colour", "black");
  EXPECT_EQ(CatalogueStore(*storage_).Setting("colour"), "black");
}

}  // namespace
}  // namespace ambrelio::embedded
