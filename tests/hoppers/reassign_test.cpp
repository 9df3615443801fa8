#include "ambrelio/hoppers/reassign.h"

#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReassignDischargeTest : public test::MillTest {
 protected:
  // Weighing `lot` divided between two discharges of hopper 1.
  void Divide(int lot, const std::string& first_share, const std::string& second_share) {
    for (const auto& [discharge, share] :
         {std::pair("1", first_share), std::pair("2", second_share)}) {
      Execute("insert into splitDescar values (1, " + std::to_string(lot) + ", 0, 1, 1, " +
              discharge + ", " + share + ")");
    }
  }
  // From discharge 1 of hopper 1 to discharge 2 of the same hopper.
  void Move(double quantity) { EXPECT_TRUE(ReassignDischarge(session, 1, 1, 1, 2, quantity)); }
};

TEST_F(ReassignDischargeTest, SendsItsStatementsInOneLevel) {
  EXPECT_THAT(
      Sent([&] { EXPECT_TRUE(ReassignDischarge(session, 1, 17, 2, 5, 0.25)); }),
      ElementsAre(
          "begin",  //
          "delete from split",
          "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
          "select cooperativa, partida, mediana, codpro, 2 as tolva, 5 as descarga, "
          "fraccion * 0.25000000 as frac from splitDescar where (tolva=1) and (descarga=17) ",
          "update (select * from splitDescar as split1, splitDescar as split2 where "
          "(split1.cooperativa=split2.cooperativa) and (split1.partida=split2.partida) and "
          "(split1.mediana=split2.mediana) and (split1.codpro=split2.codpro) and "
          "(split1.tolva= 1) and (split1.descarga= 17) and "
          "(split2.tolva= 2) and (split2.descarga= 5) ) "
          "set split2.fraccion= split2.fraccion + split1.fraccion * 0.25000000 ",
          "update splitDescar set fraccion= fraccion - fraccion * 0.25000000 where "
          "(tolva= 1) and (descarga= 17) ",
          "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
          "select PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, "
          "PESADA.MEDIANA as mediana, PESADA.CODPRO as codpro, "
          "1 as tolva, 17 as descarga, (1-0.25000000) as fraccion from "
          "PESADA left join splitDescar on (PESADA.COOPERATIVA = splitDescar.cooperativa) and "
          "(PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) and "
          "(PESADA.CODPRO = splitDescar.codpro) where "
          "(PESADA.TOLVA=1) and (PESADA.DESCARGA=17) and isnull(splitDescar.tolva) ",
          "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
          "select PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, "
          "PESADA.MEDIANA as mediana, PESADA.CODPRO as codpro, "
          "2 as tolva, 5 as descarga, 0.25000000 as fraccion from "
          "PESADA left join splitDescar on (PESADA.COOPERATIVA = splitDescar.cooperativa) and "
          "(PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) and "
          "(PESADA.CODPRO = splitDescar.codpro) where "
          "(PESADA.TOLVA=1) and (PESADA.DESCARGA=17) and isnull(splitDescar.tolva) ",
          "insert into splitDescar "
          "(cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
          "select * from split ",
          "update (select * from "
          "PESADA left join splitDescar on (PESADA.COOPERATIVA = splitDescar.cooperativa) and "
          "(PESADA.PARTIDA = splitDescar.partida) and (PESADA.MEDIANA = splitDescar.mediana) and "
          "(PESADA.CODPRO = splitDescar.codpro) where fraccion>=0.999 )"
          "set PESADA.TOLVA=splitDescar.tolva, PESADA.DESCARGA=splitDescar.descarga ",
          "delete from splitDescar where (fraccion >= 0.999) or (fraccion < 0.001) ",
          "delete from split",  //
          "commit"));
}

TEST_F(ReassignDischargeTest, MovingAllOfUndividedWeighingsOnlyRewritesThem) {
  Weigh({.lot = 1});
  Weigh({.lot = 2});
  Move(1);
  EXPECT_THAT(Weighings(), ElementsAre("1|1|2", "2|1|2"));
  EXPECT_THAT(Shares(), IsEmpty());
  EXPECT_THAT(Rows("split"), IsEmpty());
}

TEST_F(ReassignDischargeTest, MovingAPartDividesAWeighing) {
  Weigh({.lot = 1, .kilos = 1000});
  Move(0.25);
  EXPECT_THAT(Weighings(), ElementsAre("1|1|1"));
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.75", "1|1|2|0.25"));
  EXPECT_THAT(Rows("select descarga, parcialpeso from ExtPesada order by descarga"),
              ElementsAre("1|750", "2|250"));
  EXPECT_THAT(Rows("split"), IsEmpty());
}

TEST_F(ReassignDischargeTest, MovingAPartAgainRaisesTheShareThatIsThere) {
  Weigh({.lot = 1});
  Move(0.25);
  Move(0.25);
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.5625", "1|1|2|0.4375"));
}

TEST_F(ReassignDischargeTest, MovesDividedAndUndividedWeighingsTogether) {
  Weigh({.lot = 1});
  Weigh({.lot = 2});
  Divide(2, "0.5", "0.5");
  Move(0.5);
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.5", "1|1|2|0.5", "2|1|1|0.25", "2|1|2|0.75"));
}

TEST_F(ReassignDischargeTest, MovesASharedWeighingToAThirdDischarge) {
  Weigh({.lot = 1});
  Divide(1, "0.5", "0.5");
  EXPECT_TRUE(ReassignDischarge(session, 1, 2, 3, 9, 0.5));
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.5", "1|1|2|0.25", "1|3|9|0.25"));
}

TEST_F(ReassignDischargeTest, MovingTheRestOfADividedWeighingMakesItWhole) {
  Weigh({.lot = 1});
  Divide(1, "0.25", "0.75");
  Move(1);
  EXPECT_THAT(Weighings(), ElementsAre("1|1|2"));
  EXPECT_THAT(Shares(), IsEmpty());
}

TEST_F(ReassignDischargeTest, DoesNotTouchWeighingsOfOtherDischarges) {
  Weigh({.lot = 1, .hopper = 2, .discharge = 1});
  Weigh({.lot = 2, .hopper = 1, .discharge = 3});
  Weigh({.lot = 3, .hopper = -1, .discharge = 0});
  const std::string before = Dump();
  Move(0.5);
  EXPECT_EQ(Dump(), before);
}

TEST_F(ReassignDischargeTest, DoesNotTakeADividedWeighingForItsFormerDischarge) {
  // PESADA still says discharge 1, where none of it is any more.
  Weigh({.lot = 1});
  Execute("insert into splitDescar values (1, 1, 0, 1, 3, 1, 0.5)");
  Execute("insert into splitDescar values (1, 1, 0, 1, 3, 2, 0.5)");
  const std::string before = Dump();
  Move(0.5);
  EXPECT_EQ(Dump(), before);
}

TEST_F(ReassignDischargeTest, TellsWeighingsApartByAllFourKeyColumns) {
  Weigh({.lot = 7});
  Weigh({.lot = 7, .discharge = 3, .product = 2});
  Weigh({.lot = 7, .discharge = 3, .cooperative = 2});
  Weigh({.lot = 7, .discharge = 3, .half = 1});
  Move(0.5);
  EXPECT_THAT(Rows("select cooperativa, mediana, codpro, descarga from splitDescar"),
              ElementsAre("1|0|1|1", "1|0|1|2"));
}

TEST_F(ReassignDischargeTest, AShareNearOneIsTheWholeWeighing) {
  Weigh({.lot = 1});
  Move(0.9995);
  EXPECT_THAT(Weighings(), ElementsAre("1|1|2"));
  EXPECT_THAT(Shares(), IsEmpty());
}

TEST_F(ReassignDischargeTest, AShareNearZeroIsDropped) {
  Weigh({.lot = 1});
  Move(0.0005);
  EXPECT_THAT(Weighings(), ElementsAre("1|1|1"));
  EXPECT_THAT(Shares(), IsEmpty());
}

TEST_F(ReassignDischargeTest, TheBoundsThemselvesAreAWholeAndAShare) {
  Weigh({.lot = 1});
  Divide(1, "0.001", "0.999");
  Execute("insert into splitDescar values (1, 2, 0, 1, 1, 1, 0.0009)");
  Execute("insert into splitDescar values (1, 2, 0, 1, 1, 2, 0.9989)");
  EXPECT_TRUE(ReassignDischarge(session, 4, 1, 4, 2, 0.5));
  EXPECT_THAT(Weighings(), ElementsAre("1|1|2"));
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.001", "2|1|2|0.9989"));
}

TEST_F(ReassignDischargeTest, ADroppedRestIsLostFromTheSum) {
  Weigh({.lot = 1, .kilos = 1000});
  Divide(1, "0.5", "0.5");
  Execute("update splitDescar set fraccion=0.0005 where descarga=1");
  Move(0.5);
  EXPECT_THAT(Rows("select parcialpeso from ExtPesada"), ElementsAre("500.25"));
}

TEST_F(ReassignDischargeTest, OntoItselfDropsEveryShareOfTheDischarge) {
  Weigh({.lot = 1});
  Weigh({.lot = 2});
  Divide(2, "0.25", "0.75");
  EXPECT_TRUE(ReassignDischarge(session, 1, 1, 1, 1, 1));
  EXPECT_THAT(Weighings(), ElementsAre("1|1|1", "2|1|1"));
  EXPECT_THAT(Shares(), ElementsAre("2|1|2|0.75"));
}

TEST_F(ReassignDischargeTest, EmptiesWhatTheWorkTableHeld) {
  Weigh({.lot = 1});
  Execute("insert into split values (1, 9, 0, 1, 1, 2, 0.5)");
  Move(0.5);
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.5", "1|1|2|0.5"));
  EXPECT_THAT(Rows("split"), IsEmpty());
}

TEST_F(ReassignDischargeTest, ADischargeNumberAbove16BitsRaisesWithTheLevelOpen) {
  Weigh({.lot = 1});
  const std::string before = Dump();
  EXPECT_THAT(
      Sent([&] { EXPECT_EQ(ErrorOf([&] { ReassignDischarge(session, 1, 40000, 1, 1, 1); }), 6); }),
      ElementsAre("begin"));
  EXPECT_EQ(probe->level, 1);
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(ReassignDischargeTest, EveryFailureReachesTheCallerAndIsRolledBackByTheClosing) {
  Weigh({.lot = 1});
  Weigh({.lot = 2});
  Weigh({.lot = 3});
  Divide(2, "0.5", "0.5");
  Divide(3, "0.9985", "0.0015");
  EXPECT_EQ(FailAtEveryRequest([&] { Move(0.5); }), 12);
  EXPECT_THAT(Shares(), ElementsAre("1|1|1|0.5", "1|1|2|0.5", "2|1|1|0.25", "2|1|2|0.75",
                                    "3|1|1|0.49925", "3|1|2|0.50075"));
}

}  // namespace
}  // namespace ambrelio
