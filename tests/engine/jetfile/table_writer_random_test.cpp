// Every sample, its tables changed at random beside a model, and the file checked as a whole.
#include <gtest/gtest.h>

#include <set>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/made_table.h"
#include "engine/jetfile/random_table.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

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

constexpr size_t kTableRounds = 4;

TEST_P(RandomChanges, LeaveASoundFileThatHoldsWhatTheModelHolds) {
  JetFile file = JetFile::FromBytes(SampleBytes(GetParam().name), GetParam().password);
  const auto tables = UserTables(file);
  for (uint32_t round = 0; round < kTableRounds; ++round) {
    uint32_t seed = 1000 * round;
    for (const auto& [name, page] : tables) {
      RandomTable table(file, page, ++seed);
      if (!table.IsWritable()) continue;
      // So many values that a debug build takes about a second for a sample.
      table.ChangeSome(5000 / kTableRounds / tables.size() / table.column_count() + 20);
      table.ExpectRows();
      ASSERT_FALSE(HasFailure()) << name;
    }
    ASSERT_EQ(CheckText(file), "");
  }
}

// The pages of a table, its indexes and its long values.
std::set<uint32_t> PagesOfTable(const JetFile& file, uint32_t page) {
  const TableDefinition definition = ReadDefinition(file, page);
  std::set<uint32_t> pages(definition.pages.begin(), definition.pages.end());
  std::vector<RowPointer> maps = {definition.owned_map};
  for (const IndexDefinition& index : definition.indexes) maps.push_back(index.map);
  for (const LongValueMaps& column : definition.long_values) maps.push_back(column.owned);
  for (const RowPointer map : maps) {
    const UsageMap of_map = ReadUsageMap(file, map);
    pages.insert(of_map.pages.begin(), of_map.pages.end());
  }
  return pages;
}

TEST_P(RandomChanges, LeaveThePagesOfOtherTablesAlone) {
  JetFile file = JetFile::FromBytes(SampleBytes(GetParam().name), GetParam().password);
  const uint32_t changed = UserTables(file).begin()->second;
  std::set<uint32_t> others;
  for (const CatalogueObject& object : ReadCatalogue(file).objects) {
    if (object.type != ObjectType::kTable || object.definition_page() == changed) continue;
    others.merge(PagesOfTable(file, object.definition_page()));
  }
  RandomTable(file, changed, 1).ChangeSome(100);
  EXPECT_FALSE(file.changes().empty());
  for (const auto& [page, bytes] : file.changes()) EXPECT_FALSE(others.contains(page)) << page;
}

// Indexes that the samples do not have: of long keys, of many equal ones, over several columns.
TEST(RandomMadeTable, IsSoundWithEveryKindOfIndex) {
  JetFile file = JetFile::FromBytes(SampleBytes("adox_jet4"), "");
  const uint32_t page = MakeTable(file, "Made",
                                  {{"Number"},
                                   {"Text", ColumnType::kText, 400},
                                   {"Flag", ColumnType::kBoolean},
                                   {"Other", ColumnType::kText, 40},
                                   {"Memo", ColumnType::kMemo},
                                   {"Double", ColumnType::kDouble}},
                                  {{{0, 5}, IndexDefinition::kUnique},
                                   {{1}, 0},
                                   {{2}, 0},
                                   {{3, 1}, IndexDefinition::kIgnoreNulls},
                                   {{4}, IndexDefinition::kIgnoreNulls}});
  RandomTable table(file, page, 7);
  for (int round = 0; round < 6; ++round) {
    table.ChangeSome(250);
    table.ExpectRows();
    ASSERT_EQ(CheckText(file), "");
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
