#include <limits>

#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"
#include "support/sent.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class TolvaDescargar : public test::MillTest {
 protected:
  // Discharge 17 is open, with 1000 kg in one weighing.
  void SetUp() override {
    MillTest::SetUp();
    Execute("insert into Descargas values (3, 17, #11/14/2026 7:30:0#, Null, 0, 0, Null)");
    Weigh({.lot = 1, .hopper = 3, .discharge = 17, .kilos = 1000});
  }

  bool Discharge(double share) { return hopper.Descargar(5, 2, share); }
  // What became of the share that the caller handed in.
  double WrittenBack(double share) {
    hopper.Descargar(5, 2, share);
    return share;
  }
  void ExpectWholeDischarge() {
    EXPECT_THAT(Rows("Descargas"), ElementsAre("3|17|2026-11-14 07:30:00|2026-11-15 08:00:00|2|5|1",
                                               "3|18|2026-11-15 08:00:00|Null|0|0|Null"));
    EXPECT_THAT(Weighings(), ElementsAre("1|3|17"));
    EXPECT_THAT(Shares(), IsEmpty());
  }
  void ExpectRefused(double share, const std::vector<std::string>& sent) {
    const std::string before = Dump();
    EXPECT_EQ(Sent([&] { EXPECT_FALSE(Discharge(share)); }), sent);
    EXPECT_EQ(probe->level, 0);
    EXPECT_EQ(Dump(), before);
  }

  Tolva hopper{session, 3};
};

const char kClose[] =
    "update Descargas set Deposito= 5, MomentoHasta= #11/15/2026 8:0:0#, Molino= 2, "
    "Fraccion= 1.00000000 where (TOLVA=3) and (DESCARGA=17)  and (Deposito=0) ";
const char kOpenNext[] =
    "insert into Descargas "
    "(Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, Fraccion) values "
    "(3, 18, #11/15/2026 8:0:0#, Null, 0, 0, Null) ";

TEST_F(TolvaDescargar, ClosesTheCurrentDischargeAndOpensTheNext) {
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(hopper.Descargar(5, 2)); }),
              ElementsAre("begin", kSelectLast, kClose, kOpenNext, "commit"));
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, IsDurable) {
  ASSERT_TRUE(hopper.Descargar(5, 2));
  Reopen();
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, AShareOfZeroIsAll) {
  EXPECT_EQ(WrittenBack(0), 1);
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, AShareAboveOneIsAll) {
  EXPECT_EQ(WrittenBack(3), 1);
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, AnInfiniteShareIsAll) {
  EXPECT_EQ(WrittenBack(std::numeric_limits<double>::infinity()), 1);
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, AShareOfOneIsAll) {
  EXPECT_EQ(WrittenBack(1), 1);
  ExpectWholeDischarge();
}

TEST_F(TolvaDescargar, APartKeepsTheRestInTheHopper) {
  EXPECT_EQ(WrittenBack(0.25), 0.25);
  EXPECT_THAT(Rows("Descargas"), ElementsAre("3|17|2026-11-14 07:30:00|2026-11-15 08:00:00|2|5|1",
                                             "3|18|2026-11-15 08:00:00|Null|0|0|Null"));
  EXPECT_THAT(Shares(), ElementsAre("1|3|17|0.25", "1|3|18|0.75"));
  EXPECT_DOUBLE_EQ(hopper.Acumulado(), 750);
}

TEST_F(TolvaDescargar, APartIsReassignedInsideTheTransaction) {
  const auto sent = Sent([&] { EXPECT_TRUE(Discharge(0.25)); });
  ASSERT_EQ(sent.size(), 17U);
  EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 6),
              ElementsAre("begin", kSelectLast, kClose, kOpenNext, "begin", "delete from split"));
  EXPECT_THAT(sent[6], HasSubstr("select cooperativa, partida, mediana, codpro, 3 as tolva, "
                                 "18 as descarga, fraccion * 0.75000000 as frac "
                                 "from splitDescar where (tolva=3) and (descarga=17) "));
  EXPECT_THAT(std::vector(sent.end() - 3, sent.end()),
              ElementsAre("delete from split", "commit", "commit"));
}

TEST_F(TolvaDescargar, PartsOfPartsAddUp) {
  ASSERT_TRUE(Discharge(0.5));
  Weigh({.lot = 2, .hopper = 3, .discharge = 18, .kilos = 200});
  ASSERT_TRUE(Discharge(0.5));
  EXPECT_THAT(Shares(),
              ElementsAre("1|3|17|0.5", "1|3|18|0.25", "1|3|19|0.25", "2|3|18|0.5", "2|3|19|0.5"));
  EXPECT_DOUBLE_EQ(hopper.Acumulado(), 350);
}

TEST_F(TolvaDescargar, APartIsTheSameUnderACommaLocale) {
  const ScopedLocale spanish(Locale::FromName("es_ES"));
  EXPECT_TRUE(Discharge(0.25));
  EXPECT_DOUBLE_EQ(hopper.Acumulado(), 750);
}

TEST_F(TolvaDescargar, RefusesANegativeShare) {
  ExpectRefused(-0.5, {});
  EXPECT_EQ(WrittenBack(-0.5), -0.5);
}

TEST_F(TolvaDescargar, RefusesAShareThatIsNoNumber) {
  ExpectRefused(std::numeric_limits<double>::quiet_NaN(), {});
}

TEST_F(TolvaDescargar, RefusesWhenTheCurrentDischargeNamesATank) {
  Execute("update Descargas set Deposito=1");
  ExpectRefused(1, {"begin", kSelectLast, "rollback"});
}

TEST_F(TolvaDescargar, WritesTheShareBackAlsoWhenTheDischargeIsRefused) {
  Execute("update Descargas set Deposito=1");
  EXPECT_EQ(WrittenBack(3), 1);
}

TEST_F(TolvaDescargar, RefusesWithoutACurrentDischarge) {
  Execute("update Descargas set Descarga=0");
  ExpectRefused(1, {"begin", kSelectLast, "rollback"});
}

TEST_F(TolvaDescargar, RefusesWhenTheNextDischargeCannotBeOpened) {
  const std::string before = Dump();
  probe->SkipAt(4);
  EXPECT_THAT(Sent([&] { EXPECT_FALSE(Discharge(1)); }),
              ElementsAre("begin", kSelectLast, kClose, kOpenNext, "rollback"));
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaDescargar, DoesNotAskWhetherTheClosingWroteARow) {
  probe->SkipAt(3);
  EXPECT_TRUE(Discharge(1));
  EXPECT_THAT(Rows("select Descarga, Deposito from Descargas"), ElementsAre("17|0", "18|0"));
}

TEST_F(TolvaDescargar, AnUntouchedHopperDischargesItsFirstDischarge) {
  EXPECT_TRUE(Tolva(session, 2).Descargar(5, 2));
  EXPECT_THAT(Rows("select * from Descargas where Tolva=2"),
              ElementsAre("2|1|2026-11-15 08:00:00|2026-11-15 08:00:00|2|5|1",
                          "2|2|2026-11-15 08:00:00|Null|0|0|Null"));
}

// Tanks and mill lines are the host's to choose.
TEST_F(TolvaDescargar, TakesAnyTankAndMillLine) {
  EXPECT_TRUE(hopper.Descargar(-32768, 32767));
  EXPECT_THAT(Rows("select Deposito, Molino from Descargas where Descarga=17"),
              ElementsAre("-32768|32767"));
}

class TickingClock : public Clock {
 public:
  OleDate Now() const override {
    CivilTime time = test::At("2026-11-15 08:00:00").Civil();
    time.second = ++seconds_;
    return OleDate::FromCivil(time).value();
  }

 private:
  mutable int seconds_ = 0;
};

TEST_F(TolvaDescargar, ReadsTheMomentForEachStatement) {
  const TickingClock ticking;
  const ScopedClock scope(ticking);
  EXPECT_TRUE(Discharge(1));
  EXPECT_THAT(Rows("select MomentoDesde, MomentoHasta from Descargas"),
              ElementsAre("2026-11-14 07:30:00|2026-11-15 08:00:01", "2026-11-15 08:00:02|Null"));
}

TEST_F(TolvaDescargar, ANumberBeyondTheLastRaisesWithItsLevelOpen) {
  Execute("update Descargas set Descarga=2147483647");
  const std::string before = Dump();
  EXPECT_EQ(ErrorOf([&] { Discharge(1); }), 6);
  EXPECT_EQ(probe->level, 1);
  EXPECT_THAT(Rows("select Deposito from Descargas"), ElementsAre("5"));
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaDescargar, APartBeyond16BitsRaisesWithBothLevelsOpen) {
  Execute("update Descargas set Descarga=32767");
  const std::string before = Dump();
  EXPECT_EQ(ErrorOf([&] { Discharge(0.5); }), 6);
  EXPECT_EQ(probe->level, 2);
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaDescargar, AWholeDischargeHasNo16BitLimit) {
  Execute("update Descargas set Descarga=32767");
  EXPECT_TRUE(Discharge(1));
  EXPECT_EQ(hopper.DescargaEnCurso(), 32768);
}

TEST_F(TolvaDescargar, EveryFailureReachesTheCallerAndIsRolledBackByTheClosing) {
  EXPECT_EQ(FailAtEveryRequest([&] { EXPECT_TRUE(Discharge(0.25)); }), 17);
  EXPECT_DOUBLE_EQ(hopper.Acumulado(), 750);
}

TEST_F(TolvaDescargar, AfterAFailureLaterDischargesAreLostAtTheClosing) {
  const std::string before = Dump();
  probe->FailAt(4, 3218);
  ASSERT_EQ(ErrorOf([&] { Discharge(1); }), 3218);
  EXPECT_TRUE(Tolva(session, 2).Descargar(5, 2));
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(TolvaDescargar, AfterFiveLeakedLevelsNoneCanBegin) {
  for (int i = 0; i < 5; ++i) {
    probe->FailAt(2, 3218);
    ASSERT_EQ(ErrorOf([&] { Discharge(1); }), 3218);
  }
  EXPECT_EQ(ErrorOf([&] { Discharge(1); }), 3003);
  Reopen();
  EXPECT_TRUE(Discharge(1));
}

TEST_F(TolvaDescargar, NeedsAnOpenDatabase) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { Discharge(1); }), 3420);
}

}  // namespace
}  // namespace ambrelio
