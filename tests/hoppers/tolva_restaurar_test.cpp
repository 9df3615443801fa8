#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"
#include "support/sent.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TolvaRestaurarCarga : public test::MillTest {
 protected:
  // Discharge 17, with 1000 kg in one weighing, was open since yesterday.
  void SetUp() override {
    MillTest::SetUp();
    Execute("insert into Descargas values (3, 17, #11/14/2026 7:30:0#, Null, 0, 0, Null)");
    Weigh({.lot = 1, .hopper = 3, .discharge = 17, .kilos = 1000});
    before_ = Dump();
  }

  void Discharge(double share = 1) { ASSERT_TRUE(hopper.Descargar(5, 2, share)); }
  void Empty(int tank, const std::string& moment) {
    Execute("insert into Vaciados (Deposito, Vaciado, mmto) values (" + std::to_string(tank) +
            ", 1, " + data::SqlDate(At(moment)) + ")");
  }
  void ExpectRefused(const std::vector<std::string>& sent) {
    const std::string before = Dump();
    EXPECT_EQ(Sent([&] { EXPECT_FALSE(hopper.RestaurarCarga()); }), sent);
    EXPECT_EQ(probe->level, 0);
    EXPECT_EQ(Dump(), before);
  }

  Tolva hopper{session, 3};
  std::string before_;
};

const char kDelete[] = "delete from Descargas where (TOLVA=3) and (DESCARGA=18) ";
const char kSelectEmptied[] = "select max(mmto) from Vaciados where Deposito=5";
const char kReopen[] =
    "update Descargas set MomentoHasta= Null, Molino= 0, Deposito=0, Fraccion=Null "
    "where (TOLVA=3) and (DESCARGA=17) ";

TEST_F(TolvaRestaurarCarga, UndoesAWholeDischarge) {
  Discharge();
  const auto sent = Sent([&] { EXPECT_TRUE(hopper.RestaurarCarga()); });
  ASSERT_EQ(sent.size(), 19U);
  EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 8),
              ElementsAre("begin", kSelectLast, kDelete, kSelectLast, kSelectEmptied, kReopen,
                          "begin", "delete from split"));
  EXPECT_EQ(sent[8],
            "insert into split (cooperativa, partida, mediana, codpro, tolva, descarga, fraccion) "
            "select cooperativa, partida, mediana, codpro, 3 as tolva, 17 as descarga, "
            "fraccion * 1.00000000 as frac from splitDescar where (tolva=3) and (descarga=18) ");
  EXPECT_THAT(std::vector(sent.end() - 3, sent.end()),
              ElementsAre("delete from split", "commit", "commit"));
  EXPECT_EQ(Dump(), before_);
}

TEST_F(TolvaRestaurarCarga, UndoesAPartialDischarge) {
  Discharge(0.25);
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_EQ(Dump(), before_);
}

TEST_F(TolvaRestaurarCarga, IsDurable) {
  Discharge(0.25);
  ASSERT_TRUE(hopper.RestaurarCarga());
  Reopen();
  EXPECT_EQ(Dump(), before_);
}

TEST_F(TolvaRestaurarCarga, TakesWhatWasTippedInMeanwhileAlong) {
  Discharge(0.25);
  Weigh({.lot = 2, .hopper = 3, .discharge = 18, .kilos = 200});
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_THAT(Weighings(), ElementsAre("1|3|17", "2|3|17"));
  EXPECT_THAT(Shares(), IsEmpty());
  EXPECT_DOUBLE_EQ(hopper.Acumulado(), 1200);
}

TEST_F(TolvaRestaurarCarga, UndoesDischargesOneAfterTheOther) {
  Discharge(0.5);
  Discharge(0.5);
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_THAT(Shares(), ElementsAre("1|3|17|0.5", "1|3|18|0.5"));
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_EQ(Dump(), before_);
}

TEST_F(TolvaRestaurarCarga, RefusesOnceTheTankWasEmptied) {
  Discharge();
  Empty(5, "2026-11-15 08:00:01");
  ExpectRefused({"begin", kSelectLast, kDelete, kSelectLast, kSelectEmptied, "rollback"});
}

TEST_F(TolvaRestaurarCarga, AnEmptyingAtTheSameMomentIsNotLater) {
  Discharge();
  Empty(5, "2026-11-15 08:00:00");
  EXPECT_TRUE(hopper.RestaurarCarga());
}

TEST_F(TolvaRestaurarCarga, OtherTanksDoNotMatter) {
  Discharge();
  Empty(4, "2026-11-15 09:00:00");
  EXPECT_TRUE(hopper.RestaurarCarga());
}

TEST_F(TolvaRestaurarCarga, AnEmptyingWithoutAMomentIsNotLater) {
  Discharge();
  Execute("insert into Vaciados (Deposito, Vaciado, mmto) values (5, 1, Null)");
  EXPECT_TRUE(hopper.RestaurarCarga());
}

TEST_F(TolvaRestaurarCarga, MakesAnOnlyDischargeAnew) {
  Execute("update Descargas set Descarga=1");
  Execute("update PESADA set DESCARGA=1");
  const auto sent = Sent([&] { EXPECT_TRUE(hopper.RestaurarCarga()); });
  EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 6),
              ElementsAre("begin", kSelectLast,
                          "delete from Descargas where (TOLVA=3) and (DESCARGA=1) ", kSelectLast,
                          "insert into Descargas "
                          "(Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
                          "values (3, 1, #11/15/2026 8:0:0#, Null, 0, Null) ",
                          kSelectLast));
  EXPECT_THAT(Rows("Descargas"), ElementsAre("3|1|2026-11-15 08:00:00|Null|0|0|Null"));
  EXPECT_THAT(Weighings(), ElementsAre("1|3|1"));
  EXPECT_THAT(Shares(), IsEmpty());
}

TEST_F(TolvaRestaurarCarga, AnUntouchedHopperStaysWithItsFirstDischarge) {
  EXPECT_TRUE(Tolva(session, 2).RestaurarCarga());
  EXPECT_THAT(Rows("select * from Descargas where Tolva=2"),
              ElementsAre("2|1|2026-11-15 08:00:00|Null|0|0|Null"));
}

TEST_F(TolvaRestaurarCarga, DeletesTheLastDischargeWhateverItsState) {
  Execute("insert into Descargas values (3, 18, #11/15/2026 7:0:0#, #11/15/2026 7:45:0#, 1, 2, 1)");
  Weigh({.lot = 2, .hopper = 3, .discharge = 18});
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_EQ(hopper.DescargaEnCurso(), 17);
  EXPECT_THAT(Weighings(), ElementsAre("1|3|17", "2|3|17"));
}

TEST_F(TolvaRestaurarCarga, DeletesTheLastDischargeFromAllItsTanks) {
  for (const char* tank : {"1", "2"}) {
    Execute("insert into Descargas values (3, 18, #11/15/2026 7:0:0#, Null, 1, " +
            std::string(tank) + ", 0.5)");
  }
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_EQ(Dump(), before_);
}

// Of the rows that would all become tank 0, the first in key order does.
TEST_F(TolvaRestaurarCarga, OfSeveralTanksTheLowestIsReopened) {
  Discharge();
  Execute(
      "insert into Descargas values (3, 17, #11/14/2026 7:30:0#, #11/15/2026 8:0:0#, 2, 6, 0.25)");
  EXPECT_TRUE(hopper.RestaurarCarga());
  EXPECT_THAT(Rows("Descargas"),
              ElementsAre("3|17|2026-11-14 07:30:00|Null|0|0|Null",
                          "3|17|2026-11-14 07:30:00|2026-11-15 08:00:00|2|6|0.25"));
}

TEST_F(TolvaRestaurarCarga, OfSeveralTanksTheHighestDecides) {
  Discharge();
  Execute(
      "insert into Descargas values (3, 17, #11/14/2026 7:30:0#, #11/15/2026 8:0:0#, 2, 6, 0.25)");
  Empty(5, "2026-11-15 09:00:00");
  Empty(6, "2026-11-15 09:00:00");
  ExpectRefused({"begin", kSelectLast, kDelete, kSelectLast,
                 "select max(mmto) from Vaciados where Deposito=6", "rollback"});
  Execute("delete from Vaciados where Deposito=6");
  EXPECT_TRUE(hopper.RestaurarCarga());
}

TEST_F(TolvaRestaurarCarga, RefusesWithoutACurrentDischarge) {
  Execute("update Descargas set Descarga=0");
  ExpectRefused({"begin", kSelectLast, "rollback"});
}

TEST_F(TolvaRestaurarCarga, RefusesWhenTheDischargeCannotBeDeleted) {
  Discharge();
  const std::string before = Dump();
  probe->SkipAt(3);
  EXPECT_THAT(Sent([&] { EXPECT_FALSE(hopper.RestaurarCarga()); }),
              ElementsAre("begin", kSelectLast, kDelete, "rollback"));
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaRestaurarCarga, RefusesWithoutADischargeBefore) {
  Execute("update Descargas set Descarga=0");
  Execute("insert into Descargas values (3, 18, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
  ExpectRefused({"begin", kSelectLast, kDelete, kSelectLast, "rollback"});
}

TEST_F(TolvaRestaurarCarga, RefusesWhenTheDischargeBeforeCannotBeReopened) {
  Discharge();
  const std::string before = Dump();
  probe->SkipAt(6);
  EXPECT_THAT(
      Sent([&] { EXPECT_FALSE(hopper.RestaurarCarga()); }),
      ElementsAre("begin", kSelectLast, kDelete, kSelectLast, kSelectEmptied, kReopen, "rollback"));
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaRestaurarCarga, ANumberAbove16BitsRaisesWithBothLevelsOpen) {
  Execute("update Descargas set Descarga=32768");
  Execute("update PESADA set DESCARGA=32768");
  Discharge();
  const std::string before = Dump();
  EXPECT_EQ(ErrorOf([&] { hopper.RestaurarCarga(); }), 6);
  EXPECT_EQ(probe->level, 2);
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaRestaurarCarga, EveryFailureReachesTheCallerAndIsRolledBackByTheClosing) {
  Discharge(0.25);
  EXPECT_EQ(FailAtEveryRequest([&] { EXPECT_TRUE(hopper.RestaurarCarga()); }), 19);
  EXPECT_EQ(Dump(), before_);
}

}  // namespace
}  // namespace ambrelio
