#include "ambrelio/host/create_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ambrelio/engine/engine.h"
#include "ambrelio/host/sql_literal.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/temp_folder.h"

namespace ambrelio::host {
namespace {

using ::testing::HasSubstr;

class CreateDatabaseTest : public ::testing::Test {
 protected:
  std::shared_ptr<dao::Database> Open(const std::string& password = "") {
    return engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=" + password);
  }
  std::string WriteFile(const std::string& text) {
    const std::string file = folder.File("socios.csv");
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }
  std::string ComplaintOfLoading(const std::string& text) {
    CreateMillDatabase(*engine, path, "");
    const auto database = Open();
    try {
      LoadMaster(*engine, *database, "SOCIO", WriteFile(text));
    } catch (const AutomationError& error) {
      EXPECT_EQ(ToLong(database->OpenRecordset("select count(*) from SOCIO")->Value(0)), 0);
      return error.description();
    }
    return "none";
  }

  test::TempFolder folder;
  std::string path = folder.File("oliva.mdb");
  std::shared_ptr<dao::DBEngine> engine = engine::Create();
};

TEST_F(CreateDatabaseTest, HoldsEveryTableOfTheLibraryAndItsHost) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  for (const char* table : {"PESADA", "SOCIO", "PRODUCTO", "MUNICIPIO", "Descargas", "Vaciados",
                            "detVaciados", "Niveles", "Capacidad", "Depositos", "Clientes",
                            "Transportistas", "splitDescar", "split"}) {
    const auto definition = database->TableDefs().Item(table);
    int primary_keys = 0;
    for (int i = 0; i < definition->Indexes().Count(); ++i) {
      primary_keys += definition->Indexes().Item(i)->Primary() ? 1 : 0;
    }
    EXPECT_EQ(primary_keys, 1) << table;
  }
}

TEST_F(CreateDatabaseTest, GivesMillLinesTheDefaultZero) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  for (const char* table : {"Descargas", "detVaciados"}) {
    EXPECT_EQ(database->TableDefs().Item(table)->Fields().Item("Molino")->DefaultValue(), "0");
  }
  database->Execute("insert into Descargas (Tolva, Descarga, Deposito) values (1, 1, 0)");
  EXPECT_EQ(ToLong(database->OpenRecordset("select Molino from Descargas")->Value(0)), 0);
}

TEST_F(CreateDatabaseTest, SetsThePassword) {
  CreateMillDatabase(*engine, path, "aceite");
  EXPECT_THROW(Open("otro"), AutomationError);
  EXPECT_NE(Open("aceite"), nullptr);
}

TEST_F(CreateDatabaseTest, NeverOverwritesAFile) {
  std::ofstream(path) << "the mill's season";
  try {
    CreateMillDatabase(*engine, path, "");
    FAIL();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 3204);
  }
  std::string kept;
  std::getline(std::ifstream(path), kept);
  EXPECT_EQ(kept, "the mill's season");
}

TEST_F(CreateDatabaseTest, LoadsAMasterTable) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  EXPECT_EQ(LoadMaster(*engine, *database, "SOCIO",
                       WriteFile("NOMSOC,CODSOC\n\"L'Olivar, S.L.\",7\nJosé Muñoz,8\n")),
            2);
  const auto rows = database->OpenRecordset("select NOMSOC from SOCIO order by CODSOC");
  EXPECT_EQ(ToText(rows->Value(0)), "L'Olivar, S.L.");
  rows->MoveNext();
  EXPECT_EQ(ToText(rows->Value(0)), "José Muñoz");
}

TEST_F(CreateDatabaseTest, NamesTheLineOfAnUnknownColumn) {
  EXPECT_THAT(ComplaintOfLoading("CODSOC,APODO\n1,a\n"), HasSubstr("socios.csv:1:"));
}

TEST_F(CreateDatabaseTest, NamesTheLineOfAMissingValue) {
  EXPECT_THAT(ComplaintOfLoading("CODSOC,NOMSOC\n1,a\n2\n"), HasSubstr("socios.csv:3: 2 values"));
}

TEST_F(CreateDatabaseTest, NamesTheLineOfACodeThatIsNoNumber) {
  EXPECT_THAT(ComplaintOfLoading("CODSOC,NOMSOC\n1,a\nx,b\n"),
              HasSubstr("socios.csv:3: 'x' is not a number"));
}

TEST_F(CreateDatabaseTest, NamesTheLineOfACodeThatIsThereTwice) {
  EXPECT_THAT(ComplaintOfLoading("CODSOC,NOMSOC\n1,a\n1,b\n"), HasSubstr("socios.csv:3:"));
}

TEST_F(CreateDatabaseTest, RefusesAnEmptyMasterFile) {
  EXPECT_THAT(ComplaintOfLoading(""), HasSubstr("socios.csv:1:"));
}

TEST(SqlLiteral, WritesEveryKindOfValue) {
  const ScopedLocale comma(Locale{',', '.', DateOrder::kDayMonthYear});
  EXPECT_EQ(SqlLiteral(Variant::Null()), "Null");
  EXPECT_EQ(SqlLiteral(true), "True");
  EXPECT_EQ(SqlLiteral(int16_t{-4}), "-4");
  EXPECT_EQ(SqlLiteral(0.1), "0.1");
  EXPECT_EQ(SqlLiteral(*OleDate::FromIso("2026-03-05 08:04:09")), "#3/5/2026 8:4:9#");
  EXPECT_EQ(SqlLiteral("L'Oli"), "'L''Oli'");
}

TEST(SqlLiteral, RefusesWhatHasNoLiteral) {
  EXPECT_THROW(SqlLiteral(Variant::Nothing()), AutomationError);
  EXPECT_THROW(SqlLiteral(Variant::Array{}), AutomationError);
}

}  // namespace
}  // namespace ambrelio::host
