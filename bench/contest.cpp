#include "contest.h"

#include <fmt/core.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>

namespace ambrelio::bench {

namespace {

constexpr const char* kSideNames[kSides] = {"the library", "as written", "by hand", "DuckDB"};
// What a sample lasts at least, so that the clock is fine enough.
constexpr double kSampleMicroseconds = 3000;
// What a side may take of the run, in all its rounds.
constexpr double kPatienceMicroseconds = 15e6;

struct Watched {
  std::vector<sqlite3*> connections;
  int64_t steps = 0;
};
Watched& Shared() {
  static Watched watched;
  return watched;
}

int NoteConnection(sqlite3* db, char** /*error*/, const void* /*routines*/) {
  Shared().connections.push_back(db);
  return SQLITE_OK;
}

int NoteStatement(unsigned /*kind*/, void* /*context*/, void* statement, void* /*time*/) {
  Shared().steps +=
      sqlite3_stmt_status(static_cast<sqlite3_stmt*>(statement), SQLITE_STMTSTATUS_VM_STEP, 1);
  return 0;
}

double Sample(const Side& side, int times, const Answer& expected) {
  using Clock = std::chrono::steady_clock;
  if (side.before) side.before();
  const auto start = Clock::now();
  bool complete = true;
  for (int i = 0; i < times; ++i) {
    Answer answer;
    side.ask(answer);
    complete = complete && answer.rows() == expected.rows();
  }
  const std::chrono::duration<double, std::micro> time = Clock::now() - start;
  if (side.after) side.after();
  if (!complete) {
    fmt::print(stderr, "an answer changed while time was taken\n");
    std::exit(1);
  }
  return time.count() / times;
}

void AskOnce(const Side& side, Answer& answer) {
  if (side.before) side.before();
  side.ask(answer);
  if (side.after) side.after();
}

// The steps and memory of one answer; the first is for what is made once.
void Count(const Side& side, StepCounter& counter, Result& result, int place) {
  for (int i = 0; i < 2; ++i) {
    if (side.before) side.before();
    counter.Watch(
        [&] {
          Answer answer;
          side.ask(answer);
        },
        result.steps[place], result.kilobytes[place]);
    if (side.after) side.after();
  }
}

std::string Number(double value, int decimals) {
  return value == 0 ? "-" : fmt::format("{:.{}f}", value, decimals);
}

double Ratio(const Result& result, Rival rival) {
  const double other = result.microseconds[rival];
  return other == 0 ? 0 : result.microseconds[kLibrary] / other;
}

void PrintVerdict(const std::string& bar, int asked, const std::vector<std::string>& missed) {
  fmt::print("{}: {} of {}\n", bar, asked - static_cast<int>(missed.size()), asked);
  for (const std::string& miss : missed) fmt::print("    missed: {}\n", miss);
}

}  // namespace

StepCounter::StepCounter() {
  Shared() = {};
  sqlite3_auto_extension(reinterpret_cast<void (*)()>(NoteConnection));
}

StepCounter::~StepCounter() {
  sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(NoteConnection));
}

void StepCounter::Watch(const std::function<void()>& action, int64_t& steps, int64_t& kilobytes) {
  const auto trace = [](unsigned kinds) {
    for (sqlite3* db : Shared().connections) sqlite3_trace_v2(db, kinds, NoteStatement, nullptr);
  };
  trace(SQLITE_TRACE_PROFILE);
  Shared().steps = 0;
  const sqlite3_int64 before = sqlite3_memory_used();
  sqlite3_memory_highwater(1);
  action();
  kilobytes = (sqlite3_memory_highwater(0) - before) / 1024;
  steps = Shared().steps;
  trace(0);
}

Answer AskLibrary(const Question& question, StepCounter& counter, Result& result) {
  Answer answer(true);
  AskOnce(question.sides[kLibrary], answer);
  Count(question.sides[kLibrary], counter, result, 0);
  result.rows = answer.rows();
  return answer;
}

void Compete(const Question& question, const Answer& expected, int rounds, StepCounter& counter,
             Result& result) {
  struct Runner {
    int times = 1;
    int rounds = 1;
  } runners[kSides];
  for (int i = 0; i < kSides; ++i) {
    const Side& side = question.sides[i];
    if (!side.ask) continue;
    Answer answer(true);
    AskOnce(side, answer);
    if (const std::string difference = Difference(answer, expected); !difference.empty()) {
      fmt::print(stderr, "{}: {} does not agree with the library: {}\n", question.name,
                 kSideNames[i], difference);
      std::exit(1);
    }
    const double once = Sample(side, 1, expected);
    result.microseconds[i] = once;
    runners[i].times = std::max(1, static_cast<int>(kSampleMicroseconds / once));
    runners[i].rounds = std::clamp(static_cast<int>(kPatienceMicroseconds / once), 0, rounds);
  }
  if (question.sides[kByHand].ask) Count(question.sides[kByHand], counter, result, 1);
  for (int round = 0; round < rounds; ++round) {
    for (int i = 0; i < kSides; ++i) {
      if (!question.sides[i].ask || round >= runners[i].rounds) continue;
      result.microseconds[i] =
          std::min(result.microseconds[i], Sample(question.sides[i], runners[i].times, expected));
    }
  }
}

void PrintHeading() {
  fmt::print(
      "{:<44} {:>6} | {:>11} {:>11} {:>11} {:>11} | {:>6} {:>7} | {:>10} {:>10} | {:>6} {:>6}\n",
      "microseconds", "rows", "library", "as written", "by hand", "DuckDB", "/hand", "/DuckDB",
      "steps", "by hand", "KiB", "hand");
}

void Print(const Result& result) {
  const double* us = result.microseconds;
  fmt::print(
      "{:<44} {:>6} | {:>11} {:>11} {:>11} {:>11} | {:>6} {:>7} | {:>10} {:>10} | {:>6} {:>6}\n",
      result.question, result.rows, Number(us[kLibrary], 1), Number(us[kAsWritten], 1),
      Number(us[kByHand], 1), Number(us[kDuckDb], 1), Number(Ratio(result, kByHand), 2),
      Number(Ratio(result, kDuckDb), 3), result.steps[0], result.steps[1], result.kilobytes[0],
      result.kilobytes[1]);
}

void PrintBars(const std::vector<Result>& results) {
  constexpr int kManyRows = 100;
  constexpr double kFactor = 1.2, kAllowance = 20, kGrowth = 2;
  std::vector<std::string> growth, by_hand, duckdb, whole;
  int grown = 0, handed = 0, ducked = 0, wholes = 0;

  std::map<std::string, std::pair<const Result*, const Result*>> ends;  // smallest, largest
  for (const Result& result : results) {
    auto& [smallest, largest] = ends[result.question];
    if (smallest == nullptr || result.weighings < smallest->weighings) smallest = &result;
    if (largest == nullptr || result.weighings > largest->weighings) largest = &result;
  }
  for (const auto& [name, end] : ends) {
    const auto& [smallest, largest] = end;
    if (smallest == largest || largest->whole_season) continue;
    ++grown;
    const double factor = largest->microseconds[kLibrary] / smallest->microseconds[kLibrary];
    if (factor > kGrowth) {
      growth.push_back(fmt::format("{}: {:.2f} times ({:.1f} us at {}, {:.1f} us at {})", name,
                                   factor, smallest->microseconds[kLibrary], smallest->weighings,
                                   largest->microseconds[kLibrary], largest->weighings));
    }
  }
  for (const Result& result : results) {
    const double library = result.microseconds[kLibrary];
    const double hand = result.microseconds[kByHand];
    const double duck = result.microseconds[kDuckDb];
    const std::string where = fmt::format("{} at {}", result.question, result.weighings);
    const bool many = result.rows >= kManyRows;
    if (result.whole_season) {
      ++wholes;
      if (library > kFactor * hand)
        whole.push_back(fmt::format("{}: {:.2f}", where, library / hand));
    } else {
      ++handed;
      if (library > (many ? kFactor * hand : hand + kAllowance)) {
        by_hand.push_back(many ? fmt::format("{}: {:.2f} times", where, library / hand)
                               : fmt::format("{}: {:.1f} us more", where, library - hand));
      }
    }
    if (duck != 0) {
      ++ducked;
      if (library >= duck) duckdb.push_back(fmt::format("{}: {:.2f}", where, library / duck));
    }
  }
  fmt::print("\n");
  PrintVerdict("at the largest size at most twice the cost at the smallest", grown, growth);
  PrintVerdict("at most 1.2 times by hand from 100 rows on, 20 us more below", handed, by_hand);
  PrintVerdict("the whole season at most 1.2 times by hand", wholes, whole);
  PrintVerdict("faster than DuckDB", ducked, duckdb);
}

}  // namespace ambrelio::bench
