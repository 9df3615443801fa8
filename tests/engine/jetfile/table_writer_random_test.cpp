// Every sample, its tables changed at random beside a model, and the file checked as a whole.
#include <gtest/gtest.h>

#include <set>

#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/samples.h"
#include "engine/jetfile/table_model.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

constexpr int kDuplicateKey = 3022;
constexpr int kTooLarge = 3047;
constexpr int kNullInKey = 3058;
constexpr int kNotSupported = 3251;

class RandomTable {
 public:
  RandomTable(JetFile& file, uint32_t page, uint32_t seed)
      : file_(file), page_(page), writer_(file, page), random_(seed), rows_(ReadRows(file, page)) {}

  bool IsWritable() const {
    return test::ErrorOf([this] { writer_.CheckWritable(); }) == 0;
  }

  void ChangeSome(size_t times) {
    for (size_t i = 0; i < times; ++i) {
      Plan();
      Apply();
    }
    writer_.Finish();
  }

  void ExpectRows() const { EXPECT_EQ(ReadRows(file_, page_), rows_); }

 private:
  void Plan() {
    changes_ = {};
    std::set<RowPointer> used;
    for (size_t count = random_.OneIn(4) ? random_.Below(6) + 1 : 1; count > 0; --count) {
      const size_t kind = random_.Below(rows_.size() < 200 ? 10 : 8);
      if (kind >= 6 || rows_.empty()) {
        changes_.inserted.push_back(random_.Row(writer_.definition()));
        continue;
      }
      const auto row =
          std::next(rows_.begin(), static_cast<std::ptrdiff_t>(random_.Below(rows_.size())));
      if (!used.insert(row->first).second) continue;
      if (kind < 2) {
        changes_.deleted.push_back(row->first);
      } else {
        changes_.updated.emplace_back(row->first, Changed(row->second));
      }
    }
  }

  // A few of the values, or all of them.
  std::vector<Variant> Changed(std::vector<Variant> values) {
    const auto& columns = writer_.definition().columns;
    if (random_.OneIn(3)) return random_.Row(writer_.definition());
    for (size_t count = random_.Below(3); count > 0; --count) {
      const size_t position = random_.Below(columns.size());
      values[position] = random_.Value(columns[position]);
    }
    return values;
  }

  void Apply() {
    const auto before = file_.changes();
    std::vector<RowPointer> inserted;
    const int error = test::ErrorOf([&] { inserted = writer_.Apply(changes_); });
    if (error != 0) {
      EXPECT_TRUE(error == kDuplicateKey || error == kTooLarge || error == kNullInKey ||
                  error == kNotSupported)
          << error;
      EXPECT_EQ(file_.changes(), before);
      return;
    }
    for (const RowPointer row : changes_.deleted) rows_.erase(row);
    for (const auto& [row, values] : changes_.updated) rows_[row] = values;
    for (size_t i = 0; i < inserted.size(); ++i) {
      EXPECT_TRUE(rows_.emplace(inserted[i], changes_.inserted[i]).second);
    }
  }

  JetFile& file_;
  uint32_t page_;
  TableWriter writer_;
  RandomValues random_;
  TableRowValues rows_;
  TableChanges changes_;
};

class RandomChanges : public testing::TestWithParam<Sample> {};

std::vector<Sample> WritableSamples() {
  std::vector<Sample> samples;
  for (const Sample& sample : Samples()) {
    if (sample.jet4 && !UserTables(OpenSample(sample)).empty()) samples.push_back(sample);
  }
  return samples;
}

INSTANTIATE_TEST_SUITE_P(Files, RandomChanges, testing::ValuesIn(WritableSamples()),
                         [](const auto& sample) { return TestName(sample.param); });

constexpr size_t kRounds = 4;
constexpr size_t kChanges = 2000;

TEST_P(RandomChanges, LeaveASoundFileThatHoldsWhatTheModelHolds) {
  JetFile file = JetFile::FromBytes(SampleBytes(GetParam().name), GetParam().password);
  const auto tables = UserTables(file);
  for (size_t round = 0; round < kRounds; ++round) {
    uint32_t seed = static_cast<uint32_t>(round);
    for (const auto& [name, page] : tables) {
      RandomTable table(file, page, ++seed * 100);
      if (!table.IsWritable()) continue;
      table.ChangeSome(kChanges / kRounds / tables.size() + 1);
      table.ExpectRows();
      ASSERT_FALSE(HasFailure()) << name;
    }
    ASSERT_EQ(CheckText(file), "");
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
