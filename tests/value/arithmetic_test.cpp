#include "ambrelio/value/arithmetic.h"

#include <gtest/gtest.h>

#include <functional>

namespace ambrelio {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();

int ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

TEST(Checked, PassesAFiniteResultOn) {
  EXPECT_EQ(Checked(0.0), 0.0);
  EXPECT_EQ(Checked(-kLargest), -kLargest);
}

TEST(Checked, RaisesOverflowForAResultOutOfRange) {
  EXPECT_EQ(ErrorOf([] { Checked(kLargest * 2); }), 6);
  EXPECT_EQ(ErrorOf([] { Checked(-kLargest * 2); }), 6);
}

TEST(Quotient, Divides) {
  EXPECT_EQ(Quotient(1, 4), 0.25);
  EXPECT_EQ(Quotient(0, -4), 0.0);
}

TEST(Quotient, RaisesDivisionByZero) {
  EXPECT_EQ(ErrorOf([] { Quotient(1, 0); }), 11);
  EXPECT_EQ(ErrorOf([] { Quotient(-1, -0.0); }), 11);
}

TEST(Quotient, RaisesOverflowForZeroByZero) {
  EXPECT_EQ(ErrorOf([] { Quotient(0, 0); }), 6);
}

TEST(Quotient, RaisesOverflowForAQuotientOutOfRange) {
  EXPECT_EQ(ErrorOf([] { Quotient(kLargest, 0.5); }), 6);
}

TEST(Successor, IsTheNextNumber) {
  EXPECT_EQ(Successor(0), 1);
  EXPECT_EQ(Successor(2147483646), 2147483647);
}

TEST(Successor, RaisesOverflowBehindTheLastNumber) {
  EXPECT_EQ(ErrorOf([] { Successor(2147483647); }), 6);
}

}  // namespace
}  // namespace ambrelio
