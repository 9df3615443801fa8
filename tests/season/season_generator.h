// Random seasons: journals that a mill could have written, refused calls included, made anew from a
// seed.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ambrelio::season {

struct SeasonOptions {
  uint32_t seed = 1;
  int days = 10;
  int loads_a_day = 20;
  int hoppers = 4;
  int intermediate_hoppers = 2;
  int tanks = 6;
  // Questions put between the events: compositions, states, histories.
  bool questions = true;
};

// The lines of the journal, in the order of time.
std::vector<nlohmann::ordered_json> MakeSeason(const SeasonOptions& options);

}  // namespace ambrelio::season
