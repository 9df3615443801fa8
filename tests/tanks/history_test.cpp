// The history of a tank.
#include "ambrelio/tanks/history.h"

#include "ambrelio/tanks/lists.h"
#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;

class HistoryTest : public test::TankTest {
 protected:
  static std::vector<std::string> Shown(const Variant& rows) {
    std::vector<std::string> shown;
    for (const Variant& row : rows.array()) shown.push_back(test::Show(row));
    return shown;
  }
};

TEST(ConsultaHistorial, IsTheUnionOfAllMovements) {
  EXPECT_EQ(
      tanks::ConsultaHistorial(3),
      "(select MomentoHasta as mmto, 1 as tpo, Tolva as dto, Descarga as cod from Descargas where "
      "Deposito=3) union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod from Vaciados "
      "where Deposito=3) union (select mmto, 2 as tpo, Deposito as dto, Vaciado as cod from "
      "Vaciados where Destino=3) union (select Momento as mmto, 3 as tpo, Deposito as dto, Item as "
      "cod from Niveles where Deposito=3) order by mmto ");
}

TEST_F(HistoryTest, OfATankNeverUsedIsEmpty) {
  EXPECT_EQ(Sent([&] { EXPECT_TRUE(tank1.Historial().is_empty()); }),
            std::vector<std::string>{tanks::ConsultaHistorial(1)});
}

TEST_F(HistoryTest, ListsDischargesReadingsAndEmptyingsByMoment) {
  Hold(2, 5, "2026-11-03 10:00:00", 1, 1);
  Emptied(1, 1, "2026-11-03 12:00:00", 100, 4);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  EXPECT_THAT(Shown(tank1.Historial()),
              ElementsAre("[2026-11-03 10:00:00, 1, 2, 5]", "[2026-11-03 11:00:00, 3, 1, 1]",
                          "[2026-11-03 12:00:00, 2, 1, 1]"));
  Deposito tank4(session, 4);
  EXPECT_THAT(Shown(tank4.Historial()), ElementsAre("[2026-11-03 12:00:00, 2, 1, 1]"));
}

TEST_F(HistoryTest, OrdersEqualMomentsByKindNumberAndCode) {
  const char* moment = "2026-11-03 10:00:00";
  Read(1, 2, moment, "1200", "900");
  Read(1, 1, moment, "1200", "900");
  Emptied(3, 1, moment, 100, 1);
  Emptied(1, 8, moment, 100, 0);
  Hold(2, 5, moment, 1, 1);
  Hold(1, 9, moment, 1, 1);
  std::vector<std::string> codes;
  const Variant history = tank1.Historial();
  for (const Variant& row : history.array()) {
    codes.push_back(test::Show(row.array()[1]) + " " + test::Show(row.array()[2]) + " " +
                    test::Show(row.array()[3]));
  }
  EXPECT_THAT(codes, ElementsAre("1 1 9", "1 2 5", "2 1 8", "2 3 1", "3 1 1", "3 1 2"));
}

TEST_F(HistoryTest, ListsAnEmptyingOfATankIntoItselfOnce) {
  Emptied(1, 1, "2026-11-03 12:00:00", 100, 1);
  EXPECT_THAT(Shown(tank1.Historial()), ElementsAre("[2026-11-03 12:00:00, 2, 1, 1]"));
}

TEST_F(HistoryTest, ListsATransferredDischargeAtItsOwnEnd) {
  Hold(2, 5, "2026-11-03 10:00:00", 1, 1);
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  double litres = 100;
  ASSERT_EQ(tank1.NuevoVaciado(2, litres, At("2026-11-03 12:00:00")), 1);
  EXPECT_THAT(Shown(tank2.Historial()),
              ElementsAre("[2026-11-03 10:00:00, 1, 2, 5]", "[2026-11-03 12:00:00, 2, 1, 1]"));
}

TEST_F(HistoryTest, KeepsANullMomentAndListsItFirst) {
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  Hold(2, 5, "", 1, 1);
  EXPECT_THAT(Shown(tank1.Historial()),
              ElementsAre("[Null, 1, 2, 5]", "[2026-11-03 11:00:00, 3, 1, 1]"));
}

TEST_F(HistoryTest, RowsHoldADateAndWholeNumbers) {
  Read(1, 1, "2026-11-03 11:00:00", "1200", "900");
  const Variant history = tank1.Historial();
  const Variant::Array& row = history.array().at(0).array();
  ASSERT_EQ(row.size(), 4U);
  EXPECT_TRUE(row[0].is_date());
  EXPECT_EQ(ToLong(row[1]), tanks::kReading);
}

// --- neighbours in a list

Variant Event(const Variant& moment, int32_t kind, int16_t number, int32_t code) {
  return Variant::Array{moment, kind, number, code};
}

TEST(FindNeighbours, TakesTheFirstEventThatMatches) {
  const Variant history = Variant::Array{Event(1.0, 1, 1, 7), Event(2.0, 2, 1, 7),
                                         Event(3.0, 2, 3, 7), Event(4.0, 2, 1, 7)};
  const auto found = tanks::FindNeighbours(history, tanks::kEmptying, 1, 7);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->before, Variant(1.0));
  EXPECT_EQ(found->after, Variant(3.0));
}

TEST(FindNeighbours, OfTheOnlyEventAreNull) {
  const auto found =
      tanks::FindNeighbours(Variant::Array{Event(1.0, 3, 1, 7)}, tanks::kReading, 1, 7);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->before.is_null());
  EXPECT_TRUE(found->after.is_null());
}

TEST(FindNeighbours, NeedKindNumberAndCode) {
  const Variant history = Variant::Array{Event(1.0, 3, 1, 7)};
  EXPECT_FALSE(tanks::FindNeighbours(history, 2, 1, 7));
  EXPECT_FALSE(tanks::FindNeighbours(history, 3, 2, 7));
  EXPECT_FALSE(tanks::FindNeighbours(history, 3, 1, 8));
  EXPECT_FALSE(tanks::FindNeighbours(Variant(), 3, 1, 7));
}

TEST(FindNeighbours, PassOverNulls) {
  const Variant null = Variant::Null();
  const Variant history = Variant::Array{Variant::Array{1.0, null, null, null},
                                         Variant::Array{2.0, int32_t{2}, null, null}};
  EXPECT_FALSE(tanks::FindNeighbours(history, 2, 0, 0));
}

TEST(IsLater, ComparesDatesOnly) {
  const Variant early = At("2026-11-03 10:00:00");
  const Variant late = At("2026-11-03 10:00:01");
  EXPECT_TRUE(tanks::IsLater(late, early));
  EXPECT_FALSE(tanks::IsLater(early, late));
  EXPECT_FALSE(tanks::IsLater(early, early));
  EXPECT_FALSE(tanks::IsLater(late, Variant::Null()));
  EXPECT_FALSE(tanks::IsLater(Variant::Null(), early));
}

TEST(RequireCountable, AcceptsWhatSixteenBitsCount) {
  EXPECT_NO_THROW(tanks::RequireCountable(Variant::Array(32767)));
  try {
    tanks::RequireCountable(Variant::Array(32768));
    FAIL() << "more than 16 bits count";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 6);
  }
}

}  // namespace
}  // namespace ambrelio
