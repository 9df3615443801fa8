#include "ambrelio/engine/embedded/functions/format.h"

#include <gtest/gtest.h>

#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class Format : public testing::Test {
 protected:
  static std::string Number(double value, std::string_view pattern) {
    return FormatValue(Variant(value), pattern, dao::FieldType::kDouble);
  }
  static std::string Date(const char* iso, std::string_view pattern) {
    return FormatValue(Variant(OleDate::FromIso(iso).value().days()), pattern,
                       dao::FieldType::kDate);
  }
  static std::string Text(const char* text, std::string_view pattern) {
    return FormatValue(Variant(text), pattern, dao::FieldType::kText);
  }

  ScopedLocale locale_{Locale()};
};

TEST_F(Format, ShowsEveryZeroPlace) {
  EXPECT_EQ(Number(7, "000"), "007");
  EXPECT_EQ(Number(7, "0.00"), "7.00");
  EXPECT_EQ(Number(0, "0.0"), "0.0");
}

TEST_F(Format, DropsWhatAHashPlaceDoesNotNeed) {
  EXPECT_EQ(Number(7.5, "#.##"), "7.5");
  EXPECT_EQ(Number(0.5, "#.##"), ".5");
  EXPECT_EQ(Number(7, "#.##"), "7.");
  EXPECT_EQ(Number(7.05, "0.0##"), "7.05");
  EXPECT_EQ(Number(7, "#0#"), "07");
  EXPECT_EQ(Number(0, "#"), "");
}

TEST_F(Format, ShowsAllDigitsBeforeThePoint) {
  EXPECT_EQ(Number(12345, "0"), "12345");
  EXPECT_EQ(Number(12345, "0-00"), "123-45");
  EXPECT_EQ(Number(12.5, ".00"), "12.50");
}

TEST_F(Format, RoundsTheDecimalDigitsHalfAwayFromZero) {
  EXPECT_EQ(Number(2.5, "0"), "3");
  EXPECT_EQ(Number(-2.5, "0"), "-3");
  EXPECT_EQ(Number(2.675, "0.00"), "2.68");
  EXPECT_EQ(Number(9.996, "0.00"), "10.00");
}

TEST_F(Format, CountsFifteenDigits) {
  EXPECT_EQ(Number(123456789.123456789, "0.00000000"), "123456789.12345700");
  EXPECT_EQ(Number(1e20, "0"), "100000000000000000000");
}

TEST_F(Format, GroupsThousands) {
  EXPECT_EQ(Number(1234567.891, "#,##0.00"), "1,234,567.89");
  EXPECT_EQ(Number(123, "#,##0"), "123");
  EXPECT_EQ(Number(12, "0,000"), "0,012");
}

TEST_F(Format, DividesByThousandForACommaAtTheEnd) {
  EXPECT_EQ(Number(1234567, "0,"), "1235");
  EXPECT_EQ(Number(1234567, "0,,.0"), "1.2");
  EXPECT_EQ(Number(1234567890, "#,##0,"), "1,234,568");
}

TEST_F(Format, MultipliesForPercent) {
  EXPECT_EQ(Number(0.1256, "0.0%"), "12.6%");
  EXPECT_EQ(Number(0.5, "0%"), "50%");
}

TEST_F(Format, PrintsExponents) {
  EXPECT_EQ(Number(12345, "0.00E+00"), "1.23E+04");
  EXPECT_EQ(Number(0.00012, "0.0E+00"), "1.2E-04");
  EXPECT_EQ(Number(12345, "0.00e-0"), "1.23e4");
  EXPECT_EQ(Number(9.999, "0.0E+00"), "1.0E+01");
  EXPECT_EQ(Number(12345, "##0.0E+0"), "123.5E+2");
  EXPECT_EQ(Number(0, "0.0E+00"), "0.0E+00");
  EXPECT_EQ(Number(1e-300, "0E+00"), "1E-300");
}

TEST_F(Format, ChoosesTheSectionByTheSignBeforeRounding) {
  constexpr auto kPattern = "0.00000000;-0.00000000;0";
  EXPECT_EQ(Number(0.5, kPattern), "0.50000000");
  EXPECT_EQ(Number(-2.25, kPattern), "-2.25000000");
  EXPECT_EQ(Number(0, kPattern), "0");
  EXPECT_EQ(Number(-0.0, kPattern), "0");
  EXPECT_EQ(Number(-0.000000001, kPattern), "-0.00000000");
  EXPECT_EQ(Number(0.000000001, kPattern), "0.00000000");
}

TEST_F(Format, PrintsNegativesByTheirOwnSection) {
  EXPECT_EQ(Number(-5, "0;(0)"), "(5)");
  EXPECT_EQ(Number(0, "0;(0)"), "0");
  EXPECT_EQ(Number(-5, "0"), "-5");
}

TEST_F(Format, PrintsAnEmptySectionByTheFirst) {
  EXPECT_EQ(Number(-5, "0;;\"nil\""), "-5");
  EXPECT_EQ(Number(0, "0.0;(0);"), "0.0");
}

TEST_F(Format, PrintsNullByTheFourthSection) {
  EXPECT_EQ(FormatValue(Variant::Null(), "0;-0;0;\"none\"", dao::FieldType::kDouble), "none");
  EXPECT_EQ(FormatValue(Variant::Null(), "0", dao::FieldType::kDouble), "");
  EXPECT_EQ(FormatValue(Variant::Null(), "", dao::FieldType::kDouble), "");
  EXPECT_EQ(FormatValue(Variant::Null(), "General Number", dao::FieldType::kDouble), "");
}

TEST_F(Format, PrintsLiterals) {
  EXPECT_EQ(Number(5, "0 \"kg 0\""), "5 kg 0");
  EXPECT_EQ(Number(5, "\\#0"), "#5");
  EXPECT_EQ(Number(5, "$0 €"), "$5 €");
  EXPECT_EQ(Number(5, "0\"open"), "5open");
}

TEST_F(Format, UsesTheSignsOfTheLocale) {
  const ScopedLocale spanish(kSpanish);
  EXPECT_EQ(Number(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(Number(1.5, "General Number"), "1,5");
  EXPECT_EQ(Text("1,5", "0.00"), "1,50");
}

TEST_F(Format, KnowsTheNamedNumberPatterns) {
  EXPECT_EQ(Number(1234.567, "General Number"), "1234.567");
  EXPECT_EQ(Number(1234.567, "fixed"), "1234.57");
  EXPECT_EQ(Number(1234.567, "Standard"), "1,234.57");
  EXPECT_EQ(Number(0.1234, "Percent"), "12.34%");
  EXPECT_EQ(Number(1234.567, "Scientific"), "1.23E+03");
  EXPECT_EQ(Number(-1, "Yes/No"), "Yes");
  EXPECT_EQ(Number(0, "Yes/No"), "No");
  EXPECT_EQ(Number(0, "True/False"), "False");
  EXPECT_EQ(Number(2, "On/Off"), "On");
}

TEST_F(Format, PrintsThePartsOfADate) {
  constexpr auto kMoment = "2024-03-04 05:06:07";
  EXPECT_EQ(Date(kMoment, "dd/mm/yyyy hh:nn:ss"), "04/03/2024 05:06:07");
  EXPECT_EQ(Date(kMoment, "d-m-yy h:n:s"), "4-3-24 5:6:7");
  EXPECT_EQ(Date(kMoment, "yyyymmdd"), "20240304");
  EXPECT_EQ(Date(kMoment, "YYYY"), "2024");
}

TEST_F(Format, PrintsTheNamesOfDaysAndMonths) {
  EXPECT_EQ(Date("2024-03-04 00:00:00", "ddd dddd mmm mmmm"), "Mon Monday Mar March");
}

TEST_F(Format, PrintsNumbersOfTheYear) {
  EXPECT_EQ(Date("2024-12-31 00:00:00", "y q w ww"), "366 4 3 53");
}

TEST_F(Format, TakesAMonthBehindTheHourForTheMinute) {
  EXPECT_EQ(Date("2024-03-04 05:06:07", "hh:mm"), "05:06");
  EXPECT_EQ(Date("2024-03-04 05:06:07", "mm/dd hh:mm"), "03/04 05:06");
}

TEST_F(Format, CountsHoursToTwelveWithHalvesOfTheDay) {
  EXPECT_EQ(Date("2024-03-04 00:06:00", "h:nn AM/PM"), "12:06 AM");
  EXPECT_EQ(Date("2024-03-04 15:06:00", "hh:nn am/pm"), "03:06 pm");
  EXPECT_EQ(Date("2024-03-04 12:06:00", "h a/p"), "12 p");
}

TEST_F(Format, PrintsDatesOfTheLocale) {
  EXPECT_EQ(Date("2024-03-04 15:06:07", "ddddd"), "3/4/2024");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "ttttt"), "3:06:07 PM");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "c"), "3/4/2024 3:06:07 PM");
  const ScopedLocale spanish(kSpanish);
  EXPECT_EQ(Date("2024-03-04 15:06:07", "General Date"), "04/03/2024 15:06:07");
}

TEST_F(Format, KnowsTheNamedDatePatterns) {
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Short Date"), "3/4/2024");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Medium Date"), "04-Mar-24");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Long Date"), "Monday, 4 March 2024");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Short Time"), "15:06");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Medium Time"), "03:06 PM");
  EXPECT_EQ(Date("2024-03-04 15:06:07", "Long Time"), "3:06:07 PM");
}

TEST_F(Format, PrintsQuotedLettersOfADateAsTheyAre) {
  EXPECT_EQ(Date("2024-03-04 00:00:00", "d \"de\" mmmm"), "4 de March");
  EXPECT_EQ(Date("2024-03-04 00:00:00", "\\d d"), "d 4");
}

TEST_F(Format, ReadsDatesOutOfText) {
  EXPECT_EQ(Text("3/4/2024", "yyyy-mm-dd"), "2024-03-04");
  EXPECT_EQ(Text("soon", "yyyy-mm-dd"), "soon");
}

TEST_F(Format, ReadsNumbersOutOfText) {
  EXPECT_EQ(Text("12.5", "0.00"), "12.50");
  EXPECT_EQ(Text("oil", "0.00"), "oil");
}

TEST_F(Format, PrintsADateAsItsDayNumberByANumberPattern) {
  EXPECT_EQ(Date("1900-01-01 12:00:00", "0.0"), "2.5");
}

TEST_F(Format, FillsTextFromTheRight) {
  EXPECT_EQ(Text("ab", "@@@@"), "  ab");
  EXPECT_EQ(Text("ab", "&&&&"), "ab");
  EXPECT_EQ(Text("abcdef", "@@-@@"), "abcd-ef");
}

TEST_F(Format, FillsTextFromTheLeftWithAnExclamationMark) {
  EXPECT_EQ(Text("ab", "!@@@@"), "ab  ");
  EXPECT_EQ(Text("abcdef", "!@@-@@"), "ab-cdef");
}

TEST_F(Format, ChangesTheCaseOfText) {
  EXPECT_EQ(Text("Ñandú", ">"), "ÑANDÚ");
  EXPECT_EQ(Text("Ñandú", "<"), "ñandú");
}

TEST_F(Format, PrintsNoTextByTheSecondSection) {
  EXPECT_EQ(Text("", "@;\"none\""), "none");
  EXPECT_EQ(FormatValue(Variant::Null(), "@;\"none\"", dao::FieldType::kText), "none");
  EXPECT_EQ(Text("a", "@;\"none\""), "a");
}

TEST_F(Format, GivesThePlainTextWithoutAPattern) {
  EXPECT_EQ(Number(1.5, ""), "1.5");
  EXPECT_EQ(Text("oil", ""), "oil");
  EXPECT_EQ(Date("2024-03-04 00:00:00", ""), "3/4/2024");
}

TEST_F(Format, IsAFunctionOfTheDialect) {
  FunctionDb db;
  EXPECT_EQ(db.Text("jet_format(0.5, '0.00', 7)"), "0.50");
  EXPECT_EQ(db.Text("jet_format(null, '0;0;0;-', 7)"), "-");
  EXPECT_EQ(db.Text("jet_format(" + DaysOf("2024-03-04 00:00:00") + ", 'yyyy', 8)"), "2024");
  EXPECT_EQ(db.Text("jet_format('ab', '>', 10)"), "AB");
  EXPECT_EQ(db.ErrorOf("jet_format(1e9, 'yyyy', 8)"), 6);
}

}  // namespace
}  // namespace ambrelio::embedded
