// A mill with a season of any size, the same for the same seed.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/dao/database.h"

namespace ambrelio::bench {

struct SeasonSize {
  int64_t weighings = 20'000;
  int hoppers = 4;
  int tanks = 40;
  int weighings_per_discharge = 25;
  double split_share = 0.05;  // of the weighings, each between its discharge and the next one
};

// What stands where, for the questions to ask.
struct GeneratedSeason {
  int32_t discharges_per_hopper = 0;
  // A tank with exactly `kPickedDischarges` discharges, whatever the size; tank 2 holds all others.
  int16_t picked_tank = 1;
  static constexpr int kPickedDischarges = 20;
};

// Fills the empty tables of a new mill database.
GeneratedSeason FillSeason(dao::DBEngine& engine, dao::Database& database, const SeasonSize& size);

}  // namespace ambrelio::bench
