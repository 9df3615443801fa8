#include "ambrelio/frame/histories.h"

#include "ambrelio/referents/referente.h"
#include "support/mill.h"

namespace ambrelio::frame {
namespace {

using test::At;
using test::Show;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kDischarges[] =
    "select MomentoHasta as mmto, Descargas.Descarga as cod, Descargas.Tolva as tva, "
    "Descargas.Deposito as dto, sum(PARCIALPESO) as pes "
    "from ExtPesada left join Descargas "
    "on (ExtPesada.tolva= Descargas.Tolva) and (ExtPesada.descarga= Descargas.Descarga) "
    "where (Descargas.Deposito > 0) ";
constexpr char kDischargesEnd[] =
    "group by MomentoHasta, Descargas.Descarga, Descargas.Tolva, Descargas.Deposito "
    "order by MomentoHasta ";
constexpr char kReadings[] =
    "select Momento as mmto, Item as cod, Deposito as dto, Litros as can from Niveles ";
constexpr char kEmptyings[] =
    "select mmto, Vaciado as cod, Deposito as dto, Cantidad as can, Destino as dno, "
    "Lote as lot, Uso, Cliente as cli, Transportista as trp, DestinoVenta as dvt "
    "from Vaciados ";

class HistoryTest : public test::MillTest {
 protected:
  // A closed discharge of a hopper into a tank, with what was weighed into it.
  void Discharged(int hopper, int number, int tank, const std::string& until) {
    Execute(
        "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
        "values (" +
        std::to_string(hopper) + ", " + std::to_string(number) + ", #1/1/2026#, " +
        data::SqlDate(At(until)) + ", " + std::to_string(tank) + ", 1)");
  }
  void Read(int tank, int item, const std::string& at, const std::string& litres = "100") {
    Execute("insert into Niveles (Deposito, Item, Momento, Litros) values (" +
            std::to_string(tank) + ", " + std::to_string(item) + ", " + data::SqlDate(At(at)) +
            ", " + litres + ")");
  }
  // An emptying; `sale` is lot, use, client, carrier and sale destination.
  void Emptied(int tank, int number, const std::string& at,
               const std::string& sale = "Null, Null, Null, Null, Null") {
    Execute(
        "insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, Lote, Uso, Cliente, "
        "Transportista, DestinoVenta) values (" +
        std::to_string(tank) + ", " + std::to_string(number) + ", " + data::SqlDate(At(at)) +
        ", 50, 0, " + sale + ")");
  }
  void Keep(int16_t pfx, int32_t code, const std::string& name) {
    Referente referent;
    referent.SetCodigo(code);
    referent.SetNombre(name);
    ASSERT_TRUE(root.GuardarReferente(pfx, std::make_shared<Referente>(referent)));
  }
  // Of each row of a list the value at `place`.
  static std::vector<std::string> Column(const Variant& list, size_t place) {
    std::vector<std::string> column;
    if (list.is_empty()) return column;
    for (const Variant& row : list.array()) column.push_back(Show(row.array()[place]));
    return column;
  }
  static std::vector<std::string> Moments(const Variant& list) { return Column(list, 0); }
};

class DischargeHistoryTest : public HistoryTest {};
class ReadingHistoryTest : public HistoryTest {};
class EmptyingHistoryTest : public HistoryTest {};
class SaleDestinationsTest : public HistoryTest {};

// --- HistoriaDescargas

TEST_F(DischargeHistoryTest, IsEmptyForANewMill) {
  EXPECT_TRUE(root.HistoriaDescargas().is_empty());
}

TEST_F(DischargeHistoryTest, HoldsMomentNumberHopperTankAndKilograms) {
  Weigh({.lot = 1, .hopper = 2, .discharge = 7, .kilos = 1000});
  Weigh({.lot = 2, .hopper = 2, .discharge = 7, .kilos = 500.5});
  Discharged(2, 7, 3, "2026-03-10 09:30:15");
  EXPECT_EQ(Show(root.HistoriaDescargas()),
            "[[2026-03-10 09:30:15, 7, 2, 3, 1500.5, Empty, Empty]]");
}

TEST_F(DischargeHistoryTest, IsByTime) {
  Weigh({.lot = 1, .hopper = 1, .discharge = 1});
  Weigh({.lot = 2, .hopper = 2, .discharge = 1});
  Weigh({.lot = 3, .hopper = 1, .discharge = 2});
  Discharged(1, 1, 3, "2026-03-11 09:00:00");
  Discharged(2, 1, 3, "2026-03-10 09:00:00");
  Discharged(1, 2, 3, "2026-03-12 09:00:00");
  EXPECT_THAT(Moments(root.HistoriaDescargas()),
              ElementsAre("2026-03-10 09:00:00", "2026-03-11 09:00:00", "2026-03-12 09:00:00"));
}

TEST_F(DischargeHistoryTest, KeepsEveryDischargeOfOneMoment) {
  for (int hopper = 1; hopper <= 4; ++hopper) {
    Weigh({.lot = hopper, .hopper = hopper});
    Discharged(hopper, 1, 3, "2026-03-10 09:00:00");
  }
  EXPECT_THAT(Column(root.HistoriaDescargas(), 2),
              testing::UnorderedElementsAre("1", "2", "3", "4"));
}

TEST_F(DischargeHistoryTest, ListsADischargeInTwoTanksTwiceWithItsWholeWeight) {
  Weigh({.kilos = 1000});
  Discharged(1, 1, 3, "2026-03-10 09:00:00");
  Discharged(1, 1, 4, "2026-03-10 09:00:00");
  Execute("update Descargas set Fraccion=0.5");
  const Variant history = root.HistoriaDescargas();
  EXPECT_THAT(Column(history, 3), testing::UnorderedElementsAre("3", "4"));
  EXPECT_THAT(Column(history, 4), ElementsAre("1000", "1000"));
}

TEST_F(DischargeHistoryTest, CountsReassignedSharesWhereTheyAre) {
  Weigh({.kilos = 1000});
  Discharged(1, 1, 3, "2026-03-10 09:00:00");
  Discharged(1, 2, 4, "2026-03-11 09:00:00");
  for (const char* share : {"1, 0.25", "2, 0.75"}) {
    Execute(
        "insert into splitDescar (cooperativa, partida, mediana, codpro, tolva, descarga, "
        "fraccion) values (1, 1, 0, 1, 1, " +
        std::string(share) + ")");
  }
  EXPECT_THAT(Column(root.HistoriaDescargas(), 4), ElementsAre("250", "750"));
}

TEST_F(DischargeHistoryTest, LeavesOutOpenDischargesAndThoseWithoutWeighings) {
  Weigh({});
  Discharged(1, 1, 0, "2026-03-10 09:00:00");
  Discharged(2, 1, 3, "2026-03-10 09:00:00");
  EXPECT_TRUE(root.HistoriaDescargas().is_empty());
}

TEST_F(DischargeHistoryTest, IsLimitedToAHopperAndATank) {
  for (int hopper = 1; hopper <= 2; ++hopper) {
    Weigh({.lot = hopper, .hopper = hopper});
    for (int tank = 3; tank <= 4; ++tank) Discharged(hopper, 1, tank, "2026-03-10 09:00:00");
  }
  EXPECT_THAT(Column(root.HistoriaDescargas({}, {}, 2), 2), ElementsAre("2", "2"));
  EXPECT_THAT(Column(root.HistoriaDescargas({}, {}, 0, 4), 3), ElementsAre("4", "4"));
  EXPECT_EQ(root.HistoriaDescargas({}, {}, 2, 4).array().size(), 1U);
  EXPECT_EQ(root.HistoriaDescargas({}, {}, -1, -1).array().size(), 4U);
  EXPECT_TRUE(root.HistoriaDescargas({}, {}, 4).is_empty());
}

TEST_F(DischargeHistoryTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.HistoriaDescargas(); }),
              ElementsAre(std::string(kDischarges) + kDischargesEnd));
  EXPECT_THAT(Sent([&] {
                root.HistoriaDescargas(At("2026-03-05 08:04:09"), At("2026-03-10 17:00:00"), 2, 6);
              }),
              ElementsAre(std::string(kDischarges) +
                          "and (MomentoHasta >= #3/5/2026 8:4:9#) "
                          "and (MomentoHasta <= #3/11/2026 0:0:0#) "
                          "and (Descargas.Tolva = 2) and (Descargas.Deposito = 6) " +
                          kDischargesEnd));
  EXPECT_THAT(Sent([&] { root.HistoriaDescargas({}, At("2026-12-31 00:00:00"), 0, 6); }),
              ElementsAre(std::string(kDischarges) +
                          "and (MomentoHasta <= #1/1/2027 0:0:0#) and (Descargas.Deposito = 6) " +
                          kDischargesEnd));
}

// --- HistoriaNiveles

TEST_F(ReadingHistoryTest, HoldsMomentNumberTankAndLitres) {
  Read(3, 2, "2026-03-10 09:00:00", "1234.5");
  Read(4, 1, "2026-03-09 09:00:00", "Null");
  EXPECT_EQ(Show(root.HistoriaNiveles()),
            "[[2026-03-09 09:00:00, 1, Empty, 4, Empty, Null, Empty], "
            "[2026-03-10 09:00:00, 2, Empty, 3, Empty, 1234.5, Empty]]");
}

TEST_F(ReadingHistoryTest, IsEmptyForANewMill) { EXPECT_TRUE(root.HistoriaNiveles().is_empty()); }

TEST_F(ReadingHistoryTest, StartsAtTheMomentAndEndsWithTheMidnightOfTheDay) {
  int item = 0;
  for (const char* at : {"2026-03-09 07:59:59", "2026-03-09 08:00:00", "2026-03-10 23:59:59",
                         "2026-03-11 00:00:00", "2026-03-11 00:00:01"}) {
    Read(1, ++item, at);
  }
  EXPECT_THAT(Column(root.HistoriaNiveles(At("2026-03-09 08:00:00"), At("2026-03-10 05:00:00")), 1),
              ElementsAre("2", "3", "4"));
  EXPECT_THAT(Column(root.HistoriaNiveles(At("2026-03-11 00:00:00")), 1), ElementsAre("4", "5"));
  EXPECT_THAT(Column(root.HistoriaNiveles({}, At("2026-03-08 00:00:00")), 1), IsEmpty());
  EXPECT_THAT(Column(root.HistoriaNiveles({}, At("2026-03-09 00:00:00")), 1),
              ElementsAre("1", "2"));
}

TEST_F(ReadingHistoryTest, IsLimitedToATank) {
  Read(1, 1, "2026-03-10 09:00:00");
  Read(2, 1, "2026-03-10 09:00:00");
  EXPECT_THAT(Column(root.HistoriaNiveles({}, {}, 2), 3), ElementsAre("2"));
}

TEST_F(ReadingHistoryTest, SendsAConditionOnlyForWhatIsAsked) {
  const std::string end = "order by Momento ";
  EXPECT_THAT(Sent([&] { root.HistoriaNiveles(); }), ElementsAre(kReadings + end));
  EXPECT_THAT(Sent([&] { root.HistoriaNiveles({}, {}, 3); }),
              ElementsAre(kReadings + ("where (Deposito = 3) " + end)));
  EXPECT_THAT(
      Sent([&] { root.HistoriaNiveles(At("2026-03-05 08:04:09"), At("2026-03-10 17:00:00"), 3); }),
      ElementsAre(kReadings + ("where (Momento >= #3/5/2026 8:4:9#) and "
                               "(Momento <= #3/11/2026 0:0:0#) and (Deposito = 3) " +
                               end)));
}

// --- the range of all three, shown on readings

TEST_F(ReadingHistoryTest, ATextIsADateByTheLocale) {
  Read(1, 1, "2026-03-10 09:00:00");
  Read(1, 2, "2026-10-03 09:00:00");
  const Variant text("10/03/2026");
  EXPECT_THAT(Column(root.HistoriaNiveles(text, text), 1), ElementsAre("2"));
  const ScopedLocale spanish(Locale::FromName("es_ES.UTF-8"));
  EXPECT_THAT(Column(root.HistoriaNiveles(text, text), 1), ElementsAre("1"));
  EXPECT_THAT(Sent([&] { root.HistoriaNiveles(Variant("10/03/2026 8:30")); }),
              ElementsAre(HasSubstr("(Momento >= #3/10/2026 8:30:0#)")));
}

TEST_F(ReadingHistoryTest, WhatIsNoDateLimitsNothing) {
  for (const Variant& value :
       {Variant(), Variant::Null(), Variant("pronto"), Variant(""), Variant(46091.5),
        Variant(int32_t{46091}), Variant(true), Variant(Variant::Array{At("2026-03-10 00:00:00")}),
        Variant::Nothing()}) {
    EXPECT_THAT(Sent([&] { root.HistoriaNiveles(value, value); }),
                ElementsAre(Not(HasSubstr("where "))))
        << TypeName(value);
  }
}

TEST_F(ReadingHistoryTest, TheDayAfterTheLastOneOverflows) {
  EXPECT_EQ(ErrorOf([&] { root.HistoriaNiveles({}, At("9999-12-31 00:00:00")); }), 6);
}

// --- HistoriaVaciados

TEST_F(EmptyingHistoryTest, HoldsTheEmptyingAndItsSale) {
  Keep(1, 4, "Aceites Mora");
  Keep(2, 9, "Portes Ruiz");
  Emptied(3, 1, "2026-03-10 09:00:00", "'L-7', 2, 4, 9, 'Jaén'");
  EXPECT_EQ(Show(root.HistoriaVaciados()),
            "[[2026-03-10 09:00:00, 1, Empty, 3, Empty, 50, 0, L-7, 2, 4, Aceites Mora, 9, "
            "Portes Ruiz, Jaén]]");
}

TEST_F(EmptyingHistoryTest, KeepsNullAsItIsAndNamesNobodyForIt) {
  Emptied(3, 1, "2026-03-10 09:00:00");
  EXPECT_EQ(Show(root.HistoriaVaciados()),
            "[[2026-03-10 09:00:00, 1, Empty, 3, Empty, 50, 0, Null, Null, Null, Empty, Null, "
            "Empty, Null]]");
}

TEST_F(EmptyingHistoryTest, NamesNobodyForCodesBelow1) {
  Emptied(3, 1, "2026-03-10 09:00:00", "'L', 0, 0, -1, ''");
  const Variant history = root.HistoriaVaciados();
  EXPECT_THAT(Column(history, 9), ElementsAre("0"));
  EXPECT_THAT(Column(history, 10), ElementsAre("Empty"));
  EXPECT_THAT(Column(history, 11), ElementsAre("-1"));
  EXPECT_THAT(Column(history, 12), ElementsAre("Empty"));
}

TEST_F(EmptyingHistoryTest, AClientOrCarrierThatIsGoneIs91) {
  Keep(1, 4, "Aceites Mora");
  Keep(2, 9, "Portes Ruiz");
  Emptied(3, 1, "2026-03-10 09:00:00", "'L-7', 2, 4, 9, 'Jaén'");
  root.EliminarReferente(2, 9);
  EXPECT_EQ(ErrorOf([&] { root.HistoriaVaciados(); }), 91);
  Keep(2, 9, "Portes Ruiz");
  root.EliminarReferente(1, 4);
  EXPECT_EQ(ErrorOf([&] { root.HistoriaVaciados(); }), 91);
}

TEST_F(EmptyingHistoryTest, SaysWhoIsGone) {
  Emptied(3, 1, "2026-03-10 09:00:00", "'L-7', 2, 4, 9, 'Jaén'");
  try {
    root.HistoriaVaciados();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.description(), testing::EndsWith(": client 4"));
  }
}

TEST_F(EmptyingHistoryTest, AnEmptyingOutsideTheRangeAsksForNobody) {
  Emptied(3, 1, "2026-03-10 09:00:00", "'L-7', 2, 4, 9, 'Jaén'");
  EXPECT_TRUE(root.HistoriaVaciados(At("2026-03-11 00:00:00")).is_empty());
}

TEST_F(EmptyingHistoryTest, IsLimitedToTheEmptiedTankAndTheRange) {
  Emptied(2, 1, "2026-03-12 09:00:00");
  Emptied(1, 1, "2026-03-10 09:00:00");
  Emptied(1, 2, "2026-03-11 00:00:00");
  EXPECT_THAT(Moments(root.HistoriaVaciados()),
              ElementsAre("2026-03-10 09:00:00", "2026-03-11 00:00:00", "2026-03-12 09:00:00"));
  EXPECT_THAT(Column(root.HistoriaVaciados({}, {}, 2), 3), ElementsAre("2"));
  EXPECT_THAT(Column(root.HistoriaVaciados({}, At("2026-03-10 08:00:00")), 1),
              ElementsAre("1", "2"));
  EXPECT_THAT(Column(root.HistoriaVaciados(At("2026-03-10 09:00:01")), 3), ElementsAre("1", "2"));
}

TEST_F(EmptyingHistoryTest, SendsItsTextAndOneForEachNamedParty) {
  const std::string end = "order by mmto ";
  EXPECT_THAT(Sent([&] { root.HistoriaVaciados(); }), ElementsAre(kEmptyings + end));
  EXPECT_THAT(
      Sent([&] { root.HistoriaVaciados(At("2026-03-05 08:04:09"), At("2026-03-10 17:00:00"), 3); }),
      ElementsAre(kEmptyings + ("where (mmto >= #3/5/2026 8:4:9#) and "
                                "(mmto <= #3/11/2026 0:0:0#) and (Deposito = 3) " +
                                end)));
  Keep(1, 4, "Aceites Mora");
  Keep(2, 9, "Portes Ruiz");
  Emptied(3, 1, "2026-03-10 09:00:00", "'L-7', 2, 4, 9, 'Jaén'");
  EXPECT_THAT(Sent([&] { root.HistoriaVaciados(); }),
              ElementsAre(kEmptyings + end, "select * from Clientes where Codigo=4",
                          "select * from Transportistas where Codigo=9"));
  EXPECT_EQ(FailAtEveryRequest([&] { root.HistoriaVaciados(); }), 3);
}

// --- ListaDestinoVenta

TEST_F(SaleDestinationsTest, AreEachOnceAndInOrder) {
  EXPECT_TRUE(root.ListaDestinoVenta().is_empty());
  int number = 0;
  for (const char* destination : {"'Jaén'", "'Baena'", "'jaén'", "Null", "''", "'Úbeda'"}) {
    Emptied(1, ++number, "2026-03-10 09:00:00", "Null, 2, Null, Null, " + std::string(destination));
  }
  EXPECT_EQ(Show(root.ListaDestinoVenta()), "[Baena, Jaén, Úbeda]");
}

TEST_F(SaleDestinationsTest, SendsOneText) {
  EXPECT_THAT(Sent([&] { root.ListaDestinoVenta(); }),
              ElementsAre("select DestinoVenta from Vaciados where DestinoVenta>'' "
                          "group by DestinoVenta "));
}

// --- IniciarCampaña

class SeasonTest : public HistoryTest {
 protected:
  void SetUp() override {
    HistoryTest::SetUp();
    Weigh({});
    Discharged(1, 1, 3, "2026-03-10 09:00:00");
    Read(3, 1, "2026-03-10 10:00:00");
    Keep(1, 4, "Aceites Mora");
    Keep(2, 9, "Portes Ruiz");
    Emptied(3, 1, "2026-03-10 11:00:00", "'L-7', 2, 4, 9, 'Jaén'");
    Execute("insert into detVaciados (Deposito, Vaciado, Tolva, Descarga) values (3, 1, 1, 1)");
    Execute("insert into Depositos (Codigo, Nombre) values (3, 'Norte')");
    Execute("insert into Capacidad (Deposito, Nivel, A0) values (3, 10, 1)");
    for (const char* shares : {"split", "splitDescar"}) {
      Execute("insert into " + std::string(shares) +
              " (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
              "values (1, 1, 0, 1, 1, 1, 1)");
    }
    probe->events.clear();
  }
  std::vector<std::string> TablesWithRows() {
    std::vector<std::string> with_rows;
    for (const char* table :
         {"split", "splitDescar", "Descargas", "Vaciados", "Niveles", "detVaciados", "Depositos",
          "Capacidad", "Clientes", "Transportistas", "PESADA"}) {
      if (!Rows(table).empty()) with_rows.emplace_back(table);
    }
    return with_rows;
  }
};

TEST_F(SeasonTest, DeletesTheMovementsAndKeepsTheRest) {
  EXPECT_EQ(TablesWithRows().size(), 11U);
  EXPECT_TRUE(root.IniciarCampana());
  EXPECT_THAT(TablesWithRows(), ElementsAre("detVaciados", "Depositos", "Capacidad", "Clientes",
                                            "Transportistas", "PESADA"));
  EXPECT_TRUE(root.HistoriaDescargas().is_empty());
  EXPECT_TRUE(root.HistoriaNiveles().is_empty());
  EXPECT_TRUE(root.HistoriaVaciados().is_empty());
}

TEST_F(SeasonTest, IsTrueForAMillWithoutMovements) {
  root.IniciarCampana();
  EXPECT_TRUE(root.IniciarCampana());
}

TEST_F(SeasonTest, SendsFiveTextsOutsideAnyTransaction) {
  EXPECT_THAT(Sent([&] { root.IniciarCampana(); }),
              ElementsAre("delete from split", "delete from splitDescar", "delete from Descargas",
                          "delete from Vaciados", "delete from Niveles"));
}

TEST_F(SeasonTest, AnErrorLeavesTheDeletesBeforeItDone) {
  const std::vector<std::string> before = TablesWithRows();
  for (int request = 1; request <= 5; ++request) {
    probe->FailAt(request, 3218);
    EXPECT_EQ(ErrorOf([&] { root.IniciarCampana(); }), 3218);
    Reopen();
    EXPECT_THAT(TablesWithRows(),
                testing::ElementsAreArray(before.begin() + request - 1, before.end()))
        << "at request " << request;
  }
}

// --- what all share

TEST_F(HistoryTest, AClosedDatabaseIs3420) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { root.HistoriaDescargas(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { root.HistoriaNiveles(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { root.HistoriaVaciados(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { root.ListaDestinoVenta(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { root.IniciarCampana(); }), 3420);
}

TEST_F(HistoryTest, ADatabaseNeverOpenedIs91) {
  Session other;
  Trazabilidad fresh(other);
  EXPECT_EQ(ErrorOf([&] { fresh.HistoriaDescargas(); }), 91);
  EXPECT_EQ(ErrorOf([&] { fresh.IniciarCampana(); }), 91);
}

}  // namespace
}  // namespace ambrelio::frame
