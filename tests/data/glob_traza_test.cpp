#include "ambrelio/data/glob_traza.h"

#include <limits>

#include "support/mill.h"
#include "support/sent.h"

namespace ambrelio::data {
namespace {

using test::At;
using ::testing::ElementsAre;

using GlobTraza = test::MillTest;

const char kInsertFirst[] =
    "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
    "values (3, 1, #11/15/2026 8:0:0#, Null, 0, Null) ";

TEST_F(GlobTraza, InsertsAnOpenFirstDischarge) {
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(InsertFirstDischarge(session, 3)); }),
              ElementsAre(kInsertFirst));
  EXPECT_THAT(Rows("Descargas"), ElementsAre("3|1|2026-11-15 08:00:00|Null|0|0|Null"));
}

TEST_F(GlobTraza, InsertsNoSecondFirstDischarge) {
  ASSERT_TRUE(InsertFirstDischarge(session, 3));
  const std::string before = Dump();
  EXPECT_FALSE(InsertFirstDischarge(session, 3));
  EXPECT_EQ(Dump(), before);
}

TEST_F(GlobTraza, CurrentDischargeOfAnUntouchedHopperIsMade) {
  std::optional<Discharge> current;
  EXPECT_THAT(Sent([&] { current = CurrentDischarge(session, 3); }),
              ElementsAre(kSelectLast, kInsertFirst, kSelectLast));
  ASSERT_TRUE(current);
  EXPECT_EQ(current->number, 1);
  EXPECT_EQ(current->start, At("2026-11-15 08:00:00"));
  EXPECT_EQ(current->tank, 0);
}

TEST_F(GlobTraza, CurrentDischargeHasTheHighestNumberOfItsHopper) {
  Execute("insert into Descargas values (3, 9, #11/1/2026 7:0:0#, Null, 0, 4, Null)");
  Execute("insert into Descargas values (3, 10, #11/2/2026 7:0:0#, Null, 0, 5, Null)");
  Execute("insert into Descargas values (2, 11, #11/3/2026 7:0:0#, Null, 0, 6, Null)");
  std::optional<Discharge> current;
  EXPECT_THAT(Sent([&] { current = CurrentDischarge(session, 3); }), ElementsAre(kSelectLast));
  ASSERT_TRUE(current);
  EXPECT_EQ(current->number, 10);
  EXPECT_EQ(current->start, At("2026-11-02 07:00:00"));
  EXPECT_EQ(current->tank, 5);
}

TEST_F(GlobTraza, OfSeveralRowsOfADischargeTheHighestTankIsCurrent) {
  Execute("insert into Descargas values (3, 1, #11/1/2026 7:0:0#, Null, 0, 5, 0.5)");
  Execute("insert into Descargas values (3, 1, #11/1/2026 7:0:0#, Null, 0, 2, 0.5)");
  EXPECT_EQ(CurrentDischarge(session, 3)->tank, 5);
}

TEST_F(GlobTraza, CurrentDischargeFailsWhenNoneCanBeInserted) {
  probe->SkipAt(2);
  EXPECT_FALSE(CurrentDischarge(session, 3));
  EXPECT_THAT(Rows("Descargas"), ElementsAre());
}

TEST_F(GlobTraza, CurrentDischargeFailsBelowNumberOne) {
  Execute("insert into Descargas values (3, 0, #11/1/2026 7:0:0#, Null, 0, 0, Null)");
  const std::string before = Dump();
  EXPECT_FALSE(CurrentDischarge(session, 3));
  EXPECT_EQ(Dump(), before);
}

TEST_F(GlobTraza, CurrentDischargeWithoutAStartRaises) {
  Execute("insert into Descargas values (3, 1, Null, Null, 0, 0, Null)");
  EXPECT_EQ(ErrorOf([&] { CurrentDischarge(session, 3); }), 94);
}

TEST_F(GlobTraza, DischargeWithoutWeighingsWeighsNothing) {
  EXPECT_THAT(Sent([&] { EXPECT_EQ(DischargeWeight(session, 2, 7), 0); }),
              ElementsAre("select sum(PARCIALPESO) as pes from ExtPesada where "
                          "(TOLVA=2) and (DESCARGA=7) "));
}

TEST_F(GlobTraza, DischargeWeighsItsWeighings) {
  Weigh({.lot = 1, .hopper = 2, .discharge = 7, .kilos = 1000});
  Weigh({.lot = 2, .hopper = 2, .discharge = 7, .kilos = 500.5});
  Weigh({.lot = 3, .hopper = 2, .discharge = 8, .kilos = 9000});
  Weigh({.lot = 4, .hopper = 1, .discharge = 7, .kilos = 9000});
  EXPECT_DOUBLE_EQ(DischargeWeight(session, 2, 7), 1500.5);
}

TEST_F(GlobTraza, DischargeWeighsItsSharesOnly) {
  Weigh({.lot = 1, .hopper = 2, .discharge = 7, .kilos = 1000});
  Execute("insert into splitDescar values (1, 1, 0, 1, 2, 7, 0.75)");
  Execute("insert into splitDescar values (1, 1, 0, 1, 3, 1, 0.25)");
  EXPECT_DOUBLE_EQ(DischargeWeight(session, 2, 7), 750);
  EXPECT_DOUBLE_EQ(DischargeWeight(session, 3, 1), 250);
}

TEST_F(GlobTraza, DischargeWeightNeedsTheStoredQuery) {
  session.Database().QueryDefs().Delete("ExtPesada");
  EXPECT_EQ(ErrorOf([&] { DischargeWeight(session, 1, 1); }), 3078);
}

TEST(FillSplitPlaceholders, FillsEveryOccurrence) {
  EXPECT_EQ(FillSplitPlaceholders("#QTO #ORG #DGA1 #DNO #DGA2 | #DGA2 #DNO #DGA1 #ORG #QTO", 0.25,
                                  1, 17, -2, 32767),
            "0.25000000 1 17 -2 32767 | 32767 -2 17 1 0.25000000");
}

TEST(FillSplitPlaceholders, LeavesTextWithoutPlaceholdersAlone) {
  EXPECT_EQ(FillSplitPlaceholders("delete from split", 1, 1, 1, 2, 1), "delete from split");
}

TEST(FillSplitPlaceholders, PassesDischargeNumbersThrough16Bits) {
  const auto fill = [](int32_t origin, int32_t target) {
    return test::MillTest::ErrorOf(
        [&] { FillSplitPlaceholders("delete from split", 1, 1, origin, 2, target); });
  };
  EXPECT_EQ(fill(32767, 32767), 0);
  EXPECT_EQ(fill(40000, 1), 6);
  EXPECT_EQ(fill(1, 32768), 6);
}

TEST_F(GlobTraza, NamesAMember) {
  Execute("insert into SOCIO (CODSOC, NOMSOC) values (12, 'Hacienda El Pilar')");
  EXPECT_THAT(Sent([&] { EXPECT_EQ(MemberName(session, 12), "Hacienda El Pilar"); }),
              ElementsAre("select NOMSOC from SOCIO where CODSOC=12"));
}

TEST_F(GlobTraza, NamesAProduct) {
  Execute("insert into PRODUCTO (CODPRO, NOMPRO) values (2, 'Picual suelo')");
  EXPECT_THAT(Sent([&] { EXPECT_EQ(ProductName(session, 2), "Picual suelo"); }),
              ElementsAre("select NOMPRO from PRODUCTO where CODPRO=2"));
}

TEST_F(GlobTraza, NamesAMunicipality) {
  Execute("insert into MUNICIPIO (CODMUN, NOMMUN) values (1, 'Jaén')");
  EXPECT_THAT(Sent([&] { EXPECT_EQ(MunicipalityName(session, 1), "Jaén"); }),
              ElementsAre("select NOMMUN from MUNICIPIO where CODMUN=1"));
}

TEST_F(GlobTraza, UnknownCodesHaveNoName) {
  EXPECT_EQ(MemberName(session, 1), "");
  EXPECT_EQ(ProductName(session, -1), "");
  EXPECT_EQ(MunicipalityName(session, std::numeric_limits<int32_t>::max()), "");
}

TEST_F(GlobTraza, ANullNameReadsAsEmpty) {
  Execute("insert into SOCIO (CODSOC, NOMSOC) values (12, Null)");
  EXPECT_EQ(MemberName(session, 12), "");
}

TEST_F(GlobTraza, AMissingMasterTableRaises) {
  session.Database().TableDefs().Delete("SOCIO");
  EXPECT_EQ(ErrorOf([&] { MemberName(session, 1); }), 3078);
}

}  // namespace
}  // namespace ambrelio::data
