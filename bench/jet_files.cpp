// The embedded engine over Jet files, against the same engine over its own files in the same run:
// opening, questions, changes, and copies from one form into the other. Whole tables are read
// against mdb-export as well, if it is at hand.
//
// All sides must give the same answer before time is taken. Each is measured in processes of its
// own, so that the peak of their memory is its own too. Changes are committed, so that the disk is
// measured along with them.

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>

#include "ambrelio/engine/convert.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "generated_mill.h"
#include "large_file.h"
#include "library_mill.h"
#include "mdb_export.h"
#include "measure.h"
#include "support/temp_folder.h"

namespace {

using namespace ambrelio;
using namespace ambrelio::bench;

// --- the sides, and what they are asked

enum Form { kJet, kOwn, kForms };

constexpr const char* kDatabases[kForms] = {"oliva.mdb", "oliva.ambrelio"};

// The same season in both forms.
struct Place {
  std::string folders[kForms];
  std::string databases[kForms];
  GeneratedSeason season;
};

using Ask = std::function<void(Answer&)>;

struct Task {
  std::string name;
  // Prepares what is not measured, and gives what is.
  std::function<Ask(const Place&, Form)> begin;
  // Whether that answers again and again at the same cost; else it is prepared anew each time.
  bool again = true;
  // The same by mdb-export, and where its answer differs; "" when it does not.
  std::function<void(const Place&)> by_export = {};
  std::function<std::string(const Place&)> export_differs = {};
};

// An open database, and the engine that it is of.
struct Opened {
  explicit Opened(const std::string& path)
      : database(engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=")) {}

  std::shared_ptr<dao::DBEngine> engine = engine::Create();
  std::shared_ptr<dao::Database> database;
};

std::vector<std::string> TablesOf(dao::Database& database) {
  std::vector<std::string> names;
  for (int i = 0; i < database.TableDefs().Count(); ++i) {
    names.push_back(database.TableDefs().Item(i)->Name());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Task Opening() {
  return {.name = "opening, and all of a small table", .begin = [](const Place& place, Form form) {
            return [path = place.databases[form]](Answer& answer) {
              AddRows(*Opened(path).database, "Depositos", answer);
            };
          }};
}

Task FirstQuestion() {
  return {.name = "first question about the weighings",
          .begin =
              [](const Place& place, Form form) {
                const auto opened = std::make_shared<Opened>(place.databases[form]);
                return [opened](Answer& answer) {
                  AddRows(*opened->database, "select count(*), sum(PARCIALPESO) from PESADA",
                          answer);
                };
              },
          .again = false};
}

void ExportAll(const Place& place) {
  for (const std::string& table : TablesOf(*Opened(place.databases[kJet]).database)) {
    LinesExported(place.databases[kJet], table);
  }
}

std::string ExportDiffers(const Place& place) {
  const Opened opened(place.databases[kJet]);
  for (const std::string& table : TablesOf(*opened.database)) {
    Answer expected(true), exported(true);
    AddRows(*opened.database, table, expected);
    AddExported(place.databases[kJet], table, opened.database->TableDefs().Item(table)->Fields(),
                exported);
    expected.SortRows();
    exported.SortRows();
    const std::string difference = Difference(exported, expected);
    if (!difference.empty()) return table + ": " + difference;
  }
  return "";
}

Task AllRows() {
  return {.name = "opening, and all rows of all tables",
          .begin =
              [](const Place& place, Form form) {
                return [path = place.databases[form]](Answer& answer) {
                  const Opened opened(path);
                  for (const std::string& table : TablesOf(*opened.database)) {
                    AddRows(*opened.database, table, answer);
                  }
                };
              },
          .by_export = ExportAll,
          .export_differs = ExportDiffers};
}

// What the library is asked on a mill that stays open.
Task OfTheMill(const std::string& name,
               const std::function<AskMill(const GeneratedSeason&)>& question) {
  return {.name = name, .begin = [question](const Place& place, Form form) {
            const auto mill = std::make_shared<Mill>(place.folders[form], engine::Create());
            return [mill, ask = question(place.season)](Answer& answer) { ask(*mill, answer); };
          }};
}

std::vector<Task> MakeTasks() {
  std::vector<Task> tasks = {Opening(), FirstQuestion(), AllRows()};
  for (int16_t clase = 1; clase <= kClasses; ++clase) {
    tasks.push_back(OfTheMill(fmt::format("20 discharges by class {}", clase), [=](const auto&) {
      return TankComposition(GeneratedSeason::kPickedTank, clase);
    }));
  }
  tasks.push_back(OfTheMill("weight of a discharge", [](const auto&) { return AskWeight; }));
  tasks.push_back(OfTheMill("a discharge with a share, and back", DischargeAndRestore));
  return tasks;
}

// --- measuring

struct Cost {
  double seconds = 0;
  int64_t megabytes = 0;
};

Cost Lesser(const Cost& a, const Cost& b) {
  if (a.seconds == 0) return b;
  return {std::min(a.seconds, b.seconds), std::max(a.megabytes, b.megabytes)};
}

// What a side may take in one of its processes.
constexpr double kPatience = 0.5;

Cost Measure(const Task& task, const Place& place, Form form) {
  return InOwnProcess([&] {
    Ask ask = task.begin(place, form);
    double best = 0, sum = 0;
    if (task.again) {
      Answer first;
      ask(first);
    }
    do {
      if (!task.again && sum > 0) ask = task.begin(place, form);
      const auto start = std::chrono::steady_clock::now();
      Answer answer;
      ask(answer);
      const double seconds = SecondsSince(start);
      best = sum == 0 ? seconds : std::min(best, seconds);
      sum += seconds;
    } while (sum < kPatience);
    return Cost{best, PeakMemory()};
  });
}

Cost MeasureExport(const Task& task, const Place& place) {
  return InOwnProcess([&] {
    const auto start = std::chrono::steady_clock::now();
    task.by_export(place);
    return Cost{SecondsSince(start), PeakMemoryOfChildren()};
  });
}

void RequireNone(const std::string& difference, const Task& task, const char* who) {
  if (difference.empty()) return;
  fmt::print(stderr, "{}: {} does not agree: {}\n", task.name, who, difference);
  std::exit(1);
}

// The answers of all sides; gives their rows.
int64_t Compare(const Task& task, const Place& place) {
  return InOwnProcess([&] {
    Answer expected(true), jet(true);
    task.begin(place, kOwn)(expected);
    task.begin(place, kJet)(jet);
    RequireNone(Difference(jet, expected), task, "the Jet file");
    if (task.export_differs && HasMdbExport()) {
      RequireNone(task.export_differs(place), task, "mdb-export");
    }
    return expected.rows();
  });
}

std::string Milliseconds(double seconds) {
  return seconds == 0 ? "-" : fmt::format("{:.3f}", 1000 * seconds);
}
std::string Ratio(const Cost& cost, const Cost& rival) {
  return rival.seconds == 0 ? "-" : fmt::format("{:.2f}", cost.seconds / rival.seconds);
}

void PrintHeading() {
  fmt::print("{:<40} {:>7} | {:>11} {:>11} {:>11} | {:>6} {:>7} | {:>5} {:>5} {:>6}\n",
             "milliseconds, and MiB at most", "rows", "Jet file", "own file", "mdb-export", "/own",
             "/export", "Jet", "own", "export");
}

void Print(const std::string& name, int64_t rows, const Cost (&costs)[kForms],
           const Cost& exported) {
  fmt::print("{:<40} {:>7} | {:>11} {:>11} {:>11} | {:>6} {:>7} | {:>5} {:>5} {:>6}\n", name, rows,
             Milliseconds(costs[kJet].seconds), Milliseconds(costs[kOwn].seconds),
             Milliseconds(exported.seconds), Ratio(costs[kJet], costs[kOwn]),
             Ratio(costs[kJet], exported), costs[kJet].megabytes, costs[kOwn].megabytes,
             exported.megabytes);
}

void Run(const Task& task, const Place& place, int rounds) {
  const int64_t rows = Compare(task, place);
  Cost costs[kForms], exported;
  for (int round = 0; round < rounds; ++round) {
    for (const Form form : {kJet, kOwn}) {
      costs[form] = Lesser(costs[form], Measure(task, place, form));
    }
    if (task.by_export && HasMdbExport()) exported = Lesser(exported, MeasureExport(task, place));
  }
  Print(task.name, rows, costs, exported);
}

// --- the season in both forms

Cost MeasureCopy(const std::string& from, const std::string& to) {
  return InOwnProcess([&] {
    const auto start = std::chrono::steady_clock::now();
    engine::Convert(from, to, "");
    return Cost{SecondsSince(start), PeakMemory()};
  });
}

Place MakePlace(const test::TempFolder& folder, int64_t weighings) {
  Place place;
  SeasonSize size;
  size.weighings = weighings;
  for (const Form form : {kJet, kOwn}) {
    place.folders[form] = folder.Folder(form == kJet ? "jet" : "own");
    place.databases[form] = place.folders[form] + "/" + kDatabases[form];
    WriteSettings(place.folders[form], size, kDatabases[form]);
  }
  place.season = InOwnProcess([&] {
    host::CreateMillDatabase(*engine::Create(), place.databases[kOwn], "");
    const GeneratedSeason season = FillSeason(place.databases[kOwn], size);
    Mill(place.folders[kOwn], engine::Create()).database();  // the indexes are made now
    return season;
  });
  return place;
}

// Copies the database out of each form into both: the first copy is the Jet file of the place.
void RunCopies(const test::TempFolder& folder, const Place& place) {
  Cost out_of_own[kForms], out_of_jet[kForms];
  out_of_own[kJet] = MeasureCopy(place.databases[kOwn], place.databases[kJet]);
  out_of_own[kOwn] = MeasureCopy(place.databases[kOwn], folder.File("own-own.ambrelio"));
  out_of_jet[kJet] = MeasureCopy(place.databases[kJet], folder.File("jet-jet.mdb"));
  out_of_jet[kOwn] = MeasureCopy(place.databases[kJet], folder.File("jet-own.ambrelio"));
  Print("own file copied into this form", 0, out_of_own, {});
  Print("Jet file copied into this form", 0, out_of_jet, {});
}

void RunSize(int64_t weighings, int rounds, const std::string& only) {
  const test::TempFolder folder;
  const Place place = MakePlace(folder, weighings);
  fmt::print("\n{} weighings\n", weighings);
  PrintHeading();
  RunCopies(folder, place);
  for (const Task& task : MakeTasks()) {
    if (task.name.find(only) != std::string::npos) Run(task, place, rounds);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int64_t> sizes = {20'000, 200'000};
  int rounds = 3;
  std::string only, large;
  int64_t megabytes = 500;
  CLI::App app("The embedded engine over Jet files, against the same over its own");
  app.add_option("--sizes", sizes, "weighings, separated by commas")->delimiter(',');
  app.add_option("--rounds", rounds, "processes for each side, the best of which counts");
  app.add_option("--only", only, "only tasks whose name holds this text");
  app.add_option("--large", large, "instead, try a large file, made in this folder");
  app.add_option("--megabytes", megabytes, "the least size of the large file");
  CLI11_PARSE(app, argc, argv);
  std::setvbuf(stdout, nullptr, _IOLBF, 0);

  const ManualClock clock(AfterTheSeason());
  const ScopedClock scoped_clock(clock);
  if (!large.empty()) {
    TryLargeFile(large, megabytes);
    return 0;
  }
  if (!HasMdbExport()) fmt::print("mdb-export is not there: left out\n");
  for (const int64_t size : sizes) RunSize(size, rounds, only);
}
