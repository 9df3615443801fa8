// That the rewrites change nothing but the cost: small random databases, in which every statement
// must come to the same rows, in the same order and with the same columns, or to the same error,
// whichever rewrites are made; and every action query to the same tables.
//
// AMBRELIO_DIFFERENTIAL_ROUNDS says how many databases are tried, AMBRELIO_DIFFERENTIAL_SEED which
// is the first.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>

#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/frame/schema_steps.h"
#include "ambrelio/host/create_database.h"
#include "every_plan.h"
#include "mill_statements.h"
#include "random_mill.h"
#include "random_queries.h"
#include "random_tables.h"
#include "support/temp_folder.h"

namespace ambrelio::test {
namespace {

uint64_t Setting(const char* name, uint64_t usual) {
  const char* text = std::getenv(name);
  return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

class Differential : public testing::Test {
 protected:
  // Whether every choice of rewrites comes to what none comes to.
  bool Agree(const std::vector<std::string>& outcomes, const std::string& sql,
             const std::function<std::string()>& about) {
    ++compared_;
    if (outcomes[0].compare(0, 6, "error ") == 0) ++errors_;
    // What nests too deep for the storage as it stands may well be read once it is planned.
    if (outcomes[0].compare(0, 11, "error 3000 ") == 0) return true;
    for (size_t i = 1; i < outcomes.size(); ++i) {
      if (outcomes[i] == outcomes[0]) continue;
      ADD_FAILURE() << about() << "\n"
                    << sql << "\n-- " << EveryPlan::Name(0) << "\n"
                    << outcomes[0] << "-- " << EveryPlan::Name(i) << "\n"
                    << outcomes[i];
      return false;
    }
    return true;
  }

  void Report(uint64_t databases) {
    RecordProperty("databases", std::to_string(databases));
    RecordProperty("statements", std::to_string(compared_));
    RecordProperty("errors", std::to_string(errors_));
    std::cout << databases << " databases, " << compared_ << " statements, " << errors_
              << " of them errors\n";
  }

  TempFolder folder_;
  int compared_ = 0;
  int errors_ = 0;
};

constexpr int kFillings = 5;
constexpr int kSelects = 6;
constexpr int kActions = 2;

TEST_F(Differential, RandomStatementsOverRandomTables) {
  const uint64_t first = Setting("AMBRELIO_DIFFERENTIAL_SEED", 1);
  const uint64_t rounds = Setting("AMBRELIO_DIFFERENTIAL_ROUNDS", 2);
  for (uint64_t seed = first; seed < first + rounds; ++seed) {
    Chance chance(seed);
    const std::string path = folder_.File(std::to_string(seed) + ".sqlite");
    EveryPlan plans(embedded::Storage::Create(path));
    RandomTables tables(chance);
    tables.Create(plans);
    for (int filling = 0; filling < kFillings; ++filling) {
      plans.storage().Begin();
      tables.Fill(plans);
      const auto about = [&] {
        return "seed " + std::to_string(seed) + "\n" + tables.description + plans.Dump();
      };
      for (int i = 0; i < kSelects; ++i) {
        const std::string sql = RandomQueries(chance, tables.sources).Statement();
        const auto type =
            chance.Odds(50) ? dao::RecordsetType::kDefault : dao::RecordsetType::kSnapshot;
        if (!Agree(plans.Select(sql, type), sql, about)) return Report(seed - first);
      }
      for (int i = 0; i < kActions; ++i) {
        const std::string sql = RandomQueries(chance, tables.sources).Action(tables.tables);
        if (!Agree(plans.Write(sql, chance.Odds(30)), sql, about)) return Report(seed - first);
      }
      plans.storage().Rollback();
    }
  }
  Report(rounds * kFillings);
}

bool IsQuery(const std::string& sql) { return sql[0] == '(' || sql.compare(0, 6, "select") == 0; }

// Questions of others over the mill's tables.
std::vector<NamedSource> MillSources() {
  const auto numbers = [](const std::vector<std::string>& names) {
    std::vector<NamedColumn> columns;
    for (const std::string& name : names) columns.push_back({name, Kind::kNumber});
    return columns;
  };
  std::vector<NamedSource> sources = {
      {"PESADA", numbers({"COOPERATIVA", "PARTIDA", "MEDIANA", "CODPRO", "CODSOC", "TOLVA",
                          "DESCARGA", "PARCIALPESO"})},
      {"splitDescar",
       numbers({"cooperativa", "partida", "mediana", "codpro", "tolva", "descarga", "fraccion"})},
      {"Descargas", numbers({"Tolva", "Descarga", "Molino", "Deposito", "Fraccion"})},
      {"ExtPesada", numbers({"partida", "codsoc", "tolva", "descarga", "parcialpeso"})},
      {"ExtPesada", numbers({"partida", "codsoc", "tolva", "descarga", "parcialpeso"})},
  };
  for (NamedSource& source : sources) {
    if (source.columns.front().name == "partida") source.columns.push_back({"paraje", Kind::kText});
  }
  return sources;
}

TEST_F(Differential, TheMillsStatementsOverRandomSeasons) {
  const uint64_t first = Setting("AMBRELIO_DIFFERENTIAL_SEED", 1);
  const uint64_t rounds = Setting("AMBRELIO_DIFFERENTIAL_ROUNDS", 4);
  const std::string path = folder_.File("oliva.sqlite");
  const auto engine = embedded::CreateEngine();
  host::CreateMillDatabase(*engine, path, "");
  const auto database = engine->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd=");
  frame::EnsureExtPesada(*database);
  database->Close();
  EveryPlan plans(embedded::Storage::Open(path, embedded::Storage::Access::kShared));
  const std::vector<std::string> statements = MillStatements();
  const std::vector<NamedSource> sources = MillSources();
  for (uint64_t seed = first; seed < first + rounds; ++seed) {
    Chance chance(seed);
    plans.storage().Begin();
    RandomMill(chance, plans).Fill();
    const auto about = [&] { return "seed " + std::to_string(seed) + "\n" + plans.Dump(); };
    for (const std::string& sql : statements) {
      const auto outcomes = IsQuery(sql) ? plans.Select(sql, dao::RecordsetType::kDefault)
                                         : plans.Write(sql, chance.Odds(30));
      if (!Agree(outcomes, sql, about)) return Report(seed - first);
    }
    for (int i = 0; i < kSelects; ++i) {
      const std::string sql = RandomQueries(chance, sources).Statement();
      const auto outcomes = plans.Select(sql, dao::RecordsetType::kDefault);
      if (!Agree(outcomes, sql, about)) return Report(seed - first);
    }
    plans.storage().Rollback();
  }
  Report(rounds);
}

}  // namespace
}  // namespace ambrelio::test
