#include <limits>

#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Trasegar : public test::MillTest {
 protected:
  // Discharge 17 of hopper 1 holds 1000 kg; discharge 5 of hopper 2 is open and empty.
  void SetUp() override {
    MillTest::SetUp();
    Execute("insert into Descargas values (1, 17, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
    Execute("insert into Descargas values (2, 5, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
    Weigh({.lot = 1, .hopper = 1, .discharge = 17, .kilos = 1000});
  }
  void ExpectRefusedUnasked(int16_t from, int16_t to, double share = 0.5) {
    EXPECT_THAT(Sent([&] { EXPECT_FALSE(root.Trasegar(from, to, share)); }), IsEmpty());
  }
};

TEST_F(Trasegar, MovesEverythingWithoutAShare) {
  EXPECT_TRUE(root.Trasegar(1, 2));
  EXPECT_THAT(Weighings(), ElementsAre("1|2|5"));
  EXPECT_THAT(Shares(), IsEmpty());
}

TEST_F(Trasegar, MovesEverythingForAShareAboveOne) {
  EXPECT_TRUE(root.Trasegar(1, 2, 1.5));
  EXPECT_THAT(Weighings(), ElementsAre("1|2|5"));
}

TEST_F(Trasegar, MovesAPart) {
  EXPECT_TRUE(root.Trasegar(1, 2, 0.25));
  EXPECT_THAT(Shares(), ElementsAre("1|1|17|0.75", "1|2|5|0.25"));
  EXPECT_DOUBLE_EQ(root.Tolva(1)->Acumulado(), 750);
  EXPECT_DOUBLE_EQ(root.Tolva(2)->Acumulado(), 250);
}

TEST_F(Trasegar, ReadsBothDischargesAndReassignsInOneLevel) {
  const auto sent = Sent([&] { EXPECT_TRUE(root.Trasegar(1, 2, 0.25)); });
  ASSERT_EQ(sent.size(), 14U);
  EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 4),
              ElementsAre("select * from Descargas where (Tolva=1) order by Descarga ",
                          "select * from Descargas where (Tolva=2) order by Descarga ", "begin",
                          "delete from split"));
  EXPECT_EQ(sent.back(), "commit");
}

TEST_F(Trasegar, ChangesNoDischarge) {
  const auto before = Rows("Descargas");
  EXPECT_TRUE(root.Trasegar(1, 2, 0.25));
  EXPECT_EQ(Rows("Descargas"), before);
}

TEST_F(Trasegar, MakesTheFirstDischargeOfAnUntouchedHopper) {
  EXPECT_TRUE(root.Trasegar(1, 3));
  EXPECT_THAT(Weighings(), ElementsAre("1|3|1"));
}

TEST_F(Trasegar, RefusesANegativeShare) { ExpectRefusedUnasked(1, 2, -0.1); }

TEST_F(Trasegar, RefusesAShareThatIsNoNumber) {
  ExpectRefusedUnasked(1, 2, std::numeric_limits<double>::quiet_NaN());
}

TEST_F(Trasegar, RefusesTheSameHopperTwice) { ExpectRefusedUnasked(2, 2); }

TEST_F(Trasegar, RefusesHoppersThatDoNotExist) {
  ExpectRefusedUnasked(0, 2);
  ExpectRefusedUnasked(-1, 2);
  ExpectRefusedUnasked(5, 2);
  ExpectRefusedUnasked(1, 0);
  ExpectRefusedUnasked(1, -1);
  ExpectRefusedUnasked(1, 5);
}

TEST_F(Trasegar, RefusesWithoutACurrentDischargeAtEitherEnd) {
  Execute("insert into Descargas values (3, 0, #11/15/2026 7:0:0#, Null, 0, 0, Null)");
  const std::string before = Dump();
  EXPECT_FALSE(root.Trasegar(3, 1));
  EXPECT_FALSE(root.Trasegar(1, 3));
  EXPECT_EQ(Dump(), before);
}

TEST_F(Trasegar, ADischargeNumberAbove16BitsRaisesWithItsLevelOpen) {
  Execute("update Descargas set Descarga=40000 where Tolva=2");
  const std::string before = Dump();
  EXPECT_EQ(ErrorOf([&] { root.Trasegar(1, 2); }), 6);
  EXPECT_EQ(probe->level, 1);
  Reopen();
  EXPECT_EQ(Dump(), before);
}

TEST_F(Trasegar, EveryFailureReachesTheCallerAndIsRolledBackByTheClosing) {
  EXPECT_EQ(FailAtEveryRequest([&] { EXPECT_TRUE(root.Trasegar(1, 2, 0.25)); }), 14);
  EXPECT_THAT(Shares(), ElementsAre("1|1|17|0.75", "1|2|5|0.25"));
}

TEST_F(Trasegar, NeedsAnOpenDatabase) {
  root.Cerrar();
  EXPECT_EQ(ErrorOf([&] { root.Trasegar(1, 2); }), 3420);
}

}  // namespace
}  // namespace ambrelio
