// One level reading.
#include "ambrelio/tanks/nivel.h"

#include "tanks/tank_test.h"

namespace ambrelio {
namespace {

using test::At;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NivelTest : public test::TankTest {
 protected:
  // Reading 2 of tank 1 stands between a discharge at 8:00 and an emptying at 12:00.
  void SetUp() override {
    TankTest::SetUp();
    Hold(1, 1, "2026-11-03 08:00:00", 1, 1);
    Read(1, 2, "2026-11-03 10:00:00", "1200", "900.25");
    Emptied(1, 1, "2026-11-03 12:00:00", 100, 0);
    probe->events.clear();
  }
  std::string Stored() {
    return Rows("select Momento, Nivel, Litros from Niveles where Item=2").at(0);
  }
};

TEST_F(NivelTest, ReadsItsRowOnceAtFirstUse) {
  Nivel reading(session, 1, 2);
  EXPECT_THAT(Sent([&] {
                EXPECT_EQ(reading.Momento(), At("2026-11-03 10:00:00"));
                EXPECT_EQ(reading.NivelLeido(), 1200);
                EXPECT_EQ(reading.Litros(), 900.25);
              }),
              ElementsAre("select Momento, Nivel, Litros from Niveles where (Deposito=1) and "
                          "(Item=2) "));
  Execute("update Niveles set Nivel=5, Litros=6");
  EXPECT_EQ(reading.NivelLeido(), 1200);
  EXPECT_EQ(reading.Litros(), 900.25);
}

TEST_F(NivelTest, ReadsNullAsZero) {
  Execute("update Niveles set Momento=Null, Nivel=Null, Litros=Null");
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.Momento(), OleDate());
  EXPECT_EQ(reading.NivelLeido(), 0);
  EXPECT_EQ(reading.Litros(), 0);
}

TEST_F(NivelTest, ThatNoLongerExistsReadsAsNothing) {
  Nivel reading(session, 1, 2);
  Execute("delete from Niveles");
  EXPECT_EQ(reading.Momento(), OleDate());
  EXPECT_EQ(reading.NivelLeido(), 0);
  EXPECT_EQ(reading.Litros(), 0);
}

TEST_F(NivelTest, LoadsTheHistoryWhenItIsMade) {
  const auto sent = Sent([&] { Nivel(session, 1, 2); });
  ASSERT_EQ(sent.size(), 1U);
  EXPECT_TRUE(sent[0].ends_with("from Niveles where Deposito=1) order by mmto "));
}

// --- level and litres

TEST_F(NivelTest, SetNivelStoresTheLevelAndLeavesTheLitres) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.NivelLeido(), 1200);
  EXPECT_THAT(Sent([&] { reading.SetNivel(1300); }),
              ElementsAre("update Niveles set Nivel=1300 where (Deposito=1) and (Item=2) "));
  EXPECT_EQ(reading.NivelLeido(), 1300);
  EXPECT_EQ(Stored(), "2026-11-03 10:00:00|1300|900.25");
}

TEST_F(NivelTest, SetNivelOfAMissingReadingKeepsTheLevelRead) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.NivelLeido(), 1200);
  Execute("delete from Niveles");
  reading.SetNivel(1300);
  EXPECT_EQ(reading.NivelLeido(), 1200);
}

TEST_F(NivelTest, SetLitrosStoresWholeLitresAHalfToTheEvenNeighbour) {
  Nivel reading(session, 1, 2);
  EXPECT_THAT(Sent([&] { reading.SetLitros(1234.5); }),
              ElementsAre("update Niveles set Litros=1234 where (Deposito=1) and (Item=2) "));
  EXPECT_EQ(Stored(), "2026-11-03 10:00:00|1200|1234");
  reading.SetLitros(1235.5);
  EXPECT_EQ(Stored(), "2026-11-03 10:00:00|1200|1236");
}

TEST_F(NivelTest, SetLitrosKeepsTheUnroundedValueInTheObject) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.Litros(), 900.25);
  reading.SetLitros(1234.5);
  EXPECT_EQ(reading.Litros(), 1234.5);
}

TEST_F(NivelTest, SetLitrosOfAMissingReadingKeepsTheLitresRead) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.Litros(), 900.25);
  Execute("delete from Niveles");
  reading.SetLitros(1234.5);
  EXPECT_EQ(reading.Litros(), 900.25);
}

TEST_F(NivelTest, SetLitrosRaisesOverflowAboveThirtyTwoBits) {
  Nivel reading(session, 1, 2);
  EXPECT_THAT(Sent([&] { EXPECT_EQ(ErrorOf([&] { reading.SetLitros(2147483648.0); }), 6); }),
              IsEmpty());
}

// --- bounds

TEST_F(NivelTest, BoundsAreTheNeighbouringEvents) {
  Nivel reading(session, 1, 2);
  Variant before;
  Variant after;
  EXPECT_THAT(Sent([&] { EXPECT_TRUE(reading.GetCotasMomento(before, after)); }), IsEmpty());
  EXPECT_EQ(test::Show(before), "2026-11-03 08:00:00");
  EXPECT_EQ(test::Show(after), "2026-11-03 12:00:00");
}

TEST_F(NivelTest, BoundsAreNullWhereThereIsNoEvent) {
  Read(1, 3, "2026-11-03 07:00:00", "1200", "900");
  Read(1, 4, "2026-11-03 13:00:00", "1200", "900");
  Variant before;
  Variant after;
  EXPECT_TRUE(Nivel(session, 1, 3).GetCotasMomento(before, after));
  EXPECT_TRUE(before.is_null());
  EXPECT_EQ(test::Show(after), "2026-11-03 08:00:00");
  EXPECT_TRUE(Nivel(session, 1, 4).GetCotasMomento(before, after));
  EXPECT_EQ(test::Show(before), "2026-11-03 12:00:00");
  EXPECT_TRUE(after.is_null());
}

TEST_F(NivelTest, BoundsOfAReadingOutsideTheHistoryAreNullAndFalse) {
  Nivel reading(session, 1, 9);
  Variant before = 1.0;
  Variant after = 2.0;
  EXPECT_FALSE(reading.GetCotasMomento(before, after));
  EXPECT_TRUE(before.is_null());
  EXPECT_TRUE(after.is_null());
}

TEST_F(NivelTest, BoundsOfATankWithoutHistoryAreNullAndFalse) {
  Nivel reading(session, 5, 1);
  Variant before;
  Variant after;
  EXPECT_FALSE(reading.GetCotasMomento(before, after));
  EXPECT_TRUE(before.is_null());
  EXPECT_TRUE(after.is_null());
}

TEST_F(NivelTest, BoundsDoNotTakeAnEmptyingOfThatNumberForTheReading) {
  Emptied(1, 2, "2026-11-03 09:00:00", 10, 0);
  Variant before;
  Variant after;
  EXPECT_TRUE(Nivel(session, 1, 2).GetCotasMomento(before, after));
  EXPECT_EQ(test::Show(before), "2026-11-03 09:00:00");
}

TEST_F(NivelTest, BoundsAreThoseOfTheMomentTheObjectWasMade) {
  Nivel reading(session, 1, 2);
  Read(1, 3, "2026-11-03 11:00:00", "1200", "900");
  Variant before;
  Variant after;
  EXPECT_TRUE(reading.GetCotasMomento(before, after));
  EXPECT_EQ(test::Show(after), "2026-11-03 12:00:00");
}

// --- moving

TEST_F(NivelTest, MovesStrictlyBetweenItsNeighbours) {
  Nivel reading(session, 1, 2);
  EXPECT_THAT(Sent([&] { reading.SetMomento(At("2026-11-03 08:00:01")); }),
              ElementsAre("update Niveles set Momento=#11/3/2026 8:0:1# where (Deposito=1) and "
                          "(Item=2) "));
  reading.SetMomento(At("2026-11-03 11:59:59"));
  EXPECT_EQ(Stored(), "2026-11-03 11:59:59|1200|900.25");
}

TEST_F(NivelTest, DoesNotMoveToOrBeyondANeighbour) {
  Nivel reading(session, 1, 2);
  EXPECT_THAT(Sent([&] {
                reading.SetMomento(At("2026-11-03 08:00:00"));
                reading.SetMomento(At("2026-11-03 07:00:00"));
                reading.SetMomento(At("2026-11-03 12:00:00"));
                reading.SetMomento(At("2026-11-03 13:00:00"));
              }),
              IsEmpty());
}

TEST_F(NivelTest, MovesFreelyWhereThereIsNoNeighbour) {
  Execute("delete from Vaciados");
  Execute("delete from Descargas");
  Nivel reading(session, 1, 2);
  reading.SetMomento(At("2020-01-01 00:00:00"));
  EXPECT_EQ(Stored(), "2020-01-01 00:00:00|1200|900.25");
}

TEST_F(NivelTest, DoesNotMoveWhenItIsOutsideTheHistory) {
  Nivel reading(session, 1, 9);
  EXPECT_THAT(Sent([&] { reading.SetMomento(At("2026-11-03 11:00:00")); }), IsEmpty());
}

TEST_F(NivelTest, MovingPutsTheDayNumberIntoTheLevelReadAndKeepsTheMomentRead) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.NivelLeido(), 1200);
  reading.SetMomento(At("2026-11-03 11:00:00"));
  EXPECT_EQ(reading.NivelLeido(), 46329);
  EXPECT_EQ(reading.Momento(), At("2026-11-03 10:00:00"));
  EXPECT_EQ(Stored(), "2026-11-03 11:00:00|1200|900.25");
  Nivel again(session, 1, 2);
  EXPECT_EQ(again.NivelLeido(), 1200);
  EXPECT_EQ(again.Momento(), At("2026-11-03 11:00:00"));
}

TEST_F(NivelTest, MovingBeforeTheFirstReadingIsReadFromTheRow) {
  Nivel reading(session, 1, 2);
  reading.SetMomento(At("2026-11-03 11:00:00"));
  EXPECT_EQ(reading.NivelLeido(), 1200);
  EXPECT_EQ(reading.Momento(), At("2026-11-03 11:00:00"));
}

TEST_F(NivelTest, MovingRoundsTheDayNumberUpInTheAfternoon) {
  Execute("update Vaciados set mmto=#11/3/2026 20:0:0#");
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.NivelLeido(), 1200);
  reading.SetMomento(At("2026-11-03 18:00:00"));
  EXPECT_EQ(reading.NivelLeido(), 46330);
}

TEST_F(NivelTest, MovingAReadingThatIsGoneLeavesTheObjectAlone) {
  Nivel reading(session, 1, 2);
  EXPECT_EQ(reading.NivelLeido(), 1200);
  Execute("delete from Niveles");
  reading.SetMomento(At("2026-11-03 11:00:00"));
  EXPECT_EQ(reading.NivelLeido(), 1200);
}

}  // namespace
}  // namespace ambrelio
