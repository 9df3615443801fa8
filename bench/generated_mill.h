// A mill with a season of any size, every row the same each time. What the questions ask about is
// the same at every size; the rest of the season grows around it.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/value/ole_date.h"

namespace ambrelio::bench {

struct SeasonSize {
  int64_t weighings = 20'000;  // 10,000 at least, for the days to have room
  int16_t hoppers = 8;
  int16_t tanks = 40;
  int weighings_per_discharge = 25;
  double split_share = 0.05;  // of the weighings, each between its discharge and the next one
};

// What stands where, for the questions to ask.
struct GeneratedSeason {
  SeasonSize size;
  // The discharges of a hopper that are closed; the next one is open and has weighings.
  int32_t closed_discharges = 0;

  // A tank with exactly `kPickedDischarges` discharges, all from one hopper, `kPickedEmptyings`
  // emptyings and `kPickedReadings` readings. Tank 2 holds all other discharges; what the rest
  // holds came out of it.
  static constexpr int16_t kPickedTank = 1;
  static constexpr int16_t kFullTank = 2;
  static constexpr int16_t kPickedHopper = 1;
  static constexpr int kPickedDischarges = 20;
  static constexpr int kPickedEmptyings = 3;
  static constexpr int kPickedReadings = 10;
  // A hopper beside that one.
  static constexpr int16_t kOtherHopper = 5;

  // The season has 90 days and one more, on which every hopper has five discharges, every tank a
  // reading, and ten emptyings take place.
  static OleDate FirstDay() { return OleDate::FromDays(45960); }
  static OleDate PickedDay() { return OleDate::FromDays(FirstDay().days() + 90); }
};

// Fills the empty tables of a new mill database that nobody else has open.
GeneratedSeason FillSeason(const std::string& path, const SeasonSize& size);

}  // namespace ambrelio::bench
