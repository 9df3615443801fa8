#include "ambrelio/value/convert.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "ambrelio/value/locale.h"
#include "support/error_of.h"

namespace ambrelio {
namespace {

using test::ErrorOf;

class Thing : public Object {
 public:
  const char* ClassName() const override { return "Thing"; }
};

class ConvertTest : public testing::Test {
 protected:
  ScopedLocale locale_{Locale::FromName("en_US")};
};

// 0 when all of the conversions accept the value, else the one error that all of them raise.
int ErrorOfEveryConversion(const Variant& value) {
  int error = ErrorOf([&] { ToBoolean(value); });
  EXPECT_EQ(ErrorOf([&] { ToByte(value); }), error);
  EXPECT_EQ(ErrorOf([&] { ToInteger(value); }), error);
  EXPECT_EQ(ErrorOf([&] { ToLong(value); }), error);
  EXPECT_EQ(ErrorOf([&] { ToDouble(value); }), error);
  EXPECT_EQ(ErrorOf([&] { ToDate(value); }), error);
  EXPECT_EQ(ErrorOf([&] { ToText(value); }), error);
  return error;
}

TEST_F(ConvertTest, EveryConversionRefusesNull) {
  EXPECT_EQ(ErrorOfEveryConversion(Variant::Null()), 94);
}

TEST_F(ConvertTest, EveryConversionRefusesArraysAndObjects) {
  EXPECT_EQ(ErrorOfEveryConversion(Variant::Array()), 13);
  EXPECT_EQ(ErrorOfEveryConversion(Variant::Nothing()), 13);
  EXPECT_EQ(ErrorOfEveryConversion(std::make_shared<Thing>()), 13);
}

TEST_F(ConvertTest, EmptyIsTheZeroOfEveryType) {
  EXPECT_FALSE(ToBoolean({}));
  EXPECT_EQ(ToByte({}), 0);
  EXPECT_EQ(ToInteger({}), 0);
  EXPECT_EQ(ToLong({}), 0);
  EXPECT_EQ(ToDouble({}), 0);
  EXPECT_EQ(ToDate({}), OleDate());
  EXPECT_EQ(ToText({}), "");
}

TEST_F(ConvertTest, RoundsAnExactHalfToTheEvenNeighbour) {
  EXPECT_EQ(RoundToInteger(0.5), 0);
  EXPECT_EQ(RoundToInteger(1.5), 2);
  EXPECT_EQ(RoundToInteger(2.5), 2);
  EXPECT_EQ(RoundToInteger(-0.5), 0);
  EXPECT_EQ(RoundToInteger(-1.5), -2);
  EXPECT_EQ(RoundToInteger(-2.5), -2);
}

TEST_F(ConvertTest, RoundsToTheNearestOtherwise) {
  EXPECT_EQ(RoundToInteger(2.500001), 3);
  EXPECT_EQ(RoundToInteger(2.499999), 2);
  EXPECT_EQ(RoundToInteger(-2.500001), -3);
  EXPECT_EQ(RoundToInteger(0.49999999999999994), 0);
}

TEST_F(ConvertTest, IntegersEndWhereRoundingLeavesThem) {
  EXPECT_EQ(RoundToInteger(32767.49), 32767);
  EXPECT_EQ(RoundToInteger(-32768.5), -32768);
  EXPECT_EQ(ErrorOf([] { RoundToInteger(32767.5); }), 6);
  EXPECT_EQ(ErrorOf([] { RoundToInteger(-32768.51); }), 6);
}

TEST_F(ConvertTest, LongsEndWhereRoundingLeavesThem) {
  EXPECT_EQ(RoundToLong(2147483647.49), 2147483647);
  EXPECT_EQ(RoundToLong(-2147483648.5), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(ErrorOf([] { RoundToLong(2147483647.5); }), 6);
  EXPECT_EQ(ErrorOf([] { RoundToLong(1e300); }), 6);
  EXPECT_EQ(ErrorOf([] { RoundToLong(std::numeric_limits<double>::quiet_NaN()); }), 6);
}

TEST_F(ConvertTest, ConvertsBetweenTheNumbers) {
  EXPECT_EQ(ToDouble(uint8_t{200}), 200);
  EXPECT_EQ(ToDouble(int16_t{-7}), -7);
  EXPECT_EQ(ToDouble(int32_t{70000}), 70000);
  EXPECT_EQ(ToDouble(0.5F), 0.5);
  EXPECT_EQ(ToDouble(Currency{12345}), 1.2345);
  EXPECT_EQ(ToInteger(int32_t{32767}), 32767);
  EXPECT_EQ(ErrorOf([] { ToInteger(int32_t{32768}); }), 6);
  EXPECT_EQ(ToLong(Currency{25000}), 2);
}

TEST_F(ConvertTest, BytesReachFrom0To255) {
  EXPECT_EQ(ToByte(255.4), 255);
  EXPECT_EQ(ToByte(-0.5), 0);
  EXPECT_EQ(ErrorOf([] { ToByte(255.5); }), 6);
  EXPECT_EQ(ErrorOf([] { ToByte(int16_t{-1}); }), 6);
}

TEST_F(ConvertTest, TrueIsMinusOneAndInAByteAllOnes) {
  EXPECT_EQ(ToInteger(true), -1);
  EXPECT_EQ(ToDouble(true), -1);
  EXPECT_EQ(ToByte(true), 255);
  EXPECT_EQ(ToInteger(false), 0);
}

TEST_F(ConvertTest, EveryNumberButZeroIsTrue) {
  EXPECT_TRUE(ToBoolean(int16_t{2}));
  EXPECT_TRUE(ToBoolean(-0.1));
  EXPECT_FALSE(ToBoolean(0.0));
}

TEST_F(ConvertTest, ReadsBooleansFromWordsAndNumbers) {
  EXPECT_TRUE(ToBoolean("TRUE"));
  EXPECT_FALSE(ToBoolean("false"));
  EXPECT_TRUE(ToBoolean("2"));
  EXPECT_FALSE(ToBoolean("0.0"));
  EXPECT_EQ(ErrorOf([] { ToBoolean("yes"); }), 13);
}

TEST_F(ConvertTest, ReadsNumbersFromText) {
  EXPECT_EQ(ToDouble("12.5"), 12.5);
  EXPECT_EQ(ToInteger(" 2.5 "), 2);
  EXPECT_EQ(ToLong("70000"), 70000);
  EXPECT_EQ(ErrorOf([] { ToInteger("70000"); }), 6);
  EXPECT_EQ(ErrorOf([] { ToDouble("abc"); }), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(""); }), 13);
}

TEST_F(ConvertTest, ReadsNumbersByTheLocale) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(ToDouble("12,5"), 12.5);
  EXPECT_EQ(ToDouble("12.5"), 125);
}

TEST_F(ConvertTest, TakesADateForItsDays) {
  EXPECT_EQ(ToDouble(OleDate::FromDays(37685.5)), 37685.5);
  EXPECT_EQ(ToLong(OleDate::FromDays(37685.5)), 37686);
  EXPECT_EQ(ToLong(OleDate::FromDays(37686.5)), 37686);
  EXPECT_EQ(ErrorOf([] { ToInteger(OleDate::FromDays(37685)); }), 6);
}

TEST_F(ConvertTest, TakesANumberForDays) {
  EXPECT_EQ(ToDate(37685.5), OleDate::FromDays(37685.5));
  EXPECT_EQ(ToDate(int16_t{-1}), OleDate::FromDays(-1));
}

TEST_F(ConvertTest, RefusesDatesOutsideTheCalendar) {
  EXPECT_EQ(ErrorOf([] { ToDate(2958466.0); }), 6);
  EXPECT_EQ(ErrorOf([] { ToDate(-657435.0); }), 6);
  EXPECT_EQ(ToDate(2958465.0).Iso(), "9999-12-31 00:00:00");
  EXPECT_EQ(ToDate(-657434.0).Iso(), "0100-01-01 00:00:00");
}

TEST_F(ConvertTest, ReadsDatesFromText) {
  EXPECT_EQ(ToDate("3/5/2003 8:04:09").Iso(), "2003-03-05 08:04:09");
  EXPECT_EQ(ErrorOf([] { ToDate("abc"); }), 13);
  EXPECT_EQ(ErrorOf([] { ToDate("37685"); }), 13);
}

TEST_F(ConvertTest, WritesEveryTypeAsText) {
  EXPECT_EQ(ToText(true), "True");
  EXPECT_EQ(ToText(false), "False");
  EXPECT_EQ(ToText(uint8_t{7}), "7");
  EXPECT_EQ(ToText(int16_t{-7}), "-7");
  EXPECT_EQ(ToText(std::numeric_limits<int32_t>::min()), "-2147483648");
  EXPECT_EQ(ToText(0.1F), "0.1");
  EXPECT_EQ(ToText(std::numeric_limits<float>::max()), "3.402823E+38");
  EXPECT_EQ(ToText(0.1), "0.1");
  EXPECT_EQ(ToText(Currency{12300}), "1.23");
  EXPECT_EQ(ToText(OleDate::FromDays(37685)), "3/5/2003");
  EXPECT_EQ(ToText(" as it is "), " as it is ");
}

TEST_F(ConvertTest, WritesNumbersByTheLocale) {
  ScopedLocale spain(Locale::FromName("es_ES"));
  EXPECT_EQ(ToText(1234.5), "1234,5");
  EXPECT_EQ(ToText(OleDate::FromDays(37685)), "05/03/2003");
}

TEST_F(ConvertTest, WritesInfinityRatherThanFail) {
  EXPECT_EQ(ToText(std::numeric_limits<float>::infinity()), "1.#INF");
}

TEST_F(ConvertTest, IsDateForDatesAndTheirText) {
  EXPECT_TRUE(IsDate(OleDate()));
  EXPECT_TRUE(IsDate("3/5/2003"));
  EXPECT_TRUE(IsDate("8:04"));
  EXPECT_FALSE(IsDate("abc"));
}

TEST_F(ConvertTest, IsDateForNothingElse) {
  EXPECT_FALSE(IsDate(37685.0));
  EXPECT_FALSE(IsDate(Variant()));
  EXPECT_FALSE(IsDate(Variant::Null()));
  EXPECT_FALSE(IsDate(Variant::Nothing()));
  EXPECT_FALSE(IsDate(Variant::Array()));
}

TEST_F(ConvertTest, IsNumericForNumbersAndTheirText) {
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_TRUE(IsNumeric(true));
  EXPECT_TRUE(IsNumeric(1.5));
  EXPECT_TRUE(IsNumeric(Currency{1}));
  EXPECT_TRUE(IsNumeric(" 1,5 "));
}

TEST_F(ConvertTest, IsNumericForNothingElse) {
  EXPECT_FALSE(IsNumeric(""));
  EXPECT_FALSE(IsNumeric("abc"));
  EXPECT_FALSE(IsNumeric("True"));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_FALSE(IsNumeric(OleDate()));
  EXPECT_FALSE(IsNumeric(Variant::Array()));
  EXPECT_FALSE(IsNumeric(Variant::Nothing()));
}

}  // namespace
}  // namespace ambrelio
