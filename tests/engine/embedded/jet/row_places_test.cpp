#include "ambrelio/engine/embedded/jet/row_places.h"

#include <gmock/gmock.h>

namespace ambrelio::embedded {
namespace {

using jetfile::RowPointer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(RowPlaces, TellPlaceAndNumberByEachOther) {
  RowPlaces places;
  const int64_t number = places.NumberOf({50, 3});
  EXPECT_EQ(places.PlaceOf(number), (RowPointer{50, 3}));
  EXPECT_EQ(places.NumberOf({50, 3}), number);
}

TEST(RowPlaces, NumberRowsInTheOrderOfTheFile) {
  RowPlaces places;
  EXPECT_LT(places.NumberOf({50, 255}), places.NumberOf({51, 0}));
  EXPECT_EQ(places.NumberOf({50, 0}), RowPlaces::FirstNumberOn(50));
  EXPECT_EQ(places.NumberOf({50, 255}), RowPlaces::LastNumberOn(50));
}

TEST(RowPlaces, LetANewRowKeepItsNumberWhereverItIsPut) {
  RowPlaces places;
  const int64_t number = places.NumberOf({50, 3}) + 1;
  places.Place(number, {70, 9});
  EXPECT_EQ(places.PlaceOf(number), (RowPointer{70, 9}));
  EXPECT_EQ(places.NumberOf({70, 9}), number);
}

// The storage gives the next new row the number behind the highest.
TEST(RowPlaces, GiveNoNumberThatTheStorageHasGivenSince) {
  RowPlaces places;
  places.Place(places.NumberOf({50, 4}), {70, 9});
  const int64_t given_here = places.NumberOf({50, 4});
  places.Place(given_here + 1, {80, 1});
  places.Place(places.NumberOf({50, 5}), {90, 2});
  EXPECT_NE(places.NumberOf({50, 5}), given_here + 1);
  EXPECT_EQ(places.PlaceOf(given_here + 1), (RowPointer{80, 1}));
}

TEST(RowPlaces, GiveAnotherNumberWhereTheUsualOneIsTaken) {
  RowPlaces places;
  const int64_t taken = places.NumberOf({50, 4});
  places.Place(taken, {70, 9});
  const int64_t number = places.NumberOf({50, 4});
  EXPECT_NE(number, taken);
  EXPECT_EQ(places.PlaceOf(number), (RowPointer{50, 4}));
  EXPECT_EQ(places.NumberOf({50, 4}), number);
}

TEST(RowPlaces, KnowWhoIsOnAPageUnderAnotherNumber) {
  RowPlaces places;
  places.Place(1, {70, 9});
  places.Place(2, {71, 0});
  places.Place(RowPlaces::FirstNumberOn(70), {70, 0});
  EXPECT_THAT(places.OthersOn(70), ElementsAre(1));
  places.Remove(1);
  EXPECT_THAT(places.OthersOn(70), IsEmpty());
}

}  // namespace
}  // namespace ambrelio::embedded
