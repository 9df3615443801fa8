#include <gtest/gtest.h>

#include "support/function_db.h"

namespace ambrelio::embedded {
namespace {

class Operators : public testing::Test {
 protected:
  FunctionDb db_;
};

TEST_F(Operators, DivideIntoFractions) { EXPECT_EQ(db_.Eval("jet_divide(7, 2)"), "3.5"); }

TEST_F(Operators, RefuseToDivideByZero) {
  EXPECT_EQ(db_.ErrorOf("jet_divide(1, 0)"), 11);
  EXPECT_EQ(db_.ErrorOf("jet_divide(0, 0)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_int_divide(1, 0.4)"), 11);
  EXPECT_EQ(db_.ErrorOf("jet_mod(1, 0)"), 11);
}

TEST_F(Operators, RaiseOverflow) {
  EXPECT_EQ(db_.ErrorOf("jet_divide(1e300, 1e-300)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_power(10, 400)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_int_divide(3e9, 2)"), 6);
  EXPECT_EQ(db_.ErrorOf("jet_int_divide(-2147483648, -1)"), 6);
}

TEST_F(Operators, DivideWholeNumbersTowardsZero) {
  EXPECT_EQ(db_.Eval("jet_int_divide(7, 2)"), "3");
  EXPECT_EQ(db_.Eval("jet_int_divide(-7, 2)"), "-3");
}

TEST_F(Operators, RoundTheOperandsOfWholeDivisionFirst) {
  EXPECT_EQ(db_.Eval("jet_int_divide(7.5, 2)"), "4");
  EXPECT_EQ(db_.Eval("jet_mod(10.5, 3.6)"), "2");
}

TEST_F(Operators, GiveTheRemainderTheSignOfTheDividend) {
  EXPECT_EQ(db_.Eval("jet_mod(-7, 3)"), "-1");
  EXPECT_EQ(db_.Eval("jet_mod(7, -3)"), "1");
  EXPECT_EQ(db_.Eval("jet_mod(-2147483648, -1)"), "0");
}

TEST_F(Operators, RaiseToPowers) {
  EXPECT_EQ(db_.Eval("jet_power(2, 10)"), "1024.0");
  EXPECT_EQ(db_.Eval("jet_power(4, 0.5)"), "2.0");
  EXPECT_EQ(db_.Eval("jet_power(-2, 3)"), "-8.0");
  EXPECT_EQ(db_.Eval("jet_power(0, 0)"), "1.0");
}

TEST_F(Operators, RefusePowersWithoutAnAnswer) {
  EXPECT_EQ(db_.ErrorOf("jet_power(-2, 0.5)"), 5);
  EXPECT_EQ(db_.ErrorOf("jet_power(0, -1)"), 5);
}

TEST_F(Operators, GiveNullForNull) {
  for (const char* name : {"divide", "int_divide", "mod", "power", "like"}) {
    EXPECT_EQ(db_.Eval(std::string("jet_") + name + "(null, 1)"), "NULL") << name;
    EXPECT_EQ(db_.Eval(std::string("jet_") + name + "(1, null)"), "NULL") << name;
  }
}

TEST_F(Operators, JoinTexts) {
  EXPECT_EQ(db_.Eval("jet_concat('lote ', 'A')"), "'lote A'");
  EXPECT_EQ(db_.Eval("jet_concat(1.5, 2)"), "'1.52'");
}

TEST_F(Operators, JoinNullAsNothingUnlessBothAreNull) {
  EXPECT_EQ(db_.Eval("jet_concat(null, 'A')"), "'A'");
  EXPECT_EQ(db_.Eval("jet_concat('A', null)"), "'A'");
  EXPECT_EQ(db_.Eval("jet_concat(null, null)"), "NULL");
}

TEST_F(Operators, CompareWithPatterns) {
  EXPECT_EQ(db_.Eval("jet_like('Tolva 3', 'tolva #')"), "1");
  EXPECT_EQ(db_.Eval("jet_like('Tolva X', 'tolva #')"), "0");
  EXPECT_EQ(db_.Eval("jet_like(125, '1*')"), "1");
}

TEST_F(Operators, RefuseTextThatIsNoNumber) { EXPECT_EQ(db_.ErrorOf("jet_divide('oil', 2)"), 13); }

TEST(FunctionError, ComesOutAsItWasRaised) {
  FunctionDb db;
  try {
    db.Eval("jet_to_text('aceite', 3, 1)");
    FAIL() << "nothing raised";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 3163);
    EXPECT_EQ(error.source(), "DAO.Database");
    EXPECT_FALSE(error.description().empty());
  }
}

TEST(FunctionError, IsNotReadOutOfOtherMessages) {
  EXPECT_FALSE(DecodeFunctionError("no such table: t"));
  EXPECT_FALSE(DecodeFunctionError(""));
  EXPECT_FALSE(DecodeFunctionError(nullptr));
  EXPECT_FALSE(
      DecodeFunctionError("\x01"
                          "12"));
  EXPECT_FALSE(
      DecodeFunctionError("\x01"
                          "12\x01"
                          "DAO"));
}

}  // namespace
}  // namespace ambrelio::embedded
