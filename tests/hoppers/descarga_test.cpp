#include "ambrelio/hoppers/descarga.h"

#include <limits>

#include "ambrelio/hoppers/tolva.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;

class DescargaTest : public test::MillTest {
 protected:
  void SetUp() override {
    MillTest::SetUp();
    Execute(
        "insert into Descargas values (3, 17, #11/14/2026 7:30:0#, #11/14/2026 9:0:5#, 1, 2, 1)");
    Execute("insert into Descargas values (3, 18, #11/14/2026 9:0:5#, Null, 0, 0, Null)");
  }

  Descarga discharge{session, 3, 17};
};

TEST_F(DescargaTest, KnowsItsKeyWithoutTheDatabase) {
  root.Cerrar();
  EXPECT_EQ(discharge.Tolva(), 3);
  EXPECT_EQ(discharge.Codigo(), 17);
  EXPECT_STREQ(discharge.ClassName(), "Descarga");
}

TEST_F(DescargaTest, ReadsItsMoments) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(discharge.MomentoDesde(), At("2026-11-14 07:30:00")); }),
              ElementsAre("select MomentoDesde from Descargas where (Tolva=3) and (Descarga=17) "));
  EXPECT_THAT(Sent([&] { EXPECT_EQ(discharge.MomentoHasta(), At("2026-11-14 09:00:05")); }),
              ElementsAre("select MomentoHasta from Descargas where (Tolva=3) and (Descarga=17) "));
}

TEST_F(DescargaTest, AnOpenDischargeEndsAtTheZeroDate) {
  EXPECT_EQ(Descarga(session, 3, 18).MomentoHasta(), OleDate());
}

TEST_F(DescargaTest, ReadsAsNothingOnceDeleted) {
  Execute("delete from Descargas");
  EXPECT_EQ(discharge.MomentoDesde(), OleDate());
  EXPECT_EQ(discharge.MomentoHasta(), OleDate());
  EXPECT_EQ(discharge.Kilos(), 0);
}

TEST_F(DescargaTest, WritesNumbersWithTheirSign) {
  Descarga odd(session, -3, std::numeric_limits<int32_t>::min());
  EXPECT_THAT(Sent([&] { EXPECT_EQ(odd.MomentoDesde(), OleDate()); }),
              ElementsAre("select MomentoDesde from Descargas where "
                          "(Tolva=-3) and (Descarga=-2147483648) "));
}

TEST_F(DescargaTest, WeighsNothingWithoutWeighings) { EXPECT_EQ(discharge.Kilos(), 0); }

TEST_F(DescargaTest, WeighsItsWeighings) {
  Weigh({.lot = 1, .hopper = 3, .discharge = 17, .kilos = 1000.25});
  Weigh({.lot = 2, .hopper = 3, .discharge = 17, .kilos = 500});
  Weigh({.lot = 3, .hopper = 3, .discharge = 18, .kilos = 250});
  EXPECT_THAT(Sent([&] { EXPECT_DOUBLE_EQ(discharge.Kilos(), 1500.25); }),
              ElementsAre("select sum(PARCIALPESO) as pes from ExtPesada where "
                          "(TOLVA=3) and (DESCARGA=17) "));
}

TEST_F(DescargaTest, WeighsHalfWhenHalfWasReassigned) {
  Execute("delete from Descargas where Descarga=18");
  Execute("update Descargas set Deposito=0, MomentoHasta=Null");
  Weigh({.lot = 1, .hopper = 3, .discharge = 17, .kilos = 1000});
  double half = 0.5;
  ASSERT_TRUE(Tolva(session, 3).Descargar(2, 1, half));
  EXPECT_DOUBLE_EQ(discharge.Kilos(), 500);
}

TEST_F(DescargaTest, IsBrokenDownByMember) {
  Execute("insert into SOCIO (CODSOC, NOMSOC) values (12, 'Hacienda El Pilar')");
  Weigh({.lot = 1, .hopper = 3, .discharge = 17, .kilos = 750, .member = 12});
  Weigh({.lot = 2, .hopper = 3, .discharge = 17, .kilos = 250, .member = 13});
  Weigh({.lot = 3, .hopper = 3, .discharge = 18, .kilos = 250, .member = 14});
  EXPECT_EQ(test::Show(discharge.Composicion(1)),
            "[[12, Hacienda El Pilar, 75, 750], [13, , 25, 250]]");
}

TEST_F(DescargaTest, HasNoMillLineToBeBrokenDownBy) {
  Weigh({.lot = 1, .hopper = 3, .discharge = 17});
  EXPECT_TRUE(discharge.Composicion(5).is_empty());
}

TEST_F(DescargaTest, FailuresReachTheCaller) {
  for (const auto& member : std::vector<std::function<void()>>{
           [&] { discharge.Kilos(); }, [&] { discharge.MomentoDesde(); },
           [&] { discharge.MomentoHasta(); }, [&] { discharge.Composicion(1); }}) {
    probe->FailAt(1, 3218);
    EXPECT_EQ(ErrorOf(member), 3218);
  }
}

}  // namespace
}  // namespace ambrelio
