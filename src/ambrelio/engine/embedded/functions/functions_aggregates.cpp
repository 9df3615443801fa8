#include <memory>
#include <utility>
#include <vector>

#include "ambrelio/engine/embedded/functions/function_support.h"

namespace ambrelio::embedded {

namespace {

// Sum and average, added up in the order of the rows: SQLite's own have done it in different ways
// from version to version, and the last digit of an answer with them. The context starts as zero
// bytes, which is the empty sum.
struct Sum {
  double total;
  int64_t count;
};

void AddToSum(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (IsNull(values[0])) return;
  Guarded(context, [&] {
    const double number = NumberOf(values[0]);
    auto* sum = static_cast<Sum*>(sqlite3_aggregate_context(context, sizeof(Sum)));
    if (sum == nullptr) throw std::bad_alloc();
    sum->total += number;
    ++sum->count;
  });
}

void FinishSum(sqlite3_context* context) {
  const auto* sum = static_cast<const Sum*>(sqlite3_aggregate_context(context, 0));
  if (sum == nullptr) return;
  Guarded(context, [&] { SetNumber(context, sum->total); });
}

void FinishAverage(sqlite3_context* context) {
  const auto* sum = static_cast<const Sum*>(sqlite3_aggregate_context(context, 0));
  if (sum == nullptr) return;
  Guarded(context, [&] { SetNumber(context, sum->total / static_cast<double>(sum->count)); });
}

// A value that outlives the row it came from.
struct FreeValue {
  void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
};
using KeptValue = std::unique_ptr<sqlite3_value, FreeValue>;

KeptValue Keep(sqlite3_value* value) {
  KeptValue kept(sqlite3_value_dup(value));
  if (kept == nullptr) throw std::bad_alloc();
  return kept;
}

// Null stands before numbers, numbers before text.
int Rank(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return 0;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return 1;
    default:
      return 2;
  }
}

int CompareKeys(sqlite3_value* a, sqlite3_value* b) {
  const int rank = Rank(a);
  if (rank != Rank(b)) return rank < Rank(b) ? -1 : 1;
  if (rank == 0) return 0;
  if (rank == 2) return CompareText(StoredText(a), StoredText(b));
  const double number_a = sqlite3_value_double(a);
  const double number_b = sqlite3_value_double(b);
  return number_a < number_b ? -1 : (number_a > number_b ? 1 : 0);
}

// The row that `first` or `last` has settled on so far: its value and its keys.
class Chosen {
 public:
  // Whether the row of these arguments stands before (less than 0) or behind the chosen one.
  int Compare(Arguments row) const {
    for (size_t i = 1; i < row.size(); ++i) {
      const int difference = CompareKeys(row[i], row_[i].get());
      if (difference != 0) return difference;
    }
    return 0;
  }

  bool empty() const { return row_.empty(); }
  sqlite3_value* value() const { return row_.front().get(); }

  void Choose(Arguments row) {
    std::vector<KeptValue> kept;
    kept.reserve(row.size());
    for (sqlite3_value* value : row) kept.push_back(Keep(value));
    row_ = std::move(kept);
  }

 private:
  std::vector<KeptValue> row_;
};

// The context starts as zero bytes; FinishChosen, which SQLite always calls, takes what it holds.
struct Slot {
  Chosen* chosen;
};

// Of rows with equal keys the first met is the first, the last met the last.
bool Precedes(int difference) { return difference < 0; }
bool Follows(int difference) { return difference >= 0; }

template <bool (*Replaces)(int difference)>
void Meet(sqlite3_context* context, int count, sqlite3_value** values) {
  Guarded(context, [&] {
    auto* slot = static_cast<Slot*>(sqlite3_aggregate_context(context, sizeof(Slot)));
    if (slot == nullptr) throw std::bad_alloc();
    if (slot->chosen == nullptr) slot->chosen = std::make_unique<Chosen>().release();
    Chosen& chosen = *slot->chosen;
    const Arguments row(values, static_cast<size_t>(count));
    if (chosen.empty() || Replaces(chosen.Compare(row))) chosen.Choose(row);
  });
}

void FinishChosen(sqlite3_context* context) {
  const auto* slot = static_cast<const Slot*>(sqlite3_aggregate_context(context, 0));
  if (slot == nullptr) return;
  const std::unique_ptr<Chosen> chosen(slot->chosen);
  if (chosen != nullptr && !chosen->empty()) sqlite3_result_value(context, chosen->value());
}

using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
using Finish = void (*)(sqlite3_context*);

void RegisterAggregate(sqlite3* db, const char* name, int arguments, Step step, Finish finish) {
  const int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS | SQLITE_DETERMINISTIC;
  const int code = sqlite3_create_function_v2(db, name, arguments, flags, nullptr, nullptr, step,
                                              finish, nullptr);
  if (code != SQLITE_OK) throw std::bad_alloc();
}

}  // namespace

void RegisterAggregates(sqlite3* db) {
  constexpr int kAnyNumber = -1;
  RegisterAggregate(db, "jet_sum", 1, AddToSum, FinishSum);
  RegisterAggregate(db, "jet_avg", 1, AddToSum, FinishAverage);
  RegisterAggregate(db, "jet_first", kAnyNumber, Meet<Precedes>, FinishChosen);
  RegisterAggregate(db, "jet_last", kAnyNumber, Meet<Follows>, FinishChosen);
}

}  // namespace ambrelio::embedded
