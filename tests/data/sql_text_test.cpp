#include "ambrelio/data/sql_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "ambrelio/value/locale.h"

namespace ambrelio::data {
namespace {

OleDate At(const char* iso) { return OleDate::FromIso(iso).value(); }

TEST(SqlDate, WritesMonthDayYearWithoutPadding) {
  EXPECT_EQ(SqlDate(At("2003-03-05 08:04:09")), "#3/5/2003 8:4:9#");
  EXPECT_EQ(SqlDate(At("2026-11-15 17:30:00")), "#11/15/2026 17:30:0#");
}

TEST(SqlDate, WritesTheTimeOfAMidnight) {
  EXPECT_EQ(SqlDate(At("2026-01-01 00:00:00")), "#1/1/2026 0:0:0#");
}

TEST(SqlDate, WritesTheZeroDate) { EXPECT_EQ(SqlDate(OleDate()), "#12/30/1899 0:0:0#"); }

TEST(SqlDate, KeepsItsOrderWhateverTheLocale) {
  const ScopedLocale spanish(Locale::FromName("es_ES"));
  EXPECT_EQ(SqlDate(At("2026-02-28 23:59:59")), "#2/28/2026 23:59:59#");
}

TEST(SqlNum8, HasEightDecimals) {
  EXPECT_EQ(SqlNum8(0.5), "0.50000000");
  EXPECT_EQ(SqlNum8(-2.25), "-2.25000000");
  EXPECT_EQ(SqlNum8(1), "1.00000000");
  EXPECT_EQ(SqlNum8(12345.678), "12345.67800000");
}

TEST(SqlNum8, WritesExactlyZeroWithoutDecimals) {
  EXPECT_EQ(SqlNum8(0), "0");
  EXPECT_EQ(SqlNum8(-0.0), "0");
}

TEST(SqlNum8, ChoosesTheSignBeforeRounding) {
  EXPECT_EQ(SqlNum8(1e-12), "0.00000000");
  EXPECT_EQ(SqlNum8(-1e-12), "-0.00000000");
}

TEST(SqlNum8, RoundsHalfAwayFromZeroOnTheDecimalDigits) {
  EXPECT_EQ(SqlNum8(0.000000005), "0.00000001");
  EXPECT_EQ(SqlNum8(-0.000000005), "-0.00000001");
  EXPECT_EQ(SqlNum8(1.0 / 3), "0.33333333");
  EXPECT_EQ(SqlNum8(2.0 / 3), "0.66666667");
}

TEST(SqlNum8, WritesAPointUnderAnyLocale) {
  const ScopedLocale spanish(Locale::FromName("es_ES"));
  ASSERT_EQ(Locale::Current().decimal, ',');
  EXPECT_EQ(SqlNum8(0.5), "0.50000000");
}

TEST(SqlNum2, HasTwoDecimals) {
  EXPECT_EQ(SqlNum2(1234.567), "1234.57");
  EXPECT_EQ(SqlNum2(-1234.564), "-1234.56");
  EXPECT_EQ(SqlNum2(1000000), "1000000.00");
}

TEST(SqlNum2, RoundsWhatADecimalReaderWouldCallAHalf) {
  EXPECT_EQ(SqlNum2(1.005), "1.01");  // the double lies below, its fifteen digits do not
  EXPECT_EQ(SqlNum2(0.125), "0.13");
}

TEST(SqlNum2, WritesExactlyZeroWithoutDecimals) {
  EXPECT_EQ(SqlNum2(0), "0");
  EXPECT_EQ(SqlNum2(0.001), "0.00");
}

TEST(SqlText, PutsTextInApostrophes) { EXPECT_EQ(SqlText("Jaén"), "'Jaén'"); }

TEST(SqlText, WritesNullForTheEmptyText) { EXPECT_EQ(SqlText(""), "Null"); }

TEST(SqlText, WritesEmptyTextForBlanks) { EXPECT_EQ(SqlText("  "), "''"); }

TEST(SqlText, TrimsOuterBlanksOnly) { EXPECT_EQ(SqlText("  La  Loma "), "'La  Loma'"); }

TEST(SqlText, KeepsTabsAndLineEnds) { EXPECT_EQ(SqlText("\ta\n"), "'\ta\n'"); }

TEST(SqlText, ReplacesApostrophesByAcuteAccents) {
  EXPECT_EQ(SqlText("O'Neil "), "'O´Neil'");
  EXPECT_EQ(SqlText("'''"), "'´´´'");
}

TEST(ReplaceApostrophes, LeavesOtherTextAlone) {
  EXPECT_EQ(ReplaceApostrophes("d'arriba \"x\" ´"), "d´arriba \"x\" ´");
  EXPECT_EQ(ReplaceApostrophes(""), "");
}

TEST(PesadaKeyColumns, NamesTheFourKeyColumns) {
  EXPECT_EQ(PesadaKeyColumns(),
            "PESADA.COOPERATIVA AS cooperativa, PESADA.PARTIDA as partida, "
            "PESADA.MEDIANA as mediana, PESADA.CODPRO as codpro, ");
}

TEST(PesadaSplitJoin, JoinsOnTheFourKeyColumns) {
  EXPECT_EQ(PesadaSplitJoin(),
            "PESADA left join splitDescar on "
            "(PESADA.COOPERATIVA = splitDescar.cooperativa) and "
            "(PESADA.PARTIDA = splitDescar.partida) and "
            "(PESADA.MEDIANA = splitDescar.mediana) and "
            "(PESADA.CODPRO = splitDescar.codpro) ");
}

TEST(WhereHopperDischarge, EndsWithABlank) {
  EXPECT_EQ(WhereHopperDischarge(3, 17), "(TOLVA=3) and (DESCARGA=17) ");
}

TEST(WhereHopperDischarge, WritesTheWholeRangeOfBothNumbers) {
  EXPECT_EQ(WhereHopperDischarge(-32768, std::numeric_limits<int32_t>::max()),
            "(TOLVA=-32768) and (DESCARGA=2147483647) ");
}

}  // namespace
}  // namespace ambrelio::data
