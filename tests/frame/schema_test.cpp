#include <algorithm>

#include "ambrelio/frame/connection.h"
#include "ambrelio/frame/schema_steps.h"
#include "frame/old_mill.h"

namespace ambrelio::frame {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class Schema : public test::OldMillTest {
 protected:
  // What the steps send on a database that has everything.
  void ExpectNothingToDo() {
    const std::string before = Dump();
    EXPECT_THAT(Sent([&] { EnsureSchema(session); }), IsEmpty());
    EXPECT_EQ(Dump(), before);
  }
};

const std::vector<std::string> kSplitColumns = {
    "cooperativa 3", "partida 4", "mediana 2", "codpro 3", "tolva 3", "descarga 4", "fraccion 7"};
const char kSplitKey[] = "primary unique over cooperativa partida mediana codpro tolva descarga";

const char kExtPesada[] =
    "select PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, "
    "PESADA.MEDIANA as mediana, PESADA.CODPRO as codpro, PESADA.CODSOC as codsoc, "
    "PESADA.CODMUN as codmun, PESADA.PARAJE as paraje, PESADA.POLIGONO as poligono, "
    "PESADA.PARCELA as parcela, PESADA.H_INICIO as h_inicio, "
    "IIf(IsNull(splitDescar.tolva), PESADA.tolva, splitDescar.tolva) as tolva, "
    "IIf(IsNull(splitDescar.descarga), PESADA.descarga, splitDescar.descarga) as descarga, "
    "PESADA.PARCIALPESO * IIf(IsNull(fraccion), 1, fraccion) as parcialpeso from "
    "PESADA left join splitDescar on (PESADA.COOPERATIVA = splitDescar.cooperativa) and "
    "(PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) and "
    "(PESADA.CODPRO = splitDescar.codpro) ";

TEST_F(Schema, AnOldDatabaseGetsAllThatIsMissing) {
  AddOldTables();
  Open();
  ASSERT_TRUE(root.BaseAbierta());
  EXPECT_EQ(Columns("splitDescar"), kSplitColumns);
  EXPECT_EQ(Columns("split"), kSplitColumns);
  EXPECT_THAT(Columns("Depositos"), ElementsAre("Codigo 4", "Nombre 10 40"));
  EXPECT_THAT(Columns("Descargas"), Contains("Molino 3"));
  EXPECT_THAT(Columns("detVaciados"), Contains("Molino 3"));
  EXPECT_THAT(Columns("Niveles"), Contains("Alerta 1"));
  EXPECT_THAT(Columns("Vaciados"), Contains("Destino 3"));
}

TEST_F(Schema, IsBroughtUpOnce) {
  AddOldTables();
  Open();
  ExpectNothingToDo();
}

TEST_F(Schema, TheUpdatesRunOutsideAnyTransactionInTheOrderOfTheSteps) {
  AddOldTables();
  EXPECT_THAT(Sent([&] { EnsureSchema(session); }),
              ElementsAre("update Descargas set Deposito=0 where isnull(Deposito)",
                          "update Descargas set Molino=1 where Deposito>0",
                          "update Descargas set Molino=0 where Deposito=0",
                          "update detVaciados set Molino=1 ", "update Niveles set Alerta=False "));
}

TEST_F(Schema, RecargaValoresRunsNoStep) {
  AddOldTables();
  session.CloseDatabase();
  WriteSetting("Vardex.ini", "GENERAL", "RutaBaseDatos", folder.path());
  root.Constructor(folder.Folder("nowhere"), false);  // nothing to open there
  ASSERT_FALSE(root.BaseAbierta());
  WriteSetting("nowhere/Vardex.ini", "GENERAL", "RutaBaseDatos", folder.path());
  root.RecargaValores();
  ASSERT_TRUE(root.BaseAbierta());
  EXPECT_FALSE(HasTable("splitDescar"));
}

// --- shares

TEST_F(Schema, TheTablesOfSharesHaveAKeyOverWeighingAndDischarge) {
  AddOldTables();
  Open();
  EXPECT_EQ(IndexText("splitDescar", "key"), kSplitKey);
  EXPECT_EQ(IndexText("split", "key"), kSplitKey);
}

TEST_F(Schema, ADatabaseWithSharesButNoWorkTableStaysWithout) {
  AddOldTables();
  AddTable("SPLITDESCAR", {{"cooperativa", Type::kInteger}});
  Open();
  EXPECT_FALSE(HasTable("split"));
  EXPECT_THAT(Columns("splitDescar"), ElementsAre("cooperativa 3"));
}

TEST_F(Schema, AWorkTableWithoutSharesRaises) {
  AddOldTables();
  AddTable("split", {{"cooperativa", Type::kInteger}});
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3010);
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_TRUE(HasTable("splitDescar"));
}

// --- ExtPesada

TEST_F(Schema, TheStoredQueryIsMade) {
  AddOldTables();
  Open();
  EXPECT_EQ(session.Database().QueryDefs().Item("ExtPesada")->Sql(), kExtPesada);
}

TEST_F(Schema, TheStoredQueryIsRewrittenAtEveryOpening) {
  AddOldTables();
  session.Database().CreateQueryDef("ExtPesada", "select * from PESADA");
  Open();
  EXPECT_EQ(session.Database().QueryDefs().Item("ExtPesada")->Sql(), kExtPesada);
}

TEST_F(Schema, AQueryWhoseNameDiffersInCaseRaises) {
  AddOldTables();
  session.Database().CreateQueryDef("extpesada", "select * from PESADA");
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3012);
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_TRUE(HasTable("split"));       // the step before ran
  EXPECT_FALSE(HasTable("Depositos"));  // those behind did not
}

// --- key of the discharges

TEST_F(Schema, TheKeyOfDischargesGetsTheTank) {
  AddOldTables();
  EXPECT_EQ(IndexText("Descargas", "Key"), "primary unique over Tolva Descarga");
  Open();
  EXPECT_EQ(IndexText("Descargas", "key"), "primary unique over Tolva Descarga Deposito");
  EXPECT_EQ(session.Database().TableDefs().Item("Descargas")->Indexes().Count(), 1);
}

TEST_F(Schema, DischargesWithoutATankGetTankZero) {
  AddOldTables();
  Execute("insert into Descargas (Tolva, Descarga, Deposito) values (1, 1, 3)");
  Execute("insert into Descargas (Tolva, Descarga) values (1, 2)");
  Open();
  EXPECT_THAT(Rows("select Descarga, Deposito from Descargas order by Descarga"),
              ElementsAre("1|3", "2|0"));
}

TEST_F(Schema, AKeyWithTheTankStaysAndBringsNoDestination) {
  AddTable("Descargas",
           {{"Tolva", Type::kInteger},
            {"Descarga", Type::kLong},
            {"MomentoDesde", Type::kDate},
            {"Deposito", Type::kInteger}},
           {"Deposito", "Tolva", "Descarga"});
  AddOldEmptyings();
  AddOldDetails();
  AddOldReadings();
  Open();
  EXPECT_EQ(IndexText("Descargas", "Key"), "primary unique over Deposito Tolva Descarga");
  EXPECT_THAT(Columns("Vaciados"), Not(Contains("Destino 3")));
}

TEST_F(Schema, ATankOfAnotherSpellingInTheKeyIsNotRecognised) {
  AddTable("Descargas",
           {{"Tolva", Type::kInteger},
            {"Descarga", Type::kLong},
            {"MomentoDesde", Type::kDate},
            {"DEPOSITO", Type::kInteger}},
           {"Tolva", "Descarga", "DEPOSITO"});
  AddOldEmptyings();
  AddOldDetails();
  AddOldReadings();
  Open();
  EXPECT_THAT(Columns("Vaciados"), Contains("Destino 3"));
}

TEST_F(Schema, DischargesWithoutAKeyRaise) {
  AddTable("Descargas", {{"Tolva", Type::kInteger}});
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3265);
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_TRUE(HasTable("splitDescar"));
  EXPECT_FALSE(HasTable("Depositos"));
}

TEST_F(Schema, AMissingTableOfDischargesRaises) {
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3265);
  EXPECT_TRUE(root.BaseAbierta());
}

TEST_F(Schema, ADestinationThatIsThereRaisesOnceAfterTheKeyWasRebuilt) {
  AddOldDischarges();
  AddTable("Vaciados", {{"Deposito", Type::kInteger}, {"Destino", Type::kInteger}});
  AddOldDetails();
  AddOldReadings();
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3191);
  EXPECT_EQ(IndexText("Descargas", "key"), "primary unique over Tolva Descarga Deposito");
  EXPECT_EQ(ErrorOf([&] { Open(); }), 0);
  EXPECT_TRUE(HasTable("Depositos"));
}

TEST_F(Schema, AHopperWithoutANumberRaisesWithTheOldKeyGone) {
  AddTable("Descargas",
           {{"Tolva", Type::kInteger}, {"Descarga", Type::kLong}, {"Deposito", Type::kInteger}});
  const auto table = session.Database().TableDefs().Item("Descargas");
  const auto key = table->CreateIndex("Key");
  key->Fields().Append(key->CreateField("Tolva"));
  table->Indexes().Append(key);
  AddOldEmptyings();
  Execute("insert into Descargas (Descarga) values (1)");
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3058);
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3265);
}

// --- tank names

TEST_F(Schema, TankNamesMayBeEmptyText) {
  AddOldTables();
  Open();
  EXPECT_EQ(IndexText("Depositos", "key"), "primary unique over Codigo");
  EXPECT_TRUE(
      session.Database().TableDefs().Item("Depositos")->Fields().Item("Nombre")->AllowZeroLength());
}

TEST_F(Schema, TankNamesOfAnySpellingAreLeftAlone) {
  AddOldTables();
  AddTable("DEPOSITOS", {{"Codigo", Type::kInteger}});
  Open();
  EXPECT_THAT(Columns("Depositos"), ElementsAre("Codigo 3"));
}

// --- mill line

TEST_F(Schema, TheMillLineOfDischargesFollowsTheTank) {
  AddOldTables();
  Execute("insert into Descargas (Tolva, Descarga, Deposito) values (1, 1, 3)");
  Execute("insert into Descargas (Tolva, Descarga, Deposito) values (1, 2, 0)");
  Open();
  EXPECT_THAT(Rows("select Descarga, Molino from Descargas order by Descarga"),
              ElementsAre("1|1", "2|0"));
}

TEST_F(Schema, TheMillLineStaysNullWithoutATank) {
  // With the tank in a key that is not primary, a Null tank survives the step before.
  AddTable(
      "Descargas",
      {{"Tolva", Type::kInteger}, {"MomentoDesde", Type::kDate}, {"Deposito", Type::kInteger}});
  const auto table = session.Database().TableDefs().Item("Descargas");
  const auto key = table->CreateIndex("Key");
  key->Fields().Append(key->CreateField("Deposito"));
  table->Indexes().Append(key);
  AddOldDetails();
  AddOldReadings();
  Execute("insert into Descargas (Tolva) values (1)");
  Open();
  EXPECT_THAT(Rows("select Molino from Descargas"), ElementsAre("Null"));
}

TEST_F(Schema, TheMillLineTakesThePlaceOfTheColumnItStandsBy) {
  AddOldTables();
  Open();
  const auto position = [&](const char* table, const char* column) {
    return session.Database().TableDefs().Item(table)->Fields().Item(column)->OrdinalPosition();
  };
  EXPECT_EQ(position("Descargas", "Molino"), 2);
  EXPECT_EQ(position("Descargas", "MomentoDesde"), 2);
  EXPECT_EQ(position("detVaciados", "Molino"), 4);
  EXPECT_EQ(position("detVaciados", "Fraccion"), 4);
}

TEST_F(Schema, EveryEmptyingDetailGetsMillLineOne) {
  AddOldTables();
  Execute("insert into detVaciados (Deposito, Vaciado, Tolva, Descarga) values (1, 1, 1, 1)");
  Execute("insert into detVaciados (Deposito, Vaciado, Tolva, Descarga) values (1, 1, 2, 1)");
  Open();
  EXPECT_THAT(Rows("select Molino from detVaciados"), ElementsAre("1", "1"));
}

TEST_F(Schema, OnceDischargesHaveTheMillLineTheDetailsAreNotLookedAt) {
  AddTable("Descargas",
           {{"Tolva", Type::kInteger},
            {"Descarga", Type::kLong},
            {"MomentoDesde", Type::kDate},
            {"MOLINO", Type::kInteger},
            {"Deposito", Type::kInteger}},
           {"Tolva", "Descarga", "Deposito"});
  AddOldDetails();
  AddOldReadings();
  Open();
  EXPECT_THAT(Columns("detVaciados"), Not(Contains("Molino 3")));
  EXPECT_THAT(Columns("Niveles"), Contains("Alerta 1"));
}

TEST_F(Schema, WithoutAStartColumnThereIsNoMillLine) {
  AddTable("Descargas",
           {{"Tolva", Type::kInteger}, {"Descarga", Type::kLong}, {"Deposito", Type::kInteger}},
           {"Tolva", "Descarga", "Deposito"});
  AddOldReadings();
  Open();  // detVaciados is not even looked for
  EXPECT_THAT(Columns("Descargas"), Not(Contains("Molino 3")));
  EXPECT_THAT(Columns("Niveles"), Contains("Alerta 1"));
}

TEST_F(Schema, DetailsWithoutAFractionGetNoMillLine) {
  AddOldDischarges();
  AddOldEmptyings();
  AddTable("detVaciados", {{"Deposito", Type::kInteger}});
  AddOldReadings();
  Open();
  EXPECT_THAT(Columns("Descargas"), Contains("Molino 3"));
  EXPECT_THAT(Columns("detVaciados"), ElementsAre("Deposito 3"));
}

// --- level alert

TEST_F(Schema, ReadingsGetAnAlertThatIsFalse) {
  AddOldTables();
  Execute("insert into Niveles (Deposito, Item) values (1, 1)");
  Open();
  EXPECT_EQ(Scalar("select Alerta from Niveles"), Variant(false));
}

TEST_F(Schema, AlertsThatAreThereStay) {
  AddOldDischarges();
  AddOldEmptyings();
  AddOldDetails();
  AddTable("Niveles", {{"Deposito", Type::kInteger}, {"ALERTA", Type::kBoolean}});
  Execute("insert into Niveles (Deposito, ALERTA) values (1, True)");
  Open();
  EXPECT_EQ(Scalar("select Alerta from Niveles"), Variant(true));
}

TEST_F(Schema, AMissingTableOfReadingsRaisesAfterTheStepsBefore) {
  AddOldDischarges();
  AddOldEmptyings();
  AddOldDetails();
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3265);
  EXPECT_TRUE(root.BaseAbierta());
  EXPECT_THAT(Columns("detVaciados"), Contains("Molino 3"));
}

// --- sale columns

TEST_F(Schema, ReferentsAndSaleColumnsAreTheHosts) {
  AddOldTables();
  Open();
  EXPECT_FALSE(HasTable("Clientes"));
  EXPECT_FALSE(HasTable("Transportistas"));
  EXPECT_THAT(Columns("Vaciados"), Not(Contains("Lote 10 20")));
}

TEST_F(Schema, SaleColumnsAreMadeOnlyWhereTanksHaveNoNames) {
  AddOldEmptyings();
  EnsureSaleColumns(session.Database());
  for (const char* referents : {"Clientes", "Transportistas"}) {
    EXPECT_THAT(Columns(referents), ElementsAre("Codigo 4", "Nombre 10 50", "NIF 10 20",
                                                "Info1 10 50", "Info2 10 50", "Info3 10 50"));
    EXPECT_EQ(IndexText(referents, "key1"), "primary unique over Codigo");
    EXPECT_EQ(IndexText(referents, "key2"), "unique ignore-nulls over Nombre");
    const auto table = session.Database().TableDefs().Item(referents);
    for (const char* text : {"NIF", "Info1", "Info2", "Info3"}) {
      EXPECT_TRUE(table->Fields().Item(text)->AllowZeroLength()) << text;
    }
    EXPECT_FALSE(table->Fields().Item("Nombre")->AllowZeroLength());
  }
  EXPECT_THAT(Columns("Vaciados"),
              ElementsAre("Deposito 3", "Vaciado 4", "mmto 8", "Cantidad 7", "Lote 10 20", "Uso 3",
                          "Cliente 4", "Transportista 4", "DestinoVenta 10 50"));
}

TEST_F(Schema, SaleColumnsAreNotMadeBesideTankNames) {
  AddOldEmptyings();
  AddTable("depositos", {{"Codigo", Type::kLong}});
  EnsureSaleColumns(session.Database());
  EXPECT_FALSE(HasTable("Clientes"));
  EXPECT_THAT(Columns("Vaciados"), Not(Contains("Uso 3")));
}

}  // namespace
}  // namespace ambrelio::frame
