// One small statement: through the engine with its text, against the same on raw SQLite, prepared.
// The counters check the answers; the ratio is what the text, the types and the recordset cost.

#include <benchmark/benchmark.h>

#include "ambrelio/engine/engine.h"
#include "raw_sqlite.h"
#include "support/temp_folder.h"

namespace {

using namespace ambrelio;
using namespace ambrelio::bench;

constexpr int kRows = 1000;

struct Tables {
  Tables() {
    engine_database->Execute("create table T (code long primary key, kilos double, name text(20))");
    raw.Run("create table T (code integer, kilos real, name text)");
    raw.Run("create unique index T_key on T (code)");
    engine->DefaultWorkspace().BeginTrans();
    raw.Run("begin");
    for (int i = 0; i < kRows; ++i) {
      const std::string row =
          "insert into T values (" + std::to_string(i) + ", 1840.5, 'Los Llanos')";
      engine_database->Execute(row);
      raw.Run(row);
    }
    engine->DefaultWorkspace().CommitTrans();
    raw.Run("commit");
  }

  test::TempFolder folder;
  std::shared_ptr<dao::DBEngine> engine = engine::Create();
  std::shared_ptr<dao::Database> engine_database =
      engine->DefaultWorkspace().CreateDatabase(folder.File("engine.sqlite"), ";pwd=");
  RawDatabase raw{folder.File("raw.sqlite")};
};

Tables& Shared() {
  static Tables tables;
  return tables;
}

void Expect(benchmark::State& state, double kilos) {
  if (kilos != 1840.5) state.SkipWithError("a wrong answer");
}

void SelectThroughTheEngine(benchmark::State& state) {
  Tables& tables = Shared();
  int code = 0;
  for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
    const auto rows = tables.engine_database->OpenRecordset(
        "select kilos, name from T where (code=" + std::to_string(++code % kRows) + ") ");
    Expect(state, ToDouble(rows->Value("kilos")));
  }
}
BENCHMARK(SelectThroughTheEngine);

void SelectOnRawSqlite(benchmark::State& state) {
  Tables& tables = Shared();
  sqlite3_stmt* statement = tables.raw.Prepare("select kilos, name from T where code=?1");
  int code = 0;
  for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
    sqlite3_bind_int(statement, 1, ++code % kRows);
    sqlite3_step(statement);
    Expect(state, sqlite3_column_double(statement, 0));
    benchmark::DoNotOptimize(sqlite3_column_text(statement, 1));
    sqlite3_reset(statement);
  }
}
BENCHMARK(SelectOnRawSqlite);

// In a transaction, so that no disk is measured.
void UpdateThroughTheEngine(benchmark::State& state) {
  Tables& tables = Shared();
  tables.engine->DefaultWorkspace().BeginTrans();
  int code = 0;
  for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
    tables.engine_database->Execute(
        "update T set kilos=1840.50000000 where (code=" + std::to_string(++code % kRows) + ") ");
    if (tables.engine_database->RecordsAffected() != 1) state.SkipWithError("a wrong count");
  }
  tables.engine->DefaultWorkspace().Rollback();
}
BENCHMARK(UpdateThroughTheEngine);

void UpdateOnRawSqlite(benchmark::State& state) {
  Tables& tables = Shared();
  tables.raw.Run("begin");
  sqlite3_stmt* statement = tables.raw.Prepare("update T set kilos=?1 where code=?2");
  int code = 0;
  for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
    sqlite3_bind_double(statement, 1, 1840.5);
    sqlite3_bind_int(statement, 2, ++code % kRows);
    sqlite3_step(statement);
    sqlite3_reset(statement);
    if (sqlite3_changes(tables.raw.db()) != 1) state.SkipWithError("a wrong count");
  }
  tables.raw.Run("rollback");
}
BENCHMARK(UpdateOnRawSqlite);

}  // namespace

BENCHMARK_MAIN();
