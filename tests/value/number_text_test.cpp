// Numbers from and to text.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"
#include "support/error_of.h"

namespace ambrelio {
namespace {

using test::ErrorOf;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

class ParseNumberTest : public testing::Test {
 protected:
  ScopedLocale locale_{Locale::FromName("en_US")};
};

TEST_F(ParseNumberTest, ReadsPlainNumbers) {
  EXPECT_EQ(ParseNumber("0"), 0);
  EXPECT_EQ(ParseNumber("12"), 12);
  EXPECT_EQ(ParseNumber("12.5"), 12.5);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
  EXPECT_EQ(ParseNumber("5."), 5);
  EXPECT_EQ(ParseNumber("0012.50"), 12.5);
  EXPECT_EQ(ParseNumber("0.1"), 0.1);
}

TEST_F(ParseNumberTest, SkipsOuterBlanks) { EXPECT_EQ(ParseNumber(" \t12 "), 12); }

TEST_F(ParseNumberTest, SkipsOuterLineEnds) {
  EXPECT_EQ(ParseNumber("12\r\n"), 12);
  EXPECT_EQ(ParseNumber("\r\n12"), 12);
}

TEST_F(ParseNumberTest, TakesASignBeforeOrBehind) {
  EXPECT_EQ(ParseNumber("-12"), -12);
  EXPECT_EQ(ParseNumber("+12"), 12);
  EXPECT_EQ(ParseNumber("- 12"), -12);
  EXPECT_EQ(ParseNumber("12-"), -12);
  EXPECT_EQ(ParseNumber("12 +"), 12);
}

TEST_F(ParseNumberTest, RefusesTwoSigns) {
  for (const char* text : {"-12-", "--12", "+-12", "12--", "(-12)", "(12)-"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST_F(ParseNumberTest, TakesParenthesesForANegative) {
  EXPECT_EQ(ParseNumber("(12.5)"), -12.5);
  EXPECT_EQ(ParseNumber("( 12 )"), -12);
  EXPECT_FALSE(ParseNumber("(12"));
  EXPECT_FALSE(ParseNumber("()"));
}

TEST_F(ParseNumberTest, PassesGroupingSignsOverWhereverTheyStand) {
  EXPECT_EQ(ParseNumber("1,234,567.5"), 1234567.5);
  EXPECT_EQ(ParseNumber("1,2,3"), 123);
  EXPECT_FALSE(ParseNumber("1.5,0"));
  EXPECT_FALSE(ParseNumber(",5"));
}

TEST_F(ParseNumberTest, ReadsExponents) {
  EXPECT_EQ(ParseNumber("1e3"), 1000);
  EXPECT_EQ(ParseNumber("1.5E-2"), 0.015);
  EXPECT_EQ(ParseNumber("1D+3"), 1000);
  EXPECT_FALSE(ParseNumber("1e"));
  EXPECT_FALSE(ParseNumber("e3"));
}

TEST_F(ParseNumberTest, ReadsHexadecimalAndOctal) {
  EXPECT_EQ(ParseNumber("&HFF"), 255);
  EXPECT_EQ(ParseNumber("&hffff"), 65535);
  EXPECT_EQ(ParseNumber("&O17"), 15);
  EXPECT_FALSE(ParseNumber("&H"));
  EXPECT_FALSE(ParseNumber("&O8"));
  EXPECT_FALSE(ParseNumber("&H123456789"));
}

TEST_F(ParseNumberTest, RefusesOtherText) {
  for (const char* text :
       {"", " ", "abc", "12abc", "1 2", "1.2.3", "-", ".", "nan", "inf", "0x10", "1/2", "1\n2"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST_F(ParseNumberTest, RefusesNumbersTooLargeForADouble) {
  EXPECT_FALSE(ParseNumber("1e309"));
  EXPECT_FALSE(ParseNumber("1e99999999999999999999"));
  EXPECT_FALSE(ParseNumber(std::string(400, '9')));
  EXPECT_EQ(ParseNumber("1.7976931348623157E308"), std::numeric_limits<double>::max());
}

TEST_F(ParseNumberTest, ReadsNumbersTooSmallForADoubleAsZero) {
  EXPECT_EQ(ParseNumber("1e-400"), 0);
  EXPECT_EQ(ParseNumber("1e-99999999999999999999"), 0);
  EXPECT_EQ(ParseNumber("0." + std::string(500, '0') + "1"), 0);
}

TEST_F(ParseNumberTest, MeasuresDigitsAndExponentTogether) {
  EXPECT_EQ(ParseNumber("1" + std::string(400, '0') + "e-400"), 1);
  EXPECT_EQ(ParseNumber("0." + std::string(400, '0') + "1e401"), 1);
}

TEST_F(ParseNumberTest, TakesTheCommaForADecimalSignInSpain) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(ParseNumber("12,5"), 12.5);
  EXPECT_EQ(ParseNumber("1.234,5"), 1234.5);
}

TEST_F(ParseNumberTest, TakesThePointForAGroupingSignInSpain) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(ParseNumber("12.5"), 125);
}

TEST(LeadingNumber, ReadsTheLongestNumberAtTheStart) {
  EXPECT_EQ(LeadingNumber("24 hours"), 24);
  EXPECT_EQ(LeadingNumber("2.5.7"), 2.5);
  EXPECT_EQ(LeadingNumber("-3x"), -3);
  EXPECT_EQ(LeadingNumber("+3"), 3);
  EXPECT_EQ(LeadingNumber("50.5%"), 50.5);
}

TEST(LeadingNumber, IsZeroWhenThereIsNone) {
  for (const char* text : {"", "abc", "-", ".", "x12", "--1", "&", "&Hx"}) {
    EXPECT_EQ(LeadingNumber(text), 0) << text;
  }
}

TEST(LeadingNumber, SkipsBlanksAnywhere) {
  EXPECT_EQ(LeadingNumber(" 1 615\t198\n7th Street"), 16151987);
  EXPECT_EQ(LeadingNumber("- 5"), -5);
}

TEST(LeadingNumber, KnowsOnlyThePoint) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(LeadingNumber("12.5"), 12.5);
  EXPECT_EQ(LeadingNumber("12,5"), 12);
}

TEST(LeadingNumber, ReadsExponents) {
  EXPECT_EQ(LeadingNumber("1e3"), 1000);
  EXPECT_EQ(LeadingNumber("1D3"), 1000);
  EXPECT_EQ(LeadingNumber("1e"), 1);
  EXPECT_EQ(LeadingNumber("1e+x"), 1);
}

TEST(LeadingNumber, ReadsHexadecimalAndOctalAsTheLanguagesConstants) {
  EXPECT_EQ(LeadingNumber("&H10"), 16);
  EXPECT_EQ(LeadingNumber("&O17x"), 15);
  EXPECT_EQ(LeadingNumber("&17"), 15);
  EXPECT_EQ(LeadingNumber("&HFFFF"), -1);
  EXPECT_EQ(LeadingNumber("&H10000"), 65536);
  EXPECT_EQ(LeadingNumber("&HFFFFFFFF"), -1);
}

TEST(LeadingNumber, RaisesOverflowForANumberTooLarge) {
  EXPECT_EQ(ErrorOf([] { LeadingNumber("1e999"); }), 6);
  EXPECT_EQ(LeadingNumber("1e-999"), 0);
}

TEST(NumberText, WritesWholeNumbersWithoutDecimalSign) {
  EXPECT_EQ(NumberText(0, '.'), "0");
  EXPECT_EQ(NumberText(-0.0, '.'), "0");
  EXPECT_EQ(NumberText(7, '.'), "7");
  EXPECT_EQ(NumberText(-1200, '.'), "-1200");
}

TEST(NumberText, WritesUpTo15SignificantDigits) {
  EXPECT_EQ(NumberText(0.1, '.'), "0.1");
  EXPECT_EQ(NumberText(0.1 + 0.2, '.'), "0.3");
  EXPECT_EQ(NumberText(1.0 / 3, '.'), "0.333333333333333");
  EXPECT_EQ(NumberText(123456789.123456789, '.'), "123456789.123457");
}

TEST(NumberText, WritesTheDecimalSignItIsGiven) { EXPECT_EQ(NumberText(-2.5, ','), "-2,5"); }

TEST(NumberText, TurnsScientificAt1E15) {
  EXPECT_EQ(NumberText(999999999999999, '.'), "999999999999999");
  EXPECT_EQ(NumberText(1e15, '.'), "1E+15");
  EXPECT_EQ(NumberText(-1.25e20, ','), "-1,25E+20");
  EXPECT_EQ(NumberText(1e300, '.'), "1E+300");
}

TEST(NumberText, TurnsScientificForSmallNumbersThatDoNotFit) {
  EXPECT_EQ(NumberText(0.00001, '.'), "0.00001");
  EXPECT_EQ(NumberText(1e-15, '.'), "0.000000000000001");
  EXPECT_EQ(NumberText(1e-16, '.'), "1E-16");
  EXPECT_EQ(NumberText(1.0 / 30000, '.'), "3.33333333333333E-05");
}

TEST(NumberText, NamesWhatIsNoNumber) {
  EXPECT_EQ(NumberText(kInfinity, '.'), "1.#INF");
  EXPECT_EQ(NumberText(-kInfinity, '.'), "-1.#INF");
  EXPECT_EQ(NumberText(kNotANumber, '.'), "1.#QNAN");
}

TEST(FixedText, WritesExactlyTheDecimals) {
  EXPECT_EQ(FixedText(0.5, 8), "0.50000000");
  EXPECT_EQ(FixedText(-2.25, 8), "-2.25000000");
  EXPECT_EQ(FixedText(1234.567, 2), "1234.57");
  EXPECT_EQ(FixedText(12, 0), "12");
  EXPECT_EQ(FixedText(0, 2), "0.00");
}

TEST(FixedText, RoundsTheDecimalDigitsHalfAwayFromZero) {
  EXPECT_EQ(FixedText(2.675, 2), "2.68");
  EXPECT_EQ(FixedText(-2.675, 2), "-2.68");
  EXPECT_EQ(FixedText(0.125, 2), "0.13");
  EXPECT_EQ(FixedText(0.124999, 2), "0.12");
  EXPECT_EQ(FixedText(0.5, 0), "1");
  EXPECT_EQ(FixedText(2.5, 0), "3");
  EXPECT_EQ(FixedText(0.000000005, 8), "0.00000001");
}

TEST(FixedText, CountsOnly15SignificantDigits) {
  EXPECT_EQ(FixedText(123456789.123456789, 8), "123456789.12345700");
  EXPECT_EQ(FixedText(1234567890123456.0, 2), "1234567890123460.00");
  EXPECT_EQ(FixedText(1e20, 2), "100000000000000000000.00");
}

TEST(FixedText, CarriesThroughNines) {
  EXPECT_EQ(FixedText(0.999999999, 8), "1.00000000");
  EXPECT_EQ(FixedText(99.995, 2), "100.00");
  EXPECT_EQ(FixedText(0.1999999999, 8), "0.20000000");
}

TEST(FixedText, KeepsTheSignOfANegativeThatRoundsToZero) {
  EXPECT_EQ(FixedText(-0.000000001, 8), "-0.00000000");
  EXPECT_EQ(FixedText(0.000000001, 8), "0.00000000");
  EXPECT_EQ(FixedText(1e-300, 8), "0.00000000");
}

TEST(FixedText, WritesThePointInAnyLocale) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(FixedText(0.5, 8), "0.50000000");
}

TEST(FixedText, RaisesOverflowForWhatIsNoNumber) {
  EXPECT_EQ(ErrorOf([] { FixedText(kInfinity, 8); }), 6);
  EXPECT_EQ(ErrorOf([] { FixedText(kNotANumber, 8); }), 6);
}

}  // namespace
}  // namespace ambrelio
