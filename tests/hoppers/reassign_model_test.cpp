// Random re-assignments against a model that knows no SQL: weighings with their shares by
// discharge.
#include <map>
#include <random>
#include <tuple>

#include "ambrelio/hoppers/reassign.h"
#include "support/mill.h"

namespace ambrelio {
namespace {

using DischargeKey = std::pair<int, int>;  // hopper, number

struct ModelWeighing {
  DischargeKey whole;                     // what PESADA says
  std::map<DischargeKey, double> shares;  // empty while undivided

  void Move(DischargeKey from, DischargeKey to, double quantity) {
    if (shares.empty()) {
      if (whole != from) return;
      shares = {{from, 1}};
    }
    const auto share = shares.find(from);
    if (share == shares.end()) return;
    shares[to] += share->second * quantity;
    share->second -= share->second * quantity;
    for (const auto& [discharge, size] : shares) {
      if (size >= 0.999) whole = discharge;
    }
    std::erase_if(shares, [](const auto& s) { return s.second >= 0.999 || s.second < 0.001; });
  }
};

class ReassignModel : public test::MillTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  static constexpr int kLots = 5;

  std::map<std::tuple<int, int, int>, double> StoredShares() {
    std::map<std::tuple<int, int, int>, double> shares;
    auto rows = session.Database().OpenRecordset("splitDescar");
    for (; !rows->AtEnd(); rows->MoveNext()) {
      shares[{ToLong(rows->Value("partida")), ToLong(rows->Value("tolva")),
              ToLong(rows->Value("descarga"))}] = ToDouble(rows->Value("fraccion"));
    }
    return shares;
  }

  void ExpectAsInModel(const std::vector<ModelWeighing>& model) {
    std::map<std::tuple<int, int, int>, double> shares;
    std::vector<std::string> whole;
    for (int lot = 0; lot < kLots; ++lot) {
      const ModelWeighing& weighing = model[lot];
      whole.push_back(std::to_string(lot) + "|" + std::to_string(weighing.whole.first) + "|" +
                      std::to_string(weighing.whole.second));
      for (const auto& [discharge, size] : weighing.shares) {
        shares[{lot, discharge.first, discharge.second}] = size;
      }
    }
    EXPECT_EQ(Weighings(), whole);
    EXPECT_EQ(StoredShares(), shares);
  }
};

TEST_P(ReassignModel, AgreesWithTheModel) {
  std::mt19937 random(GetParam());
  const auto pick = [&random](int count) { return static_cast<int>(random() % count); };
  const auto discharge = [&] { return DischargeKey(1 + pick(2), 1 + pick(3)); };

  std::vector<ModelWeighing> model;
  for (int lot = 0; lot < kLots; ++lot) {
    model.push_back({discharge(), {}});
    Weigh({.lot = lot, .hopper = model.back().whole.first, .discharge = model.back().whole.second});
  }
  // Shares of powers of two keep the arithmetic of both sides exact.
  const double quantities[] = {1, 0.5, 0.25, 0.75, 1, 0.5};
  for (int step = 0; step < 40; ++step) {
    const DischargeKey from = discharge();
    const DischargeKey to = discharge();
    if (from == to) continue;
    const double quantity = quantities[pick(6)];
    SCOPED_TRACE("step " + std::to_string(step));
    ReassignDischarge(session, static_cast<int16_t>(from.first), from.second,
                      static_cast<int16_t>(to.first), to.second, quantity);
    for (ModelWeighing& weighing : model) weighing.Move(from, to, quantity);
    ExpectAsInModel(model);
    if (HasFailure()) break;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ReassignModel, ::testing::Range(1U, 9U));

}  // namespace
}  // namespace ambrelio
