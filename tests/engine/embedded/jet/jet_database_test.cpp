// A Jet file under the engine: everything that is written is in the file when its transaction ends,
// and the file is sound.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/value/convert.h"
#include "engine/jetfile/samples.h"
#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using jetfile::JetFile;
using test::ErrorOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class JetDatabase : public test::EngineTest {
 protected:
  JetDatabase() { engine_ = OtherEngine(NewFiles::kByName); }

  // What is wrong with the file as it is on the disk.
  std::vector<std::string> Findings(const std::string& password = "") const {
    std::vector<std::string> texts;
    for (const auto& finding : jetfile::Check(jetfile::ReadFromDisk(Path(), password))) {
      texts.push_back(jetfile::PlaceText(finding.place) + ": " + finding.text);
    }
    return texts;
  }

  static std::vector<std::string> RowsOf(dao::Database& database, const std::string& source) {
    std::vector<std::string> rows;
    const auto recordset = database.OpenRecordset(source);
    for (; !recordset->AtEnd(); recordset->MoveNext()) {
      std::string row;
      for (int i = 0; i < recordset->Fields().Count(); ++i) {
        const Variant value = recordset->Value(i);
        row += (i > 0 ? "|" : "") + (value.is_null() ? "Null" : ToText(value));
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }
  // The same of the file on the disk, by an engine that opens it now.
  std::vector<std::string> StoredRows(const std::string& source) {
    return RowsOf(*OtherEngine()->DefaultWorkspace().OpenDatabase(Path(), false, true, ""), source);
  }

  void Run(dao::Database& database, const std::string& sql) {
    database.Execute(sql, dao::kFailOnError);
  }
};

TEST_F(JetDatabase, IsMadeWhereTheNameAsksForIt) {
  Create()->Close();
  EXPECT_EQ(jetfile::ReadFromDisk(Path()).page_count(), 16U);
  EXPECT_THAT(Findings(), IsEmpty());
  Create("own.sqlite")->Close();
  EXPECT_EQ(ErrorOf([&] { jetfile::ReadFromDisk(Path("own.sqlite")); }), 3343);
}

TEST_F(JetDatabase, HasThePasswordItWasGiven) {
  Create("oliva.mdb", ";pwd=aceite")->Close();
  EXPECT_EQ(ErrorOf([&] { Open("oliva.mdb", ";pwd=Aceite"); }), 3031);
  EXPECT_EQ(ErrorOf([&] { Open("oliva.mdb", ";pwd=aceite"); }), 0);
  EXPECT_THAT(Findings("aceite"), IsEmpty());
}

TEST_F(JetDatabase, KeepsRowsOfEveryType) {
  const auto database = Create();
  Run(*database,
      "create table Todo (Id long primary key, B bit, Y byte, I short, M money, S single, "
      "D double, F datetime, T text(20), N memo)");
  Run(*database,
      "insert into Todo values (1, True, 200, -5, 12.3456, 1.5, 0.1, #2025-11-03 08:30:00#, "
      "'Almazara ñandú', 'largo')");
  Run(*database, "insert into Todo (Id) values (2)");
  const std::vector<std::string> rows = RowsOf(*database, "Todo");
  EXPECT_THAT(StoredRows("Todo"), ::testing::ElementsAreArray(rows));
  EXPECT_EQ(rows[1], "2|False|Null|Null|Null|Null|Null|Null|Null|Null");
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, ChangesAndDeletesRows) {
  const auto database = Create();
  AddTanks(*database);
  for (int i = 1; i <= 300; ++i) AddTank(*database, i);
  Run(*database, "update Tanques set Litros = Numero * 10 where Numero > 150");
  Run(*database, "delete from Tanques where Numero < 100 or Numero = 200");
  EXPECT_THAT(StoredRows("select count(*), sum(Litros), min(Numero) from Tanques"),
              ElementsAre("200|336250|100"));
  EXPECT_THAT(Findings(), IsEmpty());
  Run(*database, "delete from Tanques");
  EXPECT_THAT(StoredRows("Tanques"), IsEmpty());
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, DeletesAllRowsOfATableThatWasNotReadBefore) {
  {
    const auto database = Create();
    AddTanks(*database);
    for (int i = 1; i <= 10; ++i) AddTank(*database, i);
  }
  Run(*Open(), "delete from Tanques");
  EXPECT_THAT(StoredRows("Tanques"), IsEmpty());
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, WritesNothingThatIsRolledBack) {
  const auto database = Create();
  AddTanks(*database);
  AddTank(*database, 1);
  const std::vector<uint16_t> commits = jetfile::ReadFromDisk(Path()).header().commits;
  workspace().BeginTrans();
  AddTank(*database, 2);
  workspace().BeginTrans();
  AddTank(*database, 3);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database), 2);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database), 1);
  EXPECT_EQ(jetfile::ReadFromDisk(Path()).header().commits, commits);
}

TEST_F(JetDatabase, CommitsOnlyTheOutermostLevel) {
  const auto database = Create();
  AddTanks(*database);
  workspace().BeginTrans();
  workspace().BeginTrans();
  AddTank(*database, 1);
  workspace().CommitTrans();
  EXPECT_THAT(StoredRows("Tanques"), IsEmpty());
  workspace().CommitTrans();
  EXPECT_THAT(StoredRows("Tanques"), ElementsAre("1|0"));
}

TEST_F(JetDatabase, HasTheRowsThatWereFirstReadInALevelThatIsRolledBack) {
  {
    const auto database = Create();
    AddTanks(*database);
    AddTank(*database, 1);
  }
  const auto database = Open();
  workspace().BeginTrans();
  EXPECT_EQ(CountRows(*database), 1);
  AddTank(*database, 2);
  workspace().BeginTrans();
  AddTank(*database, 3);
  workspace().Rollback();
  EXPECT_EQ(CountRows(*database), 2);
  const auto rows = database->OpenRecordset("select * from Tanques order by Numero");
  workspace().Rollback();
  EXPECT_EQ(ToLong(rows->Value("Numero")), 1);
  EXPECT_EQ(CountRows(*database), 1);
  AddTank(*database, 2);
  EXPECT_THAT(StoredRows("Tanques"), ElementsAre("1|0", "2|0"));
}

TEST_F(JetDatabase, LosesNoRowsOfALevelThatWasCommittedWithinAnother) {
  {
    const auto database = Create();
    AddTanks(*database);
    AddTank(*database, 1);
  }
  const auto database = Open();
  workspace().BeginTrans();
  workspace().BeginTrans();
  AddTank(*database, 2);
  workspace().CommitTrans();
  workspace().BeginTrans();
  AddTank(*database, 3);
  workspace().Rollback();
  workspace().CommitTrans();
  EXPECT_THAT(StoredRows("Tanques"), ElementsAre("1|0", "2|0"));
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, RefusesADuplicateKeyAndWritesNothing) {
  const auto database = Create();
  AddTanks(*database);
  AddTank(*database, 1);
  EXPECT_EQ(ErrorOf([&] { AddTank(*database, 1); }), 3022);
  EXPECT_THAT(StoredRows("Tanques"), ElementsAre("1|0"));
}

TEST_F(JetDatabase, KnowsItsRowsAfterACommitThatFailed) {
  const auto database = Create();
  AddTanks(*database, "Antes");
  AddTanks(*database);
  Run(*database, "create table Zonas (Nombre text(20) primary key)");
  Run(*database, "insert into Antes values (1, 0)");
  workspace().BeginTrans();
  Run(*database, "delete from Antes");
  Run(*database, "insert into Zonas values ('Москва')");  // which has no place in the index
  EXPECT_EQ(ErrorOf([&] { workspace().CommitTrans(); }), 3251);
  workspace().Rollback();
  AddTank(*database, 1);
  Run(*database, "update Antes set Litros = 5");
  EXPECT_THAT(StoredRows("Antes"), ElementsAre("1|5"));
  EXPECT_THAT(StoredRows("Zonas"), IsEmpty());
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, ShowsWhatOthersCommit) {
  const auto mine = Create();
  AddTanks(*mine);
  AddTank(*mine, 1);
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  EXPECT_EQ(CountRows(*other), 1);
  AddTank(*mine, 2);
  Run(*mine, "update Tanques set Litros = 7 where Numero = 1");
  EXPECT_THAT(RowsOf(*other, "Tanques"), ElementsAre("1|7", "2|0"));
  Run(*other, "delete from Tanques where Numero = 1");
  AddTank(*other, 3);
  EXPECT_THAT(RowsOf(*mine, "select * from Tanques order by Numero"), ElementsAre("2|0", "3|0"));
  EXPECT_THAT(Findings(), IsEmpty());
}

// Rows become longer and move, pages are freed and taken again, and several commits come between
// two looks.
TEST_F(JetDatabase, AgreesWithAnotherWhoWritesInTurn) {
  const auto mine = Create();
  Run(*mine, "create table Notas (Numero long primary key, Nota text(200))");
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const std::string all = "select * from Notas order by Numero";
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    dao::Database& writer = round % 2 == 0 ? *mine : *other;
    for (auto commits = random() % 3 + 1; commits > 0; --commits) {
      const std::string number = std::to_string(random() % 400);
      const std::string note = "'" + std::string(1 + random() % 199, 'x') + "'";
      switch (random() % 4) {
        case 0:
          Run(writer, "update Notas set Nota = " + note + " where Numero >= " + number);
          break;
        case 1:
          Run(writer, "delete from Notas where Numero between " + number + " and 30 + " + number);
          break;
        default:
          writer.Execute("insert into Notas values (" + number + ", " + note + ")");
          writer.Execute("insert into Notas (Numero, Nota) select Numero + 200, Nota from Notas");
      }
    }
    const std::vector<std::string> stored = StoredRows(all);
    ASSERT_EQ(RowsOf(*mine, all), stored) << round;
    ASSERT_EQ(RowsOf(*other, all), stored) << round;
  }
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, ShowsTheTablesThatOthersMake) {
  const auto mine = Create();
  AddTanks(*mine);
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  EXPECT_EQ(CountRows(*other), 0);
  AddTank(*mine, 1);
  Run(*mine, "alter table Tanques add column Nombre text(10)");
  Run(*mine, "create table Otra (Id long)");
  EXPECT_THAT(RowsOf(*other, "Tanques"), ElementsAre("1|0|Null"));
  EXPECT_THAT(RowsOf(*other, "Otra"), IsEmpty());
}

TEST_F(JetDatabase, KnowsATableThatOthersRename) {
  const auto mine = Create();
  AddTanks(*mine);
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const auto table = other->TableDefs().Item("Tanques");
  mine->TableDefs().Item("Tanques")->SetName("Bodega");
  other->TableDefs().Refresh();
  EXPECT_EQ(table->Name(), "Bodega");
}

TEST_F(JetDatabase, TellsATableFromTheNextOneOnItsPage) {
  const auto mine = Create();
  AddTanks(*mine);
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const auto table = other->TableDefs().Item("Tanques");
  mine->TableDefs().Delete("Tanques");
  Run(*mine, "create table Otra (Id long)");
  other->TableDefs().Refresh();
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
  EXPECT_EQ(other->TableDefs().Item(0)->Name(), "Otra");
}

TEST_F(JetDatabase, KeepsARecordsetAsItWasWhileOthersCommit) {
  const auto mine = Create();
  AddTanks(*mine);
  for (int i = 1; i <= 10; ++i) AddTank(*mine, i);
  const auto other_engine = OtherEngine();
  const auto other = other_engine->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  const auto rows =
      other->OpenRecordset("select Numero from Tanques", dao::RecordsetType::kSnapshot);
  EXPECT_EQ(ToLong(rows->Value(0)), 1);
  Run(*mine, "delete from Tanques");
  EXPECT_EQ(CountRows(*other), 0);
  int count = 0;
  for (; !rows->AtEnd(); rows->MoveNext()) ++count;
  EXPECT_EQ(count, 10);
}

TEST_F(JetDatabase, TakesAWholeSchemaInOneTransaction) {
  const auto database = Create();
  workspace().BeginTrans();
  AddTanks(*database);
  AddTank(*database, 1);
  Run(*database, "alter table Tanques add column Nombre text(10)");
  Run(*database, "update Tanques set Nombre = 'Uno'");
  Run(*database, "create unique index nombre on Tanques (Nombre)");
  database->TableDefs().Item("Tanques")->SetName("Depositos");
  Run(*database, "insert into Depositos values (2, 5, 'Dos')");
  database->CreateQueryDef("Llenos", "select Numero from Depositos where Litros > 0");
  workspace().CommitTrans();
  EXPECT_THAT(StoredRows("Depositos"), ElementsAre("1|0|Uno", "2|5|Dos"));
  EXPECT_THAT(StoredRows("Llenos"), ElementsAre("2"));
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, DropsWhatIsDropped) {
  const auto database = Create();
  AddTanks(*database);
  AddTank(*database, 1);
  Run(*database, "create table Otra (Id long, Fuera text(5))");
  Run(*database, "alter table Otra drop column Fuera");
  database->CreateQueryDef("Todo", "select * from Tanques");
  Run(*database, "drop index [key] on Tanques");
  EXPECT_THAT(Findings(), IsEmpty());
  database->QueryDefs().Delete("Todo");
  Run(*database, "drop table Tanques");
  EXPECT_THAT(Findings(), IsEmpty());
  const auto stored = OtherEngine()->DefaultWorkspace().OpenDatabase(Path(), false, true, "");
  EXPECT_EQ(stored->TableDefs().Count(), 1);
  EXPECT_EQ(stored->QueryDefs().Count(), 0);
  EXPECT_EQ(stored->TableDefs().Item(0)->Fields().Count(), 1);
}

TEST_F(JetDatabase, ReplacesATableByAnotherOfItsNameInOneTransaction) {
  const auto database = Create();
  AddTanks(*database);
  AddTank(*database, 1);
  workspace().BeginTrans();
  Run(*database, "update Tanques set Litros = 5");
  Run(*database, "drop table Tanques");
  AddTanks(*database);
  AddTank(*database, 9);
  workspace().CommitTrans();
  EXPECT_THAT(StoredRows("Tanques"), ElementsAre("9|0"));
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, KeepsTheRulesOfFields) {
  {
    const auto database = Create();
    const auto table = database->CreateTableDef("Reglas");
    const auto field = table->CreateField("Nombre", dao::FieldType::kText, 30);
    field->SetRequired(true);
    field->SetAllowZeroLength(true);
    field->SetDefaultValue("\"Uno\"");
    table->Fields().Append(field);
    database->TableDefs().Append(table);
  }
  const auto database = Open();
  const auto field = database->TableDefs().Item("Reglas")->Fields().Item("Nombre");
  EXPECT_TRUE(field->Required());
  EXPECT_TRUE(field->AllowZeroLength());
  EXPECT_EQ(field->DefaultValue(), "\"Uno\"");
  EXPECT_EQ(field->Size(), 30);
  field->SetRequired(false);
  EXPECT_FALSE(Open()->TableDefs().Item("Reglas")->Fields().Item("Nombre")->Required());
  EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(JetDatabase, IsNotWrittenWhenItIsOpenedForReading) {
  {
    const auto database = Create();
    AddTanks(*database);
  }
  const auto database = workspace().OpenDatabase(Path(), false, true, "");
  EXPECT_EQ(ErrorOf([&] { AddTank(*database, 1); }), 3027);
  EXPECT_EQ(ErrorOf([&] { Run(*database, "create table Otra (Id long)"); }), 3027);
  EXPECT_EQ(CountRows(*database), 0);
}

// Table1.otherfk1 belongs to Table2, Table1.otherfk2 to Table3.
class JetRelationships : public JetDatabase {
 protected:
  JetRelationships() {
    std::filesystem::copy_file(jetfile::SamplePath("indexTestV2000"), Path());
    std::filesystem::permissions(Path(), std::filesystem::perms::owner_all);
    database_ = Open();
  }

  DatabasePtr database_;
};

TEST_F(JetRelationships, NeedAPartnerForARowOfTheChild) {
  const auto rows = RowsOf(*database_, "Table1");
  EXPECT_EQ(ErrorOf([&] { Run(*database_, "update Table1 set otherfk1 = 777"); }), 3201);
  EXPECT_EQ(ErrorOf([&] {
              Run(*database_, "insert into Table1 (id, otherfk1, otherfk2) values (99, Null, 777)");
            }),
            3201);
  EXPECT_THAT(StoredRows("Table1"), ::testing::ElementsAreArray(rows));
  Run(*database_, "insert into Table1 (id, otherfk1, otherfk2) values (99, Null, Null)");
  EXPECT_EQ(CountRows(*database_, "Table1"), static_cast<int32_t>(rows.size()) + 1);
}

TEST_F(JetRelationships, KeepAParentThatHasChildren) {
  EXPECT_EQ(ErrorOf([&] { Run(*database_, "delete from Table2"); }), 3200);
  EXPECT_EQ(CountRows(*database_, "Table2"), 3);
  Run(*database_, "delete from Table1");
  Run(*database_, "delete from Table2");
  EXPECT_EQ(CountRows(*database_, "Table2"), 0);
  EXPECT_THAT(Findings(), IsEmpty());
}

// Every sample, through the engine.
class JetSample : public test::EngineTest, public ::testing::WithParamInterface<jetfile::Sample> {
 protected:
  JetSample()
      : file_(jetfile::ReadFromDisk(jetfile::SamplePath(GetParam().name), GetParam().password)) {
    engine_ = OtherEngine(NewFiles::kByName);
    std::filesystem::copy_file(jetfile::SamplePath(GetParam().name), Path());
    std::filesystem::permissions(Path(), std::filesystem::perms::owner_all);
  }
  DatabasePtr OpenSample(bool read_only) {
    return workspace().OpenDatabase(Path(), false, read_only,
                                    std::string(";pwd=") + GetParam().password);
  }

  JetFile file_;
};

// Keys may put the answers in another order.
TEST_P(JetSample, ShowsTheRowsAsTheyAreStored) {
  const auto database = OpenSample(true);
  const jetfile::Catalogue catalogue = ReadCatalogue(file_);
  for (const auto* object : catalogue.UserObjects(jetfile::ObjectType::kTable)) {
    const auto definition = ReadDefinition(file_, object->definition_page());
    const auto rows = database->OpenRecordset("select * from [" + object->name + "]");
    std::vector<std::vector<Variant>> shown;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      shown.emplace_back();
      for (int i = 0; i < rows->Fields().Count(); ++i) shown.back().push_back(rows->Value(i));
    }
    std::vector<std::vector<Variant>> expected;
    for (jetfile::TableReader stored(file_, definition); stored.Next();) {
      expected.emplace_back();
      for (int i = 0; i < rows->Fields().Count(); ++i) {
        expected.back().push_back(
            stored.Value(*definition.FindColumn(rows->Fields().Item(i)->Name())));
      }
    }
    EXPECT_TRUE(std::is_permutation(shown.begin(), shown.end(), expected.begin(), expected.end()))
        << object->name;
  }
}

TEST_P(JetSample, IsSoundAfterItsRowsWereWritten) {
  if (!GetParam().jet4) {
    EXPECT_EQ(ErrorOf([&] { OpenSample(false)->Execute("create table Nueva (Id long)"); }), 3027);
    return;
  }
  const auto database = OpenSample(false);
  for (int i = 0; i < database->TableDefs().Count(); ++i) {
    const std::string table = "[" + database->TableDefs().Item(i)->Name() + "]";
    const int32_t count = CountRows(*database, database->TableDefs().Item(i)->Name());
    // Nothing is changed where an index has another language or unknown characters, or where
    // another table has rows that belong to these.
    const int error =
        ErrorOf([&] { database->Execute("delete from " + table, dao::kFailOnError); });
    EXPECT_THAT(error, ::testing::AnyOf(0, 3200, 3251)) << table;
    EXPECT_EQ(CountRows(*database, database->TableDefs().Item(i)->Name()), error == 0 ? 0 : count);
  }
  database->Execute("create table [Nueva tabla ñ] (Id long primary key, Texto text(30))");
  database->Execute("insert into [Nueva tabla ñ] values (1, 'Peña')");
  for (const auto& finding : jetfile::Check(jetfile::ReadFromDisk(Path(), GetParam().password))) {
    ADD_FAILURE() << jetfile::PlaceText(finding.place) << ": " << finding.text;
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, JetSample, ::testing::ValuesIn(jetfile::Samples()),
                         [](const auto& sample) {
                           std::string name = sample.param.name;
                           std::erase_if(name, [](char c) { return c == '-' || c == '_'; });
                           return name;
                         });

}  // namespace
}  // namespace ambrelio::embedded
