#include "large_file.h"

#include <fmt/core.h>

#include <filesystem>
#include <functional>

#include "ambrelio/engine/check.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/value/convert.h"
#include "library_mill.h"
#include "mdb_export.h"
#include "measure.h"

namespace ambrelio::bench {

namespace {

constexpr int kRowsPerTransaction = 20'000;
constexpr const char* kTable = "Notas";
constexpr const char* kChanged = "cambiada";

std::string LotOf(int64_t row) { return fmt::format("LOTE {:08}", row * 7919 % 100'000'000); }

// From 600 to 1800 characters, no two alike.
std::string NoteOf(int64_t row) {
  std::string note;
  const auto length = static_cast<size_t>(600 + row * 37 % 1201);
  while (note.size() < length) note += fmt::format("pesada {} del turno {}, ", row, note.size());
  note.resize(length);
  return note;
}

// Gives the number of its rows.
int64_t Make(const std::string& path, int64_t megabytes) {
  const auto engine = engine::Create();
  dao::Workspace& workspace = engine->DefaultWorkspace();
  const auto database = workspace.CreateDatabase(path, ";pwd=");
  database->Execute(
      fmt::format("create table {} (Numero long primary key, Lote text(30), Nota memo)", kTable));
  database->Execute(fmt::format("create index lot on {} (Lote)", kTable));
  int64_t rows = 0;
  while (static_cast<int64_t>(std::filesystem::file_size(path) >> 20) <= megabytes) {
    workspace.BeginTrans();
    for (int i = 0; i < kRowsPerTransaction; ++i, ++rows) {
      database->Execute(fmt::format("insert into {} (Numero, Lote, Nota) values ({}, '{}', '{}')",
                                    kTable, rows, LotOf(rows), NoteOf(rows)));
    }
    workspace.CommitTrans();
  }
  return rows;
}

void RequireRow(dao::Database& database, int64_t row, const std::string& note) {
  Answer expected(true), found(true);
  expected.Add(std::string_view(LotOf(row)));
  expected.Add(std::string_view(note));
  expected.EndRow();
  AddRows(database, fmt::format("select Lote, Nota from {} where Numero={}", kTable, row), found);
  Require(Equal(expected, found), "a row of the large file");
}

int64_t CountFindings(const std::string& path) {
  const auto findings = engine::CheckFile(path, "");
  for (const engine::CheckFinding& finding : findings) {
    fmt::print(stderr, "page {}: {}\n", finding.page.value_or(0), finding.text);
  }
  return static_cast<int64_t>(findings.size());
}

// Does a step in a process of its own, prints what it took, and gives what it gives.
int64_t Step(const std::string& name, const std::function<int64_t()>& work) {
  struct Cost {
    int64_t result;
    double seconds;
    int64_t megabytes;
  };
  const Cost cost = InOwnProcess([&] {
    const auto start = std::chrono::steady_clock::now();
    const int64_t result = work();
    return Cost{result, SecondsSince(start), std::max(PeakMemory(), PeakMemoryOfChildren())};
  });
  fmt::print("{:<52} {:>9.3f} s {:>7} MiB\n", name, cost.seconds, cost.megabytes);
  return cost.result;
}

// The same, of the file opened by an engine of its own.
void StepInDatabase(const std::string& name, const std::string& path,
                    const std::function<void(dao::Database&)>& work) {
  Step(name, [&] {
    const auto engine = engine::Create();
    work(*engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd="));
    return 0;
  });
}

void ChangeRow(dao::Database& database, int64_t row) {
  database.Execute(fmt::format("update {} set Nota='{}' where Numero={}", kTable, kChanged, row));
  Require(database.RecordsAffected() == 1, "the change of a row");
}

void AskAndChange(const std::string& path, int64_t rows) {
  const int64_t middle = rows / 2;
  StepInDatabase("opened", path, [](dao::Database&) {});
  StepInDatabase("opened, three rows by their keys", path, [&](dao::Database& database) {
    for (const int64_t row : {int64_t{0}, middle, rows - 1}) {
      RequireRow(database, row, NoteOf(row));
    }
  });
  StepInDatabase("opened, a row changed", path,
                 [&](dao::Database& database) { ChangeRow(database, middle); });
  StepInDatabase("opened, a hundred rows changed one by one", path, [&](dao::Database& database) {
    constexpr int kRows = 100;
    RequireRow(database, middle, kChanged);
    const auto start = std::chrono::steady_clock::now();
    for (int64_t row = middle + 1; row <= middle + kRows; ++row) ChangeRow(database, row);
    fmt::print("  each of them {:.2f} ms\n", 1000 * SecondsSince(start) / kRows);
  });
}

}  // namespace

void TryLargeFile(const std::string& folder, int64_t megabytes) {
  const std::string path = folder + "/large.mdb";
  const int64_t rows = Step("made", [&] { return Make(path, megabytes); });
  fmt::print("{} MiB of {} rows\n", std::filesystem::file_size(path) >> 20, rows);
  const auto check = [&] { return CountFindings(path); };
  Require(Step("checked", check) == 0, "a sound file");
  AskAndChange(path, rows);
  Require(Step("checked again", check) == 0, "a sound file");
  if (!HasMdbExport()) return fmt::print("mdb-export is not there: left out\n");
  const int64_t lines =
      Step("lines of mdb-export counted", [&] { return LinesExported(path, kTable); });
  Require(lines == rows + 1, "a line of mdb-export for each row");
}

}  // namespace ambrelio::bench
