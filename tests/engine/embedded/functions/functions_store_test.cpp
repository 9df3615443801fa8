#include <gtest/gtest.h>

#include "ambrelio/value/locale.h"
#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class StoredValues : public testing::Test {
 protected:
  FunctionDb db_;
  ScopedLocale locale_{Locale()};
};

TEST_F(StoredValues, RoundWholeNumbersHalfToEven) {
  EXPECT_EQ(db_.Eval("jet_to_integer(2.5, 0)"), "2");
  EXPECT_EQ(db_.Eval("jet_to_long(3.5, 0)"), "4");
  EXPECT_EQ(db_.Eval("jet_to_byte(0.5, 0)"), "0");
  EXPECT_EQ(db_.Eval("jet_to_long(-2.5, 0)"), "-2");
  EXPECT_EQ(db_.Eval("jet_to_long(7, 0)"), "7");
}

TEST_F(StoredValues, AreNullOutsideTheRangeOfTheirType) {
  EXPECT_EQ(db_.Eval("jet_to_byte(256, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_byte(-1, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_integer(32767.5, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_integer(32767.49, 0)"), "32767");
  EXPECT_EQ(db_.Eval("jet_to_integer(-32768.5, 0)"), "-32768");
  EXPECT_EQ(db_.Eval("jet_to_long(2147483648, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_long(1e300, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_single(1e39, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_currency(1e15, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_double(9e999, 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_date(2958466, 0)"), "NULL");
}

TEST_F(StoredValues, KeepNull) {
  for (const char* type : {"byte", "integer", "long", "currency", "single", "double", "date"}) {
    EXPECT_EQ(db_.Eval(std::string("jet_to_") + type + "(null, 0)"), "NULL") << type;
    EXPECT_EQ(db_.Eval(std::string("jet_to_") + type + "(null, 1)"), "NULL") << type;
  }
  EXPECT_EQ(db_.Eval("jet_to_text(null, 5, 1)"), "NULL");
}

TEST_F(StoredValues, ReadNumbersOutOfText) {
  EXPECT_EQ(db_.Eval("jet_to_long(' 12 ', 0)"), "12");
  EXPECT_EQ(db_.Eval("jet_to_double('1,234.5', 0)"), "1234.5");
  EXPECT_EQ(db_.Eval("jet_to_boolean('3', 0)"), "-1");
}

TEST_F(StoredValues, ReadNumbersByTheLocale) {
  const ScopedLocale spanish(kSpanish);
  EXPECT_EQ(db_.Eval("jet_to_double('12,5', 0)"), "12.5");
  EXPECT_EQ(db_.Eval("jet_to_double('12.5', 0)"), "125.0");
}

TEST_F(StoredValues, AreNullForTextThatIsNone) {
  EXPECT_EQ(db_.Eval("jet_to_long('oil', 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_double('', 0)"), "NULL");
  EXPECT_EQ(db_.Eval("jet_to_date('soon', 0)"), "NULL");
}

TEST_F(StoredValues, KeepSinglesToThirtyTwoBits) {
  EXPECT_EQ(db_.Eval("jet_to_single(0.1, 0) = 0.1"), "0");
  EXPECT_EQ(db_.Eval("jet_to_single(0.5, 0)"), "0.5");
}

TEST_F(StoredValues, KeepCurrencyToFourDecimals) {
  EXPECT_EQ(db_.Eval("jet_to_currency(1.23456, 0)"), "1.2346");
  EXPECT_EQ(db_.Eval("jet_to_currency(1.00005, 0)"), "1.0");
  EXPECT_EQ(db_.Eval("jet_to_currency(1.00015, 0)"), "1.0002");
}

TEST_F(StoredValues, MakeBooleansZeroOrMinusOne) {
  EXPECT_EQ(db_.Eval("jet_to_boolean(0, 0)"), "0");
  EXPECT_EQ(db_.Eval("jet_to_boolean(0.25, 0)"), "-1");
  EXPECT_EQ(db_.Eval("jet_to_boolean('true', 0)"), "-1");
  EXPECT_EQ(db_.Eval("jet_to_boolean('False', 0)"), "0");
}

TEST_F(StoredValues, MakeAnUnknownBooleanFalse) {
  EXPECT_EQ(db_.Eval("jet_to_boolean(null, 0)"), "0");
  EXPECT_EQ(db_.Eval("jet_to_boolean(null, 1)"), "0");
  EXPECT_EQ(db_.Eval("jet_to_boolean('perhaps', 0)"), "0");
}

TEST_F(StoredValues, ReadDatesOutOfText) {
  EXPECT_EQ(db_.Date("jet_to_date('3/14/2024 15:09:26', 0)"), "2024-03-14 15:09:26");
  const ScopedLocale spanish(kSpanish);
  EXPECT_EQ(db_.Date("jet_to_date('03/04/2024', 0)"), "2024-04-03 00:00:00");
}

TEST_F(StoredValues, TakeNumbersAsDays) { EXPECT_EQ(db_.Eval("jet_to_date(2.5, 0)"), "2.5"); }

TEST_F(StoredValues, WriteNumbersIntoTextWithAPoint) {
  const ScopedLocale spanish(kSpanish);
  EXPECT_EQ(db_.Eval("jet_to_text(1.5, 0, 0)"), "'1.5'");
  EXPECT_EQ(db_.Eval("jet_to_text(2.0, 0, 0)"), "'2'");
  EXPECT_EQ(db_.Eval("jet_to_text(-7, 0, 0)"), "'-7'");
  EXPECT_EQ(db_.Eval("jet_to_text(1e20, 0, 0)"), "'1E+20'");
}

TEST_F(StoredValues, CutTextToItsColumnByCharacters) {
  EXPECT_EQ(db_.Eval("jet_to_text('aceite', 3, 0)"), "'ace'");
  EXPECT_EQ(db_.Eval("jet_to_text('ñññ', 3, 0)"), "'ñññ'");
  EXPECT_EQ(db_.Eval("jet_to_text('ñññ', 2, 0)"), "'ññ'");
  EXPECT_EQ(db_.Eval("jet_to_text('aceite', 0, 0)"), "'aceite'");
}

TEST_F(StoredValues, RaiseWhenStrict) {
  EXPECT_EQ(db_.ErrorOf("jet_to_byte(256, 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_integer('oil', 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_long(1e10, 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_currency(1e15, 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_single(-1e39, 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_double('oil', 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_boolean('perhaps', 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_date('soon', 1)"), 3421);
  EXPECT_EQ(db_.ErrorOf("jet_to_text('aceite', 3, 1)"), 3163);
  EXPECT_EQ(db_.ErrorOf("jet_to_text('ace', 3, 1)"), 0);
}

}  // namespace
}  // namespace ambrelio::embedded
