#include "ambrelio/host/create_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ambrelio/engine/engine.h"
#include "ambrelio/host/sql_literal.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/error_of.h"
#include "support/layout.h"
#include "support/probe_engine.h"
#include "support/temp_folder.h"

namespace ambrelio::host {
namespace {

using test::Columns;
using test::IndexText;
using ::testing::ElementsAre;
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

TEST_F(CreateDatabaseTest, HoldsMovementsInTheirColumns) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  EXPECT_THAT(Columns(*database, "Descargas"),
              ElementsAre("Tolva 3", "Descarga 4", "MomentoDesde 8", "MomentoHasta 8", "Molino 3",
                          "Deposito 3", "Fraccion 7"));
  EXPECT_THAT(Columns(*database, "Vaciados"),
              ElementsAre("Deposito 3", "Vaciado 4", "mmto 8", "Cantidad 7", "Destino 3", "Uso 3",
                          "Lote 10 20", "Cliente 4", "Transportista 4", "DestinoVenta 10 50"));
  EXPECT_THAT(
      Columns(*database, "detVaciados"),
      ElementsAre("Deposito 3", "Vaciado 4", "Tolva 3", "Descarga 4", "Molino 3", "Fraccion 7"));
  EXPECT_THAT(Columns(*database, "Niveles"),
              ElementsAre("Deposito 3", "Item 4", "Momento 8", "Nivel 4", "Litros 7", "Densidad 7",
                          "Alerta 1"));
}

TEST_F(CreateDatabaseTest, HoldsTanksAndReferentsInTheirColumns) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  EXPECT_THAT(Columns(*database, "Capacidad"),
              ElementsAre("Deposito 3", "Nivel 7", "A0 7", "A1 7", "A2 7", "A3 7"));
  EXPECT_THAT(Columns(*database, "Depositos"), ElementsAre("Codigo 4", "Nombre 10 40"));
  for (const char* referents : {"Clientes", "Transportistas"}) {
    EXPECT_THAT(Columns(*database, referents),
                ElementsAre("Codigo 4", "Nombre 10 50", "NIF 10 20", "Info1 10 50", "Info2 10 50",
                            "Info3 10 50"));
  }
}

TEST_F(CreateDatabaseTest, HoldsWeighingsAndTheirSharesInTheirColumns) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  EXPECT_THAT(Columns(*database, "PESADA"),
              ElementsAre("COOPERATIVA 3", "PARTIDA 4", "MEDIANA 2", "CODPRO 3", "CODSOC 4",
                          "CODMUN 3", "PARAJE 10 50", "POLIGONO 3", "PARCELA 4", "H_INICIO 8",
                          "TOLVA 3", "DESCARGA 4", "PARCIALPESO 7"));
  for (const char* shares : {"splitDescar", "split"}) {
    EXPECT_THAT(Columns(*database, shares),
                ElementsAre("cooperativa 3", "partida 4", "mediana 2", "codpro 3", "tolva 3",
                            "descarga 4", "fraccion 7"));
  }
}

TEST_F(CreateDatabaseTest, IdentifiesTheRowsOfEachTableByItsKey) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  const auto key = [&](const char* table) { return IndexText(*database, table, "key"); };
  EXPECT_EQ(key("Descargas"), "primary unique over Tolva Descarga Deposito");
  EXPECT_EQ(key("Vaciados"), "primary unique over Deposito Vaciado");
  EXPECT_EQ(key("detVaciados"), "primary unique over Deposito Vaciado Tolva Descarga");
  EXPECT_EQ(key("Niveles"), "primary unique over Deposito Item");
  EXPECT_EQ(key("Capacidad"), "primary unique over Deposito Nivel");
  EXPECT_EQ(key("Depositos"), "primary unique over Codigo");
  EXPECT_EQ(key("PESADA"), "primary unique over COOPERATIVA PARTIDA MEDIANA CODPRO");
  EXPECT_EQ(key("SOCIO"), "primary unique over CODSOC");
  EXPECT_EQ(key("PRODUCTO"), "primary unique over CODPRO");
  EXPECT_EQ(key("MUNICIPIO"), "primary unique over CODMUN");
  for (const char* shares : {"splitDescar", "split"}) {
    EXPECT_EQ(key(shares), "primary unique over cooperativa partida mediana codpro tolva descarga");
  }
  for (const char* referents : {"Clientes", "Transportistas"}) {
    EXPECT_EQ(IndexText(*database, referents, "key1"), "primary unique over Codigo");
    EXPECT_EQ(IndexText(*database, referents, "key2"), "unique ignore-nulls over Nombre");
  }
}

TEST_F(CreateDatabaseTest, FindsTheWeighingsOfADischargeByAnIndex) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  EXPECT_EQ(IndexText(*database, "PESADA", "discharge"), "over TOLVA DESCARGA");
  EXPECT_EQ(IndexText(*database, "splitDescar", "discharge"), "over tolva descarga");
}

TEST_F(CreateDatabaseTest, RefusesEmptyTextOnlyForTheNameOfAReferent) {
  CreateMillDatabase(*engine, path, "");
  const auto database = Open();
  const auto allowed = [&](const char* table, const char* column) {
    return database->TableDefs().Item(table)->Fields().Item(column)->AllowZeroLength();
  };
  EXPECT_TRUE(allowed("Depositos", "Nombre"));
  for (const char* referents : {"Clientes", "Transportistas"}) {
    EXPECT_FALSE(allowed(referents, "Nombre"));
    for (const char* column : {"NIF", "Info1", "Info2", "Info3"}) {
      EXPECT_TRUE(allowed(referents, column)) << referents << "." << column;
    }
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

// The row is not at fault, whichever it is.
TEST_F(CreateDatabaseTest, AFullDiskWhileAMasterIsLoadedIsTheDisksError) {
  CreateMillDatabase(*engine, path, "");
  const auto probe = std::make_shared<test::Probe>();
  test::ProbeEngine failing(engine, probe);
  const auto database = failing.DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=");
  const std::string master = WriteFile("CODSOC,NOMSOC\n1,a\n2,b\n");
  for (const int number : {3026, 3043}) {
    probe->FailAt(3, number);  // after the beginning and the first row
    EXPECT_EQ(test::ErrorOf([&] { LoadMaster(failing, *database, "SOCIO", master); }), number);
    EXPECT_EQ(ToLong(database->OpenRecordset("select count(*) from SOCIO")->Value(0)), 0);
  }
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
