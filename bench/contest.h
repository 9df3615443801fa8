// Questions that several sides answer, and how long each takes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "answer.h"

namespace ambrelio::bench {

// One who answers. `before` and `after` stand around the answers whose time is taken together, and
// take no part in it.
struct Side {
  std::function<void(Answer&)> ask;
  std::function<void()> before = {};
  std::function<void()> after = {};
};

enum Rival { kLibrary, kAsWritten, kByHand, kDuckDb, kSides };

struct Question {
  std::string name;
  Side sides[kSides];
  // Its answer comes from the whole season, so that its cost grows with it.
  bool whole_season = false;
};

struct Result {
  std::string question;
  bool whole_season = false;
  int64_t weighings = 0;
  int64_t rows = 0;
  double microseconds[kSides] = {0, 0, 0, 0};  // 0: not asked
  // Of the library and of the hand-written side, for one answer.
  int64_t steps[2] = {0, 0};
  int64_t kilobytes[2] = {0, 0};
};

// Counts the steps of SQLite's machine in all connections that are opened while it lives. None of
// them may be closed as long as it is asked.
class StepCounter {
 public:
  StepCounter();
  ~StepCounter();
  StepCounter(const StepCounter&) = delete;
  StepCounter& operator=(const StepCounter&) = delete;

  // The steps that `action` takes, and the most memory that SQLite needs beside what it had, in
  // KiB.
  void Watch(const std::function<void()>& action, int64_t& steps, int64_t& kilobytes);
};

// The library's answer, and what it costs beside time.
Answer AskLibrary(const Question& question, StepCounter& counter, Result& result);
// Compares the rivals' answers with the library's, ending the program when one differs, then takes
// the times: every round each side in turn, the best of its rounds counting.
void Compete(const Question& question, const Answer& expected, int rounds, StepCounter& counter,
             Result& result);

void PrintHeading();
void Print(const Result& result);
// Whether each bar holds, for all results of a run.
void PrintBars(const std::vector<Result>& results);

}  // namespace ambrelio::bench
