// A hopper's readings; its discharging and its undoing have test files of their own.
#include "ambrelio/hoppers/tolva.h"

#include "ambrelio/hoppers/descarga.h"
#include "support/mill.h"
#include "support/sent.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TolvaTest : public test::MillTest {
 protected:
  void AddDischarge(int number, int tank = 0) {
    Execute("insert into Descargas values (3, " + std::to_string(number) +
            ", #11/14/2026 7:30:0#, Null, 0, " + std::to_string(tank) + ", Null)");
  }

  Tolva hopper{session, 3};
};

const char kSelectMax[] = "select max(Descarga) from Descargas where Tolva=3 ";
const char kInsertFirst[] =
    "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
    "values (3, 1, #11/15/2026 8:0:0#, Null, 0, Null) ";

// --- DescargaEnCurso

TEST_F(TolvaTest, CurrentNumberIsTheHighest) {
  AddDischarge(9);
  AddDischarge(10);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(hopper.DescargaEnCurso(), 10); }), ElementsAre(kSelectMax));
}

TEST_F(TolvaTest, CurrentNumberOfAnUntouchedHopperIsOne) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(hopper.DescargaEnCurso(), 1); }),
              ElementsAre(kSelectMax, kInsertFirst));
  EXPECT_THAT(Rows("Descargas"), ElementsAre("3|1|2026-11-15 08:00:00|Null|0|0|Null"));
}

TEST_F(TolvaTest, CurrentNumberIsZeroWhenNoDischargeCanBeInserted) {
  probe->SkipAt(2);
  EXPECT_EQ(hopper.DescargaEnCurso(), 0);
}

TEST_F(TolvaTest, HoppersHaveTheirOwnNumbers) {
  AddDischarge(9);
  EXPECT_EQ(Tolva(session, 2).DescargaEnCurso(), 1);
  EXPECT_EQ(hopper.DescargaEnCurso(), 9);
}

// --- MomentoInicio

TEST_F(TolvaTest, StartIsThatOfTheCurrentDischarge) {
  AddDischarge(9);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(hopper.MomentoInicio(), At("2026-11-14 07:30:00")); }),
              ElementsAre(kSelectMax,
                          "select MomentoDesde from Descargas where (Tolva=3) and (Descarga=9) "));
}

TEST_F(TolvaTest, AnUntouchedHopperStartsNow) {
  EXPECT_EQ(hopper.MomentoInicio(), At("2026-11-15 08:00:00"));
  clock.Set(At("2026-11-15 09:00:00"));
  EXPECT_EQ(hopper.MomentoInicio(), At("2026-11-15 08:00:00"));
}

TEST_F(TolvaTest, StartIsTheZeroDateWithoutADischarge) {
  probe->SkipAt(2);
  EXPECT_EQ(hopper.MomentoInicio(), OleDate());
}

TEST_F(TolvaTest, ANullStartReadsAsTheZeroDate) {
  Execute("insert into Descargas values (3, 1, Null, Null, 0, 0, Null)");
  EXPECT_EQ(hopper.MomentoInicio(), OleDate());
}

// --- Descarga

TEST_F(TolvaTest, HandsOutADischargeThatExists) {
  AddDischarge(9);
  std::shared_ptr<Descarga> discharge;
  EXPECT_THAT(Sent([&] { discharge = hopper.Descarga(9); }),
              ElementsAre("select Descarga from Descargas where (Tolva=3) and (Descarga=9) "));
  ASSERT_NE(discharge, nullptr);
  EXPECT_EQ(discharge->Tolva(), 3);
  EXPECT_EQ(discharge->Codigo(), 9);
  EXPECT_NE(hopper.Descarga(9), discharge);
}

TEST_F(TolvaTest, HandsOutNothingForAnUnknownNumber) {
  AddDischarge(9);
  EXPECT_EQ(hopper.Descarga(8), nullptr);
  EXPECT_EQ(Tolva(session, 2).Descarga(9), nullptr);
}

TEST_F(TolvaTest, HandsOutNothingBelowOneWithoutAskingTheDatabase) {
  AddDischarge(0);
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(hopper.Descarga(0), nullptr);
                EXPECT_EQ(hopper.Descarga(-1), nullptr);
              }),
              IsEmpty());
}

// --- Partidas, Acumulado

TEST_F(TolvaTest, CountsTheLinesOfTheCurrentDischarge) {
  AddDischarge(9);
  Weigh({.lot = 1, .hopper = 3, .discharge = 9});
  Weigh({.lot = 2, .hopper = 3, .discharge = 9});
  Weigh({.lot = 3, .hopper = 3, .discharge = 8});
  Weigh({.lot = 4, .hopper = 2, .discharge = 9});
  EXPECT_THAT(Sent([&] { EXPECT_EQ(hopper.Partidas(), 2); }),
              ElementsAre(kSelectLast,
                          "select count(partida) as cnt from ExtPesada where "
                          "(tolva=3) and (descarga=9) "));
}

TEST_F(TolvaTest, ADividedLineCountsInEachDischarge) {
  Weigh({.lot = 1, .hopper = 3, .discharge = hopper.DescargaEnCurso()});
  double half = 0.5;
  ASSERT_TRUE(hopper.Descargar(1, 1, half));
  EXPECT_EQ(hopper.Partidas(), 1);
  EXPECT_THAT(Rows("select count(*) from ExtPesada where descarga=1"), ElementsAre("1"));
}

TEST_F(TolvaTest, WeighsTheCurrentDischarge) {
  AddDischarge(9);
  Weigh({.lot = 1, .hopper = 3, .discharge = 9, .kilos = 1000.25});
  Weigh({.lot = 2, .hopper = 3, .discharge = 9, .kilos = 500});
  Weigh({.lot = 3, .hopper = 3, .discharge = 8, .kilos = 250});
  EXPECT_THAT(Sent([&] { EXPECT_DOUBLE_EQ(hopper.Acumulado(), 1500.25); }),
              ElementsAre(kSelectLast,
                          "select sum(PARCIALPESO) as pes from ExtPesada where "
                          "(TOLVA=3) and (DESCARGA=9) "));
}

TEST_F(TolvaTest, AnUntouchedHopperIsEmptyAndGetsItsFirstDischarge) {
  EXPECT_EQ(hopper.Partidas(), 0);
  EXPECT_EQ(hopper.Acumulado(), 0);
  EXPECT_THAT(Rows("select Descarga from Descargas"), ElementsAre("1"));
}

TEST_F(TolvaTest, WithoutACurrentDischargeThereIsNothingInIt) {
  AddDischarge(0);
  Weigh({.lot = 1, .hopper = 3, .discharge = 0});
  EXPECT_EQ(hopper.Partidas(), 0);
  EXPECT_EQ(hopper.Acumulado(), 0);
  EXPECT_TRUE(hopper.Composicion(1).is_empty());
}

// --- Composicion

TEST_F(TolvaTest, IsBrokenDownByProduct) {
  AddDischarge(9);
  Execute("insert into PRODUCTO (CODPRO, NOMPRO) values (2, 'Picual suelo')");
  Weigh({.lot = 1, .hopper = 3, .discharge = 9, .kilos = 750, .product = 2});
  Weigh({.lot = 2, .hopper = 3, .discharge = 9, .kilos = 250, .product = 1});
  Weigh({.lot = 3, .hopper = 3, .discharge = 8, .kilos = 250, .product = 3});
  EXPECT_EQ(test::Show(hopper.Composicion(2)), "[[1, , 25, 250], [2, Picual suelo, 75, 750]]");
}

TEST_F(TolvaTest, HasNoMillLineToBeBrokenDownBy) {
  Weigh({.lot = 1, .hopper = 3, .discharge = hopper.DescargaEnCurso()});
  EXPECT_TRUE(hopper.Composicion(5).is_empty());
}

// --- failures

TEST_F(TolvaTest, ReadingsPassFailuresOn) {
  for (const auto& member : std::vector<std::function<void()>>{
           [&] { hopper.DescargaEnCurso(); }, [&] { hopper.MomentoInicio(); },
           [&] { hopper.Descarga(1); }, [&] { hopper.Partidas(); }, [&] { hopper.Acumulado(); },
           [&] { hopper.Composicion(1); }}) {
    probe->FailAt(1, 3218);
    EXPECT_EQ(ErrorOf(member), 3218);
  }
}

TEST_F(TolvaTest, NeedsAnOpenDatabase) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { hopper.DescargaEnCurso(); }), 3420);
}

}  // namespace
}  // namespace ambrelio
