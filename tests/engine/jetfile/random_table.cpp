#include "engine/jetfile/random_table.h"

#include <gtest/gtest.h>

#include <set>

#include "engine/jetfile/errors.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

// With so many rows, as many are deleted as come.
constexpr size_t kManyRows = 200;

}  // namespace

bool RandomTable::IsWritable() const {
  return test::ErrorOf([this] { writer_.CheckWritable(); }) == 0;
}

void RandomTable::ChangeSome(size_t times) {
  for (size_t i = 0; i < times; ++i) {
    Plan();
    Apply();
  }
  writer_.Finish();
}

void RandomTable::ExpectRows() const { EXPECT_EQ(ReadRows(file_, page_), rows_); }

void RandomTable::Plan() {
  changes_ = {};
  std::set<RowPointer> used;
  for (size_t count = random_.OneIn(4) ? random_.Below(6) + 1 : 1; count > 0; --count) {
    const size_t kind = random_.Below(rows_.size() < kManyRows ? 10 : 8);
    if (kind >= 6 || rows_.empty()) {
      changes_.inserted.push_back(random_.Row(writer_.definition()));
      continue;
    }
    const auto skip = static_cast<std::ptrdiff_t>(random_.Below(rows_.size()));
    const auto& [row, values] = *std::next(rows_.begin(), skip);
    if (!used.insert(row).second) continue;
    if (kind < 2) {
      changes_.deleted.push_back(row);
    } else {
      changes_.updated.emplace_back(row, Changed(values));
    }
  }
}

// A few of the values, or all of them.
std::vector<Variant> RandomTable::Changed(std::vector<Variant> values) {
  const auto& columns = writer_.definition().columns;
  if (random_.OneIn(3)) return random_.Row(writer_.definition());
  for (size_t count = random_.Below(3); count > 0; --count) {
    const size_t position = random_.Below(columns.size());
    values[position] = random_.Value(columns[position]);
  }
  return values;
}

void RandomTable::Apply() {
  const auto before = file_.changes();
  std::vector<RowPointer> inserted;
  const int error = test::ErrorOf([&] { inserted = writer_.Apply(changes_); });
  if (error != 0) {
    const std::set<int> refusals = {kDuplicateKey, kTooLarge, kNullInKey, kNotSupported};
    EXPECT_TRUE(refusals.contains(error)) << error;
    EXPECT_EQ(file_.changes(), before);
    return;
  }
  for (const RowPointer row : changes_.deleted) rows_.erase(row);
  for (const auto& [row, values] : changes_.updated) rows_[row] = values;
  for (size_t i = 0; i < inserted.size(); ++i) {
    EXPECT_TRUE(rows_.emplace(inserted[i], changes_.inserted[i]).second);
  }
}

}  // namespace ambrelio::jetfile
