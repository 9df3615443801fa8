#include "ambrelio/hoppers/tva_inter.h"

#include <limits>

#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TvaInterTest : public test::MillTest {
 protected:
  void Wait(int lot, double kilos, int number = 2) {
    Weigh({.lot = lot, .hopper = -number, .discharge = 0, .kilos = kilos});
  }

  TvaInter intermediate{session, 2};
};

TEST_F(TvaInterTest, MovesAllThatWaitsIntoTheCurrentDischarge) {
  Execute("insert into Descargas values (3, 17, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
  Wait(1, 1000);
  Wait(2, 500);
  Wait(3, 250, /*number=*/1);
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(intermediate.DescargarEn(3)); }),
              ElementsAre("select * from Descargas where (Tolva=3) order by Descarga ",
                          "update PESADA set TOLVA=3, DESCARGA=17 where (TOLVA=-2) "));
  EXPECT_THAT(Weighings(), ElementsAre("1|3|17", "2|3|17", "3|-1|0"));
}

TEST_F(TvaInterTest, EmptiesItselfIntoTheHopper) {
  Tolva hopper(session, 3);
  Weigh({.lot = 9, .hopper = 3, .discharge = hopper.DescargaEnCurso(), .kilos = 100});
  Wait(1, 1000);
  Wait(2, 500);
  EXPECT_TRUE(intermediate.DescargarEn(3));
  EXPECT_EQ(intermediate.Partidas(), 0);
  EXPECT_EQ(intermediate.Acumulado(), 0);
  EXPECT_EQ(hopper.Partidas(), 3);
  EXPECT_EQ(hopper.Acumulado(), 1600);
}

TEST_F(TvaInterTest, MakesTheFirstDischargeOfTheHopper) {
  Wait(1, 1000);
  EXPECT_TRUE(intermediate.DescargarEn(3));
  EXPECT_THAT(Weighings(), ElementsAre("1|3|1"));
  EXPECT_THAT(Rows("Descargas"), ElementsAre("3|1|2026-11-15 08:00:00|Null|0|0|Null"));
}

TEST_F(TvaInterTest, JoinsACurrentDischargeWhateverItsState) {
  Execute("insert into Descargas values (3, 1, #11/15/2026 7:0:0#, #11/15/2026 8:0:0#, 1, 5, 1)");
  Wait(1, 1000);
  EXPECT_TRUE(intermediate.DescargarEn(3));
  EXPECT_THAT(Weighings(), ElementsAre("1|3|1"));
}

TEST_F(TvaInterTest, MovingNothingSucceeds) {
  Tolva(session, 3).DescargaEnCurso();
  const std::string before = Dump();
  EXPECT_TRUE(intermediate.DescargarEn(3));
  EXPECT_EQ(Dump(), before);
}

TEST_F(TvaInterTest, RefusesHoppersThatDoNotExistWithoutAskingTheDatabase) {
  Wait(1, 1000);
  for (const int16_t hopper : std::initializer_list<int16_t>{0, -1, 5, 32767, -32768}) {
    EXPECT_THAT(Sent([&] { EXPECT_FALSE(intermediate.DescargarEn(hopper)); }), IsEmpty()) << hopper;
  }
  EXPECT_TRUE(intermediate.DescargarEn(4));
}

TEST_F(TvaInterTest, RefusesAHopperWithoutACurrentDischarge) {
  Execute("insert into Descargas values (3, 0, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
  Wait(1, 1000);
  const std::string before = Dump();
  EXPECT_FALSE(intermediate.DescargarEn(3));
  EXPECT_EQ(Dump(), before);
}

TEST_F(TvaInterTest, WeighingsLockedByAnotherProcessStayWithoutAnError) {
  Tolva(session, 3).DescargaEnCurso();
  Wait(1, 1000);
  probe->SkipAt(2);
  EXPECT_TRUE(intermediate.DescargarEn(3));
  EXPECT_THAT(Weighings(), ElementsAre("1|-2|0"));
}

TEST_F(TvaInterTest, CountsItsLines) {
  Wait(1, 1000);
  Wait(2, 500);
  Wait(3, 250, /*number=*/1);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(intermediate.Partidas(), 2); }),
              ElementsAre("select count(PARTIDA) as cnt from PESADA where (TOLVA=-2) "));
}

TEST_F(TvaInterTest, AddsUpItsKilograms) {
  Wait(1, 1000);
  Wait(2, 500);
  Wait(3, 250, /*number=*/1);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(intermediate.Acumulado(), 1500); }),
              ElementsAre("select sum(PARCIALPESO) as pes from PESADA where (TOLVA=-2) "));
}

TEST_F(TvaInterTest, IsEmptyAtFirst) {
  EXPECT_EQ(intermediate.Partidas(), 0);
  EXPECT_EQ(intermediate.Acumulado(), 0);
}

TEST_F(TvaInterTest, RoundsHalfKilogramsToTheEvenNeighbour) {
  Wait(1, 1000.5);
  EXPECT_EQ(intermediate.Acumulado(), 1000);
  Wait(2, 1);
  EXPECT_EQ(intermediate.Acumulado(), 1002);
  Wait(3, 0.25);
  EXPECT_EQ(intermediate.Acumulado(), 1002);
}

TEST_F(TvaInterTest, RaisesAnOverflowAboveALong) {
  Wait(1, 2147483648.0);
  EXPECT_EQ(ErrorOf([&] { intermediate.Acumulado(); }), 6);
}

TEST_F(TvaInterTest, EveryFailureReachesTheCaller) {
  Tolva(session, 3).DescargaEnCurso();
  Wait(1, 1000);
  EXPECT_EQ(FailAtEveryRequest([&] { EXPECT_TRUE(intermediate.DescargarEn(3)); }), 2);
  EXPECT_THAT(Weighings(), ElementsAre("1|3|1"));
}

TEST_F(TvaInterTest, AFailedMoveKeepsTheFirstDischargeItMade) {
  Wait(1, 1000);
  probe->FailAt(4, 3218);
  EXPECT_EQ(ErrorOf([&] { intermediate.DescargarEn(3); }), 3218);
  EXPECT_EQ(probe->level, 0);
  Reopen();
  EXPECT_THAT(Rows("select Tolva, Descarga from Descargas"), ElementsAre("3|1"));
  EXPECT_THAT(Weighings(), ElementsAre("1|-2|0"));
}

TEST_F(TvaInterTest, NeedsAnOpenDatabase) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { intermediate.DescargarEn(3); }), 3420);
  EXPECT_EQ(ErrorOf([&] { intermediate.Partidas(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { intermediate.Acumulado(); }), 3420);
}

}  // namespace
}  // namespace ambrelio
