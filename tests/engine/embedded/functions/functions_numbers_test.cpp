#include <gtest/gtest.h>

#include "ambrelio/value/locale.h"
#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class NumberFunctions : public testing::Test {
 protected:
  FunctionDb db_;
  ScopedLocale locale_{Locale()};
};

TEST_F(NumberFunctions, IntGoesDown) {
  EXPECT_EQ(db_.Eval("jet_int(2.7)"), "2.0");
  EXPECT_EQ(db_.Eval("jet_int(-2.1)"), "-3.0");
}

TEST_F(NumberFunctions, FixGoesTowardsZero) {
  EXPECT_EQ(db_.Eval("jet_fix(2.7)"), "2.0");
  EXPECT_EQ(db_.Eval("jet_fix(-2.7)"), "-2.0");
}

TEST_F(NumberFunctions, LeaveWholeNumbersWhole) {
  EXPECT_EQ(db_.Eval("jet_int(-3)"), "-3");
  EXPECT_EQ(db_.Eval("jet_fix(-3)"), "-3");
  EXPECT_EQ(db_.Eval("jet_round(-3, 1)"), "-3");
  EXPECT_EQ(db_.Eval("jet_abs(-3)"), "3");
}

TEST_F(NumberFunctions, AbsDropsTheSign) { EXPECT_EQ(db_.Eval("jet_abs(-2.5)"), "2.5"); }

TEST_F(NumberFunctions, SgnGivesTheSign) {
  EXPECT_EQ(db_.Eval("jet_sgn(-0.5)"), "-1");
  EXPECT_EQ(db_.Eval("jet_sgn(0)"), "0");
  EXPECT_EQ(db_.Eval("jet_sgn(9)"), "1");
}

TEST_F(NumberFunctions, RoundTakesAHalfToEven) {
  EXPECT_EQ(db_.Eval("jet_round(2.5)"), "2.0");
  EXPECT_EQ(db_.Eval("jet_round(3.5)"), "4.0");
  EXPECT_EQ(db_.Eval("jet_round(0.5)"), "0.0");
  EXPECT_EQ(db_.Eval("jet_round(-2.5)"), "-2.0");
  EXPECT_EQ(db_.Eval("jet_round(0.05)"), "0.0");
}

TEST_F(NumberFunctions, RoundSeesTheDecimalDigits) {
  EXPECT_EQ(db_.Eval("jet_round(2.675, 2)"), "2.68");
  EXPECT_EQ(db_.Eval("jet_round(2.665, 2)"), "2.66");
  EXPECT_EQ(db_.Eval("jet_round(2.66501, 2)"), "2.67");
  EXPECT_EQ(db_.Eval("jet_round(9.996, 2)"), "10.0");
}

TEST_F(NumberFunctions, RoundKeepsWhatHasFewerDecimals) {
  EXPECT_EQ(db_.Eval("jet_round(1.25, 5)"), "1.25");
  EXPECT_EQ(db_.Eval("jet_round(1.0/3, 2000000000) = 1.0/3"), "1");
}

TEST_F(NumberFunctions, RoundRefusesNegativeDecimals) {
  EXPECT_EQ(db_.ErrorOf("jet_round(1.5, -1)"), 5);
}

TEST_F(NumberFunctions, ValReadsTheLeadingNumber) {
  EXPECT_EQ(db_.Eval("jet_val(' 12.5 kg')"), "12.5");
  EXPECT_EQ(db_.Eval("jet_val('kg')"), "0.0");
}

TEST_F(NumberFunctions, GiveNullForNull) {
  for (const char* name : {"int", "fix", "abs", "sgn", "round", "val"}) {
    EXPECT_EQ(db_.Eval(std::string("jet_") + name + "(null)"), "NULL") << name;
  }
  EXPECT_EQ(db_.Eval("jet_round(1.5, null)"), "NULL");
}

TEST_F(NumberFunctions, ReadNumbersOutOfText) {
  EXPECT_EQ(db_.Eval("jet_int('2.7')"), "2.0");
  EXPECT_EQ(db_.ErrorOf("jet_int('oil')"), 13);
}

TEST_F(NumberFunctions, ConversionsRoundHalfToEven) {
  EXPECT_EQ(db_.Eval("jet_cint(2.5)"), "2");
  EXPECT_EQ(db_.Eval("jet_clng('3.5')"), "4");
  EXPECT_EQ(db_.Eval("jet_cbyte(254.5)"), "254");
}

TEST_F(NumberFunctions, ConversionsKeepTheValueOfTheirType) {
  EXPECT_EQ(db_.Eval("jet_cdbl('2.25')"), "2.25");
  EXPECT_EQ(db_.Eval("jet_csng(0.1) = 0.1"), "0");
  EXPECT_EQ(db_.Eval("jet_ccur(1.23456)"), "1.2346");
  EXPECT_EQ(db_.Eval("jet_cbool(0.5)"), "-1");
  EXPECT_EQ(db_.Eval("jet_cbool('False')"), "0");
  EXPECT_EQ(db_.Date("jet_cdate('1/2/2024')"), "2024-01-02 00:00:00");
  EXPECT_EQ(db_.Eval("jet_cvdate(1.5)"), "1.5");
}

TEST_F(NumberFunctions, ConversionsRefuseNull) {
  for (const char* name :
       {"cint", "clng", "cdbl", "csng", "cbool", "cbyte", "ccur", "cdate", "cvdate"}) {
    EXPECT_EQ(db_.ErrorOf(std::string("jet_") + name + "(null)"), 94) << name;
  }
}

TEST_F(NumberFunctions, ConversionsRaiseOverflow) {
  EXPECT_EQ(db_.ErrorOf("jet_cint(32768)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_clng(3e9)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_cbyte(255.5)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_csng(1e39)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_ccur(1e15)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_cdate(1e9)"), 6);
}

TEST_F(NumberFunctions, ConversionsRefuseOtherText) {
  EXPECT_EQ(db_.ErrorOf("jet_cint('')"), 13);
  EXPECT_EQ(db_.ErrorOf("jet_cdbl('oil')"), 13);
  EXPECT_EQ(db_.ErrorOf("jet_cbool('perhaps')"), 13);
  EXPECT_EQ(db_.ErrorOf("jet_cdate('soon')"), 13);
}

TEST_F(NumberFunctions, TextWritesEachTypeItsWay) {
  EXPECT_EQ(db_.Eval("jet_text(1.5, 7)"), "'1.5'");
  EXPECT_EQ(db_.Eval("jet_text(12, 4)"), "'12'");
  EXPECT_EQ(db_.Eval("jet_text(-1, 1)"), "'-1'");
  EXPECT_EQ(db_.Eval("jet_text('x ', 10)"), "'x '");
  EXPECT_EQ(db_.Eval("jet_text(null, 7)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_text(" + DaysOf("2024-03-04 15:09:00") + ", 8)"),
            "'3/4/2024 3:09:00 PM'");
}

TEST_F(NumberFunctions, TextWritesASingleWithItsOwnDigits) {
  EXPECT_EQ(db_.Eval("jet_text(jet_csng(0.1), 6)"), "'0.1'");
  EXPECT_EQ(db_.Eval("jet_text(jet_csng(0.1), 7)"), "'0.100000001490116'");
}

TEST_F(NumberFunctions, TextWritesNumbersWithAPointInAnyLocale) {
  const ScopedLocale spanish({',', '.', DateOrder::kDayMonthYear});
  EXPECT_EQ(db_.Eval("jet_text(1234.5, 7)"), "'1234.5'");
  EXPECT_EQ(db_.Eval("jet_text(" + DaysOf("2024-03-04 00:00:00") + ", 8)"), "'04/03/2024'");
}

}  // namespace
}  // namespace ambrelio::embedded
