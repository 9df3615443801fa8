// Whatever is moved between tanks, nothing of a discharge is won or lost but dust.
#include <cmath>
#include <map>

#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

class Conservation : public test::TankTest {
 protected:
  static constexpr int kDischarges = 3;
  static constexpr double kRounding = 1e-8;  // of one amount written with eight decimals
  static constexpr double kDust = 0.0001;

  // Discharges 1 to 3 of hopper 1, one in each of tanks 1 to 3, of 1000 litres each.
  void SetUp() override {
    TankTest::SetUp();
    for (int i = 1; i <= kDischarges; ++i) {
      Hold(1, i, "2026-11-03 08:00:00", i, 1);
      Read(i, 1, "2026-11-03 09:00:00", "1000", "1000");
    }
  }

  double InTheMill(int discharge) {
    return ToDouble(
        Scalar("select sum(Fraccion) from Descargas where Descarga=" + std::to_string(discharge)));
  }
  // Empties, with a reading of the litres that remain before the emptying, so that the share is
  // known. Keeps count of what leaves the mill.
  void Empty(int16_t from, int16_t to, double litres) {
    Deposito tank(session, from);
    const double content = ToDouble(tank.LitrosActual());
    std::map<int, double> held;
    for (int d = 1; d <= kDischarges; ++d) held[d] = Fraction(d, from);
    clock.Set(OleDate::FromDays(clock.Now().days() + 1));
    ASSERT_NE(tank.NuevoVaciado(to, litres, {}, Variant::Array{int16_t{0}, ""}), 0);
    if (to != 0) return;
    for (const auto& [discharge, fraction] : held) left_[discharge] += fraction * litres / content;
  }
  double Fraction(int discharge, int tank) {
    const Variant fraction =
        Scalar("select Fraccion from Descargas where Descarga=" + std::to_string(discharge) +
               " and Deposito=" + std::to_string(tank));
    return fraction.is_empty() ? 0 : ToDouble(fraction);
  }

  std::map<int, double> left_;
};

TEST_F(Conservation, TransfersKeepTheSumOfEveryDischarge) {
  int moves = 0;
  for (int round = 0; round < 6; ++round) {
    Empty(1, 2, 250);
    Empty(2, 3, 300);
    Empty(3, 1, 275);
    moves += 3;
    for (int d = 1; d <= kDischarges; ++d) EXPECT_NEAR(InTheMill(d), 1, kRounding * moves);
  }
}

TEST_F(Conservation, WhatLeftAndWhatIsHeldAddUpToTheWhole) {
  int moves = 0;
  for (int round = 0; round < 4; ++round) {
    Empty(1, 2, 200);
    Empty(2, 0, 150);
    Empty(2, 3, 100);
    Empty(3, 0, 120);
    Empty(3, 1, 90);
    moves += 5;
    for (int d = 1; d <= kDischarges; ++d) {
      EXPECT_NEAR(InTheMill(d) + left_[d], 1, kRounding * moves) << "discharge " << d;
    }
  }
}

TEST_F(Conservation, OnlyDustIsLost) {
  Empty(1, 2, 0.05);  // a share of 0.00005, cleared by the next change
  Empty(3, 2, 500);
  EXPECT_EQ(Fraction(1, 2), 0);
  EXPECT_NEAR(InTheMill(1), 1 - 0.00005, kRounding);
  EXPECT_GT(InTheMill(1), 1 - kDust);
  EXPECT_NEAR(InTheMill(2), 1, kRounding);
  EXPECT_NEAR(InTheMill(3), 1, 2 * kRounding);
}

TEST_F(Conservation, UndoingEverythingBringsTheFractionsBack) {
  Empty(1, 2, 200);
  Empty(2, 3, 150);
  Empty(3, 0, 120);
  EXPECT_TRUE(tank3.DeshacerVaciado());
  EXPECT_TRUE(tank2.DeshacerVaciado());
  EXPECT_TRUE(tank1.DeshacerVaciado());
  for (int d = 1; d <= kDischarges; ++d) {
    for (int tank = 1; tank <= 3; ++tank) {
      EXPECT_NEAR(Fraction(d, tank), d == tank ? 1 : 0, kRounding);
    }
  }
}

}  // namespace
}  // namespace ambrelio
