#include "ambrelio/composition/composition.h"

#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class CompositionTest : public test::MillTest {
 protected:
  // Tank 5 holds half of discharge 1 of hopper 1 (600 + 400 kg) and a quarter of discharge 4 of
  // hopper 2 (2000 kg): 1000 kg in all.
  void SetUp() override {
    MillTest::SetUp();
    Execute("insert into SOCIO (CODSOC, NOMSOC) values (11, 'ANA LARA')");
    Execute("insert into SOCIO (CODSOC, NOMSOC) values (12, 'BLAS SORIA')");
    Execute("insert into PRODUCTO (CODPRO, NOMPRO) values (1, 'PICUAL')");
    Execute("insert into PRODUCTO (CODPRO, NOMPRO) values (2, 'HOJIBLANCA')");
    Execute("insert into MUNICIPIO (CODMUN, NOMMUN) values (7, 'MARTOS')");
    Execute("insert into MUNICIPIO (CODMUN, NOMMUN) values (8, 'BAEZA')");
    Weigh({.lot = 1, .kilos = 600, .member = 11, .municipality = 7, .place = "EL PILAR"});
    Weigh({.lot = 2, .kilos = 400, .member = 12, .product = 2, .municipality = 7, .place = "ALTO"});
    Weigh({.lot = 3,
           .hopper = 2,
           .discharge = 4,
           .kilos = 2000,
           .member = 12,
           .municipality = 8,
           .place = "EL PILAR"});
    Hold(1, 1, 5, 0.5, 2);
    Hold(2, 4, 5, 0.25, 1);
    probe->events.clear();
  }

  void Hold(int hopper, int discharge, int tank, double fraction, int line) {
    Execute(
        "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, "
        "Fraccion) values (" +
        std::to_string(hopper) + ", " + std::to_string(discharge) +
        ", #11/1/2026 8:0:0#, #11/2/2026 8:0:0#, " + std::to_string(line) + ", " +
        std::to_string(tank) + ", " + data::SqlNum8(fraction) + ")");
  }

  Variant Tank5(int16_t clase, double litres = 200, double total = 1000) {
    return composition::Weighted(session, clase, litres, total, "Descargas ",
                                 "(Deposito=5) and (Fraccion>0)");
  }

  static std::vector<std::string> Shown(const Variant& rows) {
    std::vector<std::string> shown;
    for (const Variant& row : rows.array()) shown.push_back(test::Show(row));
    return shown;
  }
};

// --- weighted

TEST_F(CompositionTest, WeightedByMember) {
  EXPECT_THAT(Shown(Tank5(1)), ElementsAre("[11, ANA LARA, 30, 60]", "[12, BLAS SORIA, 70, 140]"));
}

TEST_F(CompositionTest, WeightedByProduct) {
  EXPECT_THAT(Shown(Tank5(2)), ElementsAre("[1, PICUAL, 80, 160]", "[2, HOJIBLANCA, 20, 40]"));
}

TEST_F(CompositionTest, WeightedByMunicipality) {
  EXPECT_THAT(Shown(Tank5(3)), ElementsAre("[7, MARTOS, 50, 100]", "[8, BAEZA, 50, 100]"));
}

TEST_F(CompositionTest, WeightedByPlaceNamesTheRowByThePlace) {
  EXPECT_THAT(Shown(Tank5(4)),
              ElementsAre("[ALTO, ALTO, 20, 40]", "[EL PILAR, EL PILAR, 80, 160]"));
}

TEST_F(CompositionTest, WeightedByMillLineNamesTheRowByItsNumber) {
  const Variant rows = Tank5(5);
  EXPECT_THAT(Shown(rows), ElementsAre("[1, 1, 50, 100]", "[2, 2, 50, 100]"));
  EXPECT_TRUE(rows.array()[0].array()[1].is_text());
}

TEST_F(CompositionTest, RowsHoldKeyTextAndTwoDoubles) {
  const Variant rows = Tank5(1);
  const Variant::Array& row = rows.array().at(0).array();
  ASSERT_EQ(row.size(), 4U);
  EXPECT_EQ(row[1].type(), VariantType::kText);
  EXPECT_EQ(row[2].type(), VariantType::kDouble);
  EXPECT_EQ(row[3].type(), VariantType::kDouble);
}

TEST_F(CompositionTest, WeightedSendsTheGroupsQueryThenOneLookupForEachRow) {
  EXPECT_THAT(
      Sent([&] { Tank5(1); }),
      ElementsAre("select codsoc as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left "
                  "join (select Tolva, Descarga, Molino, Fraccion from Descargas where "
                  "(Deposito=5) and (Fraccion>0)) as dgas on (ExtPesada.Tolva=dgas.Tolva) and "
                  "(ExtPesada.Descarga=dgas.Descarga) where not isnull(Fraccion) group by codsoc "
                  "order by codsoc ",
                  "select NOMSOC from SOCIO where CODSOC=11",
                  "select NOMSOC from SOCIO where CODSOC=12"));
}

TEST_F(CompositionTest, EachClassGroupsByItsColumn) {
  const char* columns[] = {"codsoc", "codpro", "codmun", "paraje", "Molino"};
  for (int16_t clase = 1; clase <= 5; ++clase) {
    const std::string column = columns[clase - 1];
    const std::string sql = Sent([&] { Tank5(clase); }).at(0);
    EXPECT_THAT(sql, StartsWith("select " + column + " as campo, "));
    EXPECT_THAT(sql, HasSubstr("group by " + column + " "));
    EXPECT_THAT(sql, EndsWith("order by " + column + " "));
  }
}

TEST_F(CompositionTest, WeightedReadsTheSourceAndConditionItIsGiven) {
  Execute(
      "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) values "
      "(5, 3, 2, 4, 1, 0.5)");
  const auto sent = Sent([&] {
    const Variant rows = composition::Weighted(session, 5, 10, 1000, "detVaciados ",
                                               "(Deposito=5) and (Vaciado=3) and (Fraccion>0)");
    EXPECT_THAT(Shown(rows), ElementsAre("[1, 1, 100, 10]"));
  });
  EXPECT_THAT(
      sent, ElementsAre(
                "select Molino as campo, sum(PARCIALPESO*Fraccion) as pes from ExtPesada left join "
                "(select Tolva, Descarga, Molino, Fraccion from detVaciados where (Deposito=5) and "
                "(Vaciado=3) and (Fraccion>0)) as dgas on (ExtPesada.Tolva=dgas.Tolva) and "
                "(ExtPesada.Descarga=dgas.Descarga) where not isnull(Fraccion) group by Molino "
                "order by Molino "));
}

TEST_F(CompositionTest, WeightedOfAnUnknownClassIsEmptyAndAsksNothing) {
  for (const int16_t clase : {int16_t{-1}, int16_t{0}, int16_t{6}, int16_t{32767}}) {
    EXPECT_THAT(Sent([&] { EXPECT_TRUE(Tank5(clase).is_empty()) << clase; }), IsEmpty());
  }
}

TEST_F(CompositionTest, WeightedOfNoLitresOrNoWeightIsEmptyAndAsksNothing) {
  EXPECT_THAT(Sent([&] {
                EXPECT_TRUE(Tank5(1, 0, 1000).is_empty());
                EXPECT_TRUE(Tank5(1, 200, 0).is_empty());
              }),
              IsEmpty());
}

TEST_F(CompositionTest, NegativeLitresAreDividedLikeAnyOther) {
  EXPECT_THAT(Shown(Tank5(5, -200)), ElementsAre("[1, 1, 50, -100]", "[2, 2, 50, -100]"));
}

TEST_F(CompositionTest, WeightedWithoutAnyPositiveFractionIsEmpty) {
  Execute("update Descargas set Fraccion=0 where Deposito=5");
  EXPECT_TRUE(Tank5(1).is_empty());
}

TEST_F(CompositionTest, NullsInTheGroupingColumnMakeOneRowWithANullKey) {
  Execute("update PESADA set CODSOC=Null where CODSOC=12");
  EXPECT_THAT(Shown(Tank5(1)), ElementsAre("[Null, , 70, 140]", "[11, ANA LARA, 30, 60]"));
}

TEST_F(CompositionTest, ANullPlaceHasAnEmptyName) {
  Execute("update PESADA set PARAJE=Null where PARTIDA=2");
  EXPECT_THAT(Shown(Tank5(4)), ElementsAre("[Null, , 20, 40]", "[EL PILAR, EL PILAR, 80, 160]"));
}

TEST_F(CompositionTest, ANullKeyIsLookedUpAsCodeZero) {
  Execute("update PESADA set CODSOC=Null");
  Execute("insert into SOCIO (CODSOC, NOMSOC) values (0, 'SIN SOCIO')");
  EXPECT_THAT(Shown(Tank5(1)), ElementsAre("[Null, SIN SOCIO, 100, 200]"));
}

TEST_F(CompositionTest, ACodeWithoutMasterRowHasAnEmptyName) {
  Execute("delete from SOCIO");
  Execute("delete from PRODUCTO");
  Execute("delete from MUNICIPIO");
  EXPECT_THAT(Shown(Tank5(1)), ElementsAre("[11, , 30, 60]", "[12, , 70, 140]"));
  EXPECT_THAT(Shown(Tank5(2)), ElementsAre("[1, , 80, 160]", "[2, , 20, 40]"));
  EXPECT_THAT(Shown(Tank5(3)), ElementsAre("[7, , 50, 100]", "[8, , 50, 100]"));
}

TEST_F(CompositionTest, PlacesThatDifferInCaseOnlyAreOne) {
  Execute("update PESADA set PARAJE='el pilar' where PARTIDA=3");
  EXPECT_THAT(Shown(Tank5(4)),
              ElementsAre("[ALTO, ALTO, 20, 40]", "[EL PILAR, EL PILAR, 80, 160]"));
}

TEST_F(CompositionTest, SharesOfReassignedWeighingsCountWhereTheyWere) {
  Execute(
      "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, "
      "fraccion) values (1, 3, 0, 1, 2, 4, 0.5)");
  Execute(
      "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, "
      "fraccion) values (1, 3, 0, 1, 3, 9, 0.5)");
  EXPECT_THAT(Shown(Tank5(3, 300, 750)), ElementsAre("[7, MARTOS, 66.6666666666667, 200]",
                                                     "[8, BAEZA, 33.3333333333333, 100]"));
}

TEST_F(CompositionTest, WeightedRaisesOverflowForAShareOutOfRange) {
  EXPECT_EQ(ErrorOf([&] { Tank5(1, 1, 1e-307); }), 6);  // the share itself
  EXPECT_EQ(ErrorOf([&] { Tank5(1, 1, 1e-305); }), 6);  // its percentage
  EXPECT_EQ(ErrorOf([&] { Tank5(1, 1e308, 1); }), 6);   // its litres
}

// --- plain

TEST_F(CompositionTest, PlainByMember) {
  EXPECT_THAT(Shown(composition::Plain(session, 1, 1, 1)),
              ElementsAre("[11, ANA LARA, 60, 600]", "[12, BLAS SORIA, 40, 400]"));
}

TEST_F(CompositionTest, PlainByProduct) {
  EXPECT_THAT(Shown(composition::Plain(session, 2, 1, 1)),
              ElementsAre("[1, PICUAL, 60, 600]", "[2, HOJIBLANCA, 40, 400]"));
}

TEST_F(CompositionTest, PlainByMunicipality) {
  EXPECT_THAT(Shown(composition::Plain(session, 3, 1, 1)), ElementsAre("[7, MARTOS, 100, 1000]"));
}

TEST_F(CompositionTest, PlainByPlace) {
  EXPECT_THAT(Shown(composition::Plain(session, 4, 1, 1)),
              ElementsAre("[ALTO, ALTO, 40, 400]", "[EL PILAR, EL PILAR, 60, 600]"));
}

TEST_F(CompositionTest, PlainSendsTheTotalThenTheGroupsThenTheLookups) {
  EXPECT_THAT(
      Sent([&] { composition::Plain(session, 2, 1, 1); }),
      ElementsAre("select sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) and (DESCARGA=1) ",
                  "select codpro as campo, sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) "
                  "and (DESCARGA=1)  group by codpro order by codpro ",
                  "select NOMPRO from PRODUCTO where CODPRO=1",
                  "select NOMPRO from PRODUCTO where CODPRO=2"));
}

TEST_F(CompositionTest, PlainOfAnUnknownClassIsEmptyAfterTheTotal) {
  for (const int16_t clase : {int16_t{-1}, int16_t{0}, int16_t{5}, int16_t{6}}) {
    EXPECT_THAT(
        Sent([&] { EXPECT_TRUE(composition::Plain(session, clase, 1, 1).is_empty()) << clase; }),
        ElementsAre(
            "select sum(PARCIALPESO) as pes from ExtPesada where (TOLVA=1) and (DESCARGA=1) "));
  }
}

TEST_F(CompositionTest, PlainOfADischargeWithoutWeighingsIsEmpty) {
  EXPECT_TRUE(composition::Plain(session, 1, 3, 1).is_empty());
}

TEST_F(CompositionTest, PlainOfZeroKilosRaisesOverflow) {
  Weigh({.lot = 9, .hopper = 3, .discharge = 1, .kilos = 0});
  EXPECT_EQ(ErrorOf([&] { composition::Plain(session, 1, 3, 1); }), 6);
}

TEST_F(CompositionTest, PlainOfKilosThatCancelOutRaisesDivisionByZero) {
  Weigh({.lot = 8, .hopper = 3, .discharge = 1, .kilos = 5, .member = 1});
  Weigh({.lot = 9, .hopper = 3, .discharge = 1, .kilos = -5, .member = 2});
  EXPECT_EQ(ErrorOf([&] { composition::Plain(session, 1, 3, 1); }), 11);
}

TEST_F(CompositionTest, PlainNeedsNoRowOfDescargas) {
  Weigh({.lot = 9, .hopper = 3, .discharge = 70000, .kilos = 50, .member = 11});
  EXPECT_THAT(Shown(composition::Plain(session, 1, 3, 70000)),
              ElementsAre("[11, ANA LARA, 100, 50]"));
}

// --- failures

TEST_F(CompositionTest, AMissingStoredQueryReachesTheCaller) {
  session.Database().QueryDefs().Delete("ExtPesada");
  EXPECT_EQ(ErrorOf([&] { Tank5(1); }), 3078);
  EXPECT_EQ(ErrorOf([&] { composition::Plain(session, 1, 1, 1); }), 3078);
}

TEST_F(CompositionTest, AMissingMasterTableReachesTheCaller) {
  session.Database().TableDefs().Delete("SOCIO");
  EXPECT_EQ(ErrorOf([&] { Tank5(1); }), 3078);
}

TEST_F(CompositionTest, AFailureAtAnyQueryWritesNothing) {
  EXPECT_EQ(FailAtEveryRequest([&] { Tank5(1); }), 3);
  EXPECT_EQ(FailAtEveryRequest([&] { composition::Plain(session, 1, 1, 1); }), 4);
}

TEST_F(CompositionTest, AClosedDatabaseRaises3420) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { Tank5(1); }), 3420);
  EXPECT_EQ(ErrorOf([&] { composition::Plain(session, 1, 1, 1); }), 3420);
}

}  // namespace
}  // namespace ambrelio
