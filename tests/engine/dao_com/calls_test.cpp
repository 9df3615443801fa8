// The exact calls that DAO gets.
#include <string>

#include "engine/dao_com/dao_com_test.h"

namespace ambrelio::dao_com {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DaoCalls : public DaoComTest {};

TEST_F(DaoCalls, GetTheFirstWorkspaceOnce) {
  EXPECT_THAT(Asked([] {
                const auto engine = CreateEngine();
                engine->DefaultWorkspace();
                engine->DefaultWorkspace();
              }),
              ElementsAre("DAO.DbEngine.Workspaces", "DAO.Workspaces.Item(0)"));
}

TEST_F(DaoCalls, AskForTheVersion) {
  EXPECT_THAT(Asked([&] { EXPECT_EQ(engine_->Version(), "3.6"); }),
              ElementsAre("DAO.DbEngine.Version"));
}

TEST_F(DaoCalls, CreateFilesOfJet4) {
  EXPECT_THAT(Asked([&] { Create(";pwd=oliva"); }),
              ElementsAre("DAO.Workspace.CreateDatabase(\"" + Path() +
                          "\", \";LANGID=0x0409;CP=1252;COUNTRY=0;pwd=oliva\", 64)"));
}

TEST_F(DaoCalls, OpenWithAllFourArguments) {
  Create()->Close();
  const std::string open = "DAO.Workspace.OpenDatabase(\"" + Path() + "\", ";
  EXPECT_THAT(Asked([&] { Open(); }), ElementsAre(open + "False, False, \";pwd=\")"));
  EXPECT_THAT(Asked([&] { workspace().OpenDatabase(Path(), true, false, ""); }),
              ElementsAre(open + "True, False, \"\")"));
  EXPECT_THAT(Asked([&] { workspace().OpenDatabase(Path(), false, true, ";pwd=x"); }),
              ElementsAre(open + "False, True, \";pwd=x\")"));
}

TEST_F(DaoCalls, MoveTheLevelsOfTheWorkspace) {
  const auto database = Create();
  EXPECT_THAT(Asked([&] {
                workspace().BeginTrans();
                workspace().BeginTrans();
                workspace().Rollback();
                workspace().CommitTrans();
                workspace().BeginStretch();
                workspace().EndStretch();
              }),
              ElementsAre("DAO.Workspace.BeginTrans", "DAO.Workspace.BeginTrans",
                          "DAO.Workspace.Rollback", "DAO.Workspace.CommitTrans"));
}

TEST_F(DaoCalls, AskADatabaseForItsName) {
  const auto database = Create();
  EXPECT_THAT(Asked([&] { EXPECT_EQ(database->Name(), Path()); }),
              ElementsAre("DAO.Database.Name"));
}

TEST_F(DaoCalls, ExecuteWithoutOptionsUnlessGiven) {
  const auto database = Create();
  AddNames(*database);
  EXPECT_THAT(Asked([&] {
                database->Execute("delete from Nombres where Numero>1");
                EXPECT_EQ(database->RecordsAffected(), 2);
                database->Execute("delete from Nombres", dao::kFailOnError);
              }),
              ElementsAre("DAO.Database.Execute(\"delete from Nombres where Numero>1\")",
                          "DAO.Database.RecordsAffected",
                          "DAO.Database.Execute(\"delete from Nombres\", 128)"));
}

TEST_F(DaoCalls, OpenRecordsetsWithoutATypeUnlessGiven) {
  const auto database = Create();
  AddNames(*database);
  EXPECT_THAT(Asked([&] {
                database->OpenRecordset("Nombres")->Close();
                database->OpenRecordset("Nombres", dao::RecordsetType::kDynaset);
                database->OpenRecordset("Nombres", dao::RecordsetType::kSnapshot);
              }),
              ElementsAre("DAO.Database.OpenRecordset(\"Nombres\")", "DAO.Recordset.Close",
                          "DAO.Database.OpenRecordset(\"Nombres\", 2)",
                          "DAO.Database.OpenRecordset(\"Nombres\", 4)"));
}

TEST_F(DaoCalls, MoveARecordset) {
  const auto database = Create();
  AddNames(*database);
  const auto rows = database->OpenRecordset("select * from Nombres order by Numero");
  EXPECT_THAT(Asked([&] {
                EXPECT_TRUE(!rows->AtStart() && !rows->AtEnd());
                rows->MoveLast();
                rows->MovePrevious();
                rows->MoveFirst();
                rows->MovePrevious();
                EXPECT_TRUE(rows->AtStart());
              }),
              ElementsAre("DAO.Recordset.BOF", "DAO.Recordset.EOF", "DAO.Recordset.MoveLast",
                          "DAO.Recordset.MovePrevious", "DAO.Recordset.MoveFirst",
                          "DAO.Recordset.MovePrevious", "DAO.Recordset.BOF"));
}

TEST_F(DaoCalls, ReadRowsWithOneCallForEachValueAndMove) {
  const auto database = Create();
  AddNames(*database);
  const auto rows = database->OpenRecordset("select * from Nombres order by Numero");
  std::string read;
  EXPECT_THAT(Asked([&] {
                for (; !rows->AtEnd(); rows->MoveNext()) {
                  read += rows->Value("Nombre").as<std::string>() + " ";
                }
                EXPECT_EQ(rows->Fields().Count(), 2);
              }),
              ElementsAre("DAO.Recordset.EOF", "DAO.Recordset.Fields",
                          "DAO.Fields.Item(\"Nombre\")", "DAO.Field.Value",
                          "DAO.Recordset.MoveNext", "DAO.Recordset.EOF", "DAO.Field.Value",
                          "DAO.Recordset.MoveNext", "DAO.Recordset.EOF", "DAO.Field.Value",
                          "DAO.Recordset.MoveNext", "DAO.Recordset.EOF", "DAO.Fields.Count"));
  EXPECT_EQ(read, "uno dos tres ");
}

// The names of one row: EOF, Fields, Value, MoveNext.
TEST_F(DaoCalls, LookNamesUpOnceForARecordset) {
  const auto database = Create();
  AddNames(*database);
  for (int number = 4; number <= 100; ++number) {
    database->Execute("insert into Nombres values (" + std::to_string(number) + ", 'x')");
  }
  const auto rows = database->OpenRecordset("Nombres");
  stand_in_.Record();
  int count = 0;
  for (; !rows->AtEnd(); rows->MoveNext()) count += rows->Value(0).is_null() ? 0 : 1;
  EXPECT_EQ(count, 100);
  EXPECT_EQ(stand_in_.Lookups(), 4);
}

TEST_F(DaoCalls, MakeATable) {
  const auto database = Create();
  EXPECT_THAT(
      Asked([&] {
        const auto table = database->CreateTableDef("Clientes");
        const auto code = table->CreateField("Codigo", dao::FieldType::kLong);
        table->Fields().Append(code);
        const auto name = table->CreateField("Nombre", dao::FieldType::kText, 50);
        name->SetAllowZeroLength(true);
        name->SetRequired(true);
        name->SetDefaultValue("'nadie'");
        name->SetOrdinalPosition(5);
        table->Fields().Append(name);
        const auto key = table->CreateIndex("key");
        key->Fields().Append(key->CreateField("Codigo"));
        key->SetUnique(true);
        key->SetPrimary(true);
        key->SetIgnoreNulls(false);
        key->SetRequired(true);
        table->Indexes().Append(key);
        database->TableDefs().Append(table);
      }),
      ElementsAre(
          "DAO.Database.CreateTableDef(\"Clientes\")", "DAO.TableDef.CreateField(\"Codigo\", 4)",
          "DAO.TableDef.Fields", "DAO.Fields.Append(<DAO.Field>)",
          "DAO.TableDef.CreateField(\"Nombre\", 10, 50)", "DAO.Field.AllowZeroLength = True",
          "DAO.Field.Required = True", "DAO.Field.DefaultValue = \"'nadie'\"",
          "DAO.Field.OrdinalPosition = 5%", "DAO.TableDef.Fields", "DAO.Fields.Append(<DAO.Field>)",
          "DAO.TableDef.CreateIndex(\"key\")", "DAO.Index.Fields",
          "DAO.Index.CreateField(\"Codigo\")", "DAO.Fields.Append(<DAO.Field>)",
          "DAO.Index.Unique = True", "DAO.Index.Primary = True", "DAO.Index.IgnoreNulls = False",
          "DAO.Index.Required = True", "DAO.TableDef.Indexes", "DAO.Indexes.Append(<DAO.Index>)",
          "DAO.Database.TableDefs", "DAO.TableDefs.Append(<DAO.TableDef>)"));
  const auto table = database->TableDefs().Item("clientes");
  const auto name = table->Fields().Item(1);
  EXPECT_EQ(name->Name(), "Nombre");
  EXPECT_EQ(name->Type(), dao::FieldType::kText);
  EXPECT_EQ(name->Size(), 50);
  EXPECT_EQ(name->OrdinalPosition(), 5);
  EXPECT_TRUE(name->AllowZeroLength() && name->Required());
  EXPECT_EQ(name->DefaultValue(), "'nadie'");
  EXPECT_EQ(table->Fields().Item("Codigo")->Attributes() & dao::kFixedField, dao::kFixedField);
  const auto key = table->Indexes().Item("KEY");
  EXPECT_EQ(key->Name(), "key");
  EXPECT_TRUE(key->Primary() && key->Unique() && key->Required() && !key->IgnoreNulls());
  EXPECT_EQ(key->Fields().Item(0)->Name(), "Codigo");
}

TEST_F(DaoCalls, WalkTablesByCountAndItem) {
  const auto database = Create();
  AddNames(*database);
  EXPECT_THAT(Asked([&] {
                auto& tables = database->TableDefs();
                for (int i = 0; i < tables.Count(); ++i) tables.Item(i)->Name();
                tables.Refresh();
              }),
              ElementsAre("DAO.Database.TableDefs", "DAO.TableDefs.Count", "DAO.TableDefs.Item(0)",
                          "DAO.TableDef.Name", "DAO.TableDefs.Count", "DAO.TableDefs.Refresh"));
}

TEST_F(DaoCalls, RenameAndDelete) {
  const auto database = Create();
  AddNames(*database);
  const auto table = database->TableDefs().Item("Nombres");
  EXPECT_THAT(
      Asked([&] {
        table->Fields().Item("Nombre")->SetName("Mote");
        table->Indexes().Delete("k");
        table->Fields().Delete("Numero");
        table->SetName("Motes");
        database->TableDefs().Delete("Motes");
      }),
      ElementsAre("DAO.TableDef.Fields", "DAO.Fields.Item(\"Nombre\")", "DAO.Field.Name = \"Mote\"",
                  "DAO.TableDef.Indexes", "DAO.Indexes.Delete(\"k\")", "DAO.TableDef.Fields",
                  "DAO.Fields.Delete(\"Numero\")", "DAO.TableDef.Name = \"Motes\"",
                  "DAO.Database.TableDefs", "DAO.TableDefs.Delete(\"Motes\")"));
}

TEST_F(DaoCalls, ChangeIndexesInMemory) {
  const auto database = Create();
  AddNames(*database);
  const auto table = database->TableDefs().Item("Nombres");
  EXPECT_THAT(Asked([&] {
                const auto index = table->CreateIndex("a");
                index->SetName("b");
                const auto field = index->CreateField("Nombre");
                field->SetAttributes(dao::kDescending);
                index->Fields().Append(field);
                index->Fields().Delete("Nombre");
              }),
              ElementsAre("DAO.TableDef.CreateIndex(\"a\")", "DAO.Index.Name = \"b\"",
                          "DAO.Index.CreateField(\"Nombre\")", "DAO.Field.Attributes = 1",
                          "DAO.Index.Fields", "DAO.Fields.Append(<DAO.Field>)", "DAO.Index.Fields",
                          "DAO.Fields.Delete(\"Nombre\")"));
}

TEST_F(DaoCalls, StoreQueries) {
  const auto database = Create();
  EXPECT_THAT(
      Asked([&] {
        const auto query = database->CreateQueryDef("Una", "select 1 as n");
        query->SetSql("select 2 as n");
        EXPECT_EQ(query->Name(), "Una");
        EXPECT_EQ(query->Sql(), "select 2 as n");
        auto& queries = database->QueryDefs();
        EXPECT_EQ(queries.Count(), 1);
        EXPECT_EQ(queries.Item("una")->Name(), "Una");
        queries.Delete("Una");
      }),
      ElementsAre("DAO.Database.CreateQueryDef(\"Una\", \"select 1 as n\")",
                  "DAO.QueryDef.SQL = \"select 2 as n\"", "DAO.QueryDef.Name", "DAO.QueryDef.SQL",
                  "DAO.Database.QueryDefs", "DAO.QueryDefs.Count", "DAO.QueryDefs.Item(\"una\")",
                  "DAO.QueryDef.Name", "DAO.QueryDefs.Delete(\"Una\")"));
}

TEST_F(DaoCalls, CloseADatabaseOnlyWhenTold) {
  auto database = Create();
  EXPECT_THAT(Asked([&] { database->Close(); }), ElementsAre("DAO.Database.Close"));
  database = Open();
  EXPECT_THAT(Asked([&] { database = nullptr; }), IsEmpty());
}

}  // namespace
}  // namespace ambrelio::dao_com
