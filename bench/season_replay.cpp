// The replay of the example season through the library, against the same statements sent straight
// to SQLite: prepared beforehand, literals bound, with the same transactions and so the same
// commits. The library replays it over a file of the engine's own, and over a Jet file.
//
// The rival knows neither members nor texts: it is given the list of what the library sent. It
// checks that it writes and reads as many rows with every statement, and that the tables end up
// equal.

#include <fmt/core.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <regex>

#include "ambrelio/engine/embedded/sql/lexer.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "journal.h"
#include "measure.h"
#include "mill.h"
#include "raw_sqlite.h"
#include "support/probe_engine.h"
#include "support/temp_folder.h"

namespace {

using namespace ambrelio;
using namespace ambrelio::bench;

const std::string kSeason = std::string(AMBRELIO_SOURCE_DIR) + "/examples/campana/";
constexpr int kRounds = 3;

// The names of databases tell what files they are.
constexpr const char* kOwnFile = "oliva.ambrelio";
constexpr const char* kJetFile = "oliva.mdb";

// A mill of its own, with a new database.
class FreshMill {
 public:
  explicit FreshMill(const char* database) : path(folder.File(database)) {
    std::filesystem::copy(kSeason + "CLIEN.INI", folder.File("CLIEN.INI"));
    std::ofstream(folder.File("Vardex.ini"))
        << "[GENERAL]\nMaxTolvas=4,2,12\nBaseDatos=" << database << "\n[SENSORES]\n";
    host::CreateMillDatabase(*engine::Create(), path, "");
  }
  test::TempFolder folder;
  std::string path;
};

// Carries out the season and gives the seconds it took; `check` sees the database at the end.
template <class Check>
double ReplayThroughTheLibrary(const std::vector<cli::JournalLine>& season, const char* database,
                               const Check& check) {
  const FreshMill fresh(database);
  cli::Console console{std::cin, std::cout, std::cerr};
  cli::Mill mill({fresh.folder.path()}, engine::Create(), console);
  const auto start = std::chrono::steady_clock::now();
  cli::JournalPlayer player(mill);
  for (const cli::JournalLine& line : season) player.CarryOut(line);
  const double seconds = SecondsSince(start);
  check(mill.session().Database());
  return seconds;
}

// A statement of the season, ready for SQLite.
struct Step {
  std::string sql;
  std::vector<Variant> literals;
};

// The library's text with its literals as parameters. The dialects differ in few places of these
// statements; an update through a bracketed join SQLite says in its own way.
std::string ForSqlite(const std::string& text) {
  using embedded::sql::Token;
  using embedded::sql::TokenKind;
  std::string sql;
  int place = 0;
  size_t copied = 0;
  const auto tokens = embedded::sql::Tokenize(text);
  for (size_t i = 0; i + 1 < tokens.size(); ++i) {
    if (tokens[i].kind != TokenKind::kLiteral) continue;
    const auto begin = static_cast<size_t>(tokens[i].offset);
    auto end = static_cast<size_t>(tokens[i + 1].offset);
    while (end > begin && text[end - 1] == ' ') --end;
    sql += text.substr(copied, begin - copied) + "?" + std::to_string(++place);
    copied = end;
  }
  sql += text.substr(copied);
  if (sql.starts_with("update (") && sql.find("split1") != std::string::npos) {
    return "update splitDescar as s2 set fraccion = s2.fraccion + s1.fraccion * ?5 from "
           "splitDescar "
           "as s1 where s1.cooperativa=s2.cooperativa and s1.partida=s2.partida and "
           "s1.mediana=s2.mediana and s1.codpro=s2.codpro and s1.tolva=?1 and s1.descarga=?2 and "
           "s2.tolva=?3 and s2.descarga=?4";
  }
  if (sql.starts_with("update (")) {
    return "update PESADA set TOLVA=s.tolva, DESCARGA=s.descarga from splitDescar as s where "
           "PESADA.COOPERATIVA=s.cooperativa and PESADA.PARTIDA=s.partida and "
           "PESADA.MEDIANA=s.mediana and PESADA.CODPRO=s.codpro and s.fraccion>=?1";
  }
  sql = std::regex_replace(sql, std::regex("isnull\\(([^)]*)\\)"), "$1 is null");
  sql = std::regex_replace(sql, std::regex("^insert into"), "insert or ignore into");
  return std::regex_replace(sql, std::regex("^update "), "update or ignore ");
}

std::vector<Step> StepsFor(const std::vector<std::string>& sent) {
  std::vector<Step> steps;
  std::map<std::string, std::string> by_shape;
  for (const std::string& text : sent) {
    if (text == "close") continue;
    if (text == "begin" || text == "commit" || text == "rollback") {
      steps.push_back({text, {}});
      continue;
    }
    auto shape = embedded::sql::ShapeOf(text);
    auto [at, fresh] = by_shape.try_emplace(shape.key);
    if (fresh) at->second = ForSqlite(text);
    steps.push_back({at->second, std::move(shape.literals)});
  }
  return steps;
}

// Carries out the steps on an empty database of the same schema; `check` sees the database at the
// end.
template <class Check>
double ReplayOnSqlite(const std::vector<Step>& steps, const Check& check) {
  const FreshMill fresh(kOwnFile);
  const auto engine = engine::Create();
  const auto model = engine->DefaultWorkspace().OpenDatabase(fresh.path, false, false, ";pwd=");
  RawDatabase raw(fresh.folder.File("raw.sqlite"));
  CopySchema(*model, raw);
  std::vector<sqlite3_stmt*> prepared;
  int level = 0;
  for (const Step& step : steps) {
    if (step.sql == "begin") {
      ++level;
      prepared.push_back(raw.Prepare(level == 1 ? "begin immediate" : "savepoint s"));
    } else if (step.sql == "commit") {
      prepared.push_back(raw.Prepare(level == 1 ? "commit" : "release s"));
      --level;
    } else if (step.sql == "rollback") {
      prepared.push_back(raw.Prepare(level == 1 ? "rollback" : "rollback to s"));
      --level;
    } else {
      prepared.push_back(raw.Prepare(step.sql));
    }
  }
  const auto start = std::chrono::steady_clock::now();
  for (size_t i = 0; i < steps.size(); ++i) {
    sqlite3_stmt* statement = prepared[i];
    int place = 0;
    for (const Variant& literal : steps[i].literals) RawDatabase::Bind(statement, ++place, literal);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      for (int c = 0; c < sqlite3_column_count(statement); ++c) sqlite3_column_type(statement, c);
    }
    if (sqlite3_reset(statement) != SQLITE_OK) bench::Check(raw.db(), false, steps[i].sql);
  }
  const double seconds = SecondsSince(start);
  check(raw);
  return seconds;
}

// What both sides must agree on: sums over the tables that the season writes.
const std::vector<std::string> kSums = {
    "select count(*) from PESADA where TOLVA>0",
    "select sum(PARCIALPESO*DESCARGA) from PESADA",
    "select sum(fraccion*descarga) from splitDescar",
    "select sum(Fraccion*(Descarga+Deposito)) from Descargas",
    "select sum(Cantidad) from Vaciados",
    "select sum(Fraccion*Descarga) from detVaciados",
    "select sum(Litros) from Niveles",
};

std::vector<double> SumsIn(dao::Database& database) {
  std::vector<double> sums;
  for (const std::string& sum : kSums) {
    sums.push_back(ToDouble(database.OpenRecordset(sum)->Value(0)));
  }
  return sums;
}

// Ends the program when a side comes to something else.
void RequireSums(const std::vector<double>& found, const std::vector<double>& expected,
                 const char* side) {
  for (size_t i = 0; i < kSums.size(); ++i) {
    if (std::abs(found[i] - expected[i]) <= 1e-9 * std::abs(expected[i])) continue;
    fmt::print(stderr, "{} disagrees on {}: {} instead of {}\n", side, kSums[i], found[i],
               expected[i]);
    std::exit(1);
  }
}

std::vector<double> SumsIn(RawDatabase& raw) {
  std::vector<double> sums;
  for (const std::string& text : kSums) {
    sqlite3_stmt* sum = raw.Prepare(text);
    sqlite3_step(sum);
    sums.push_back(sqlite3_column_double(sum, 0));
    sqlite3_reset(sum);
  }
  return sums;
}

}  // namespace

int main() {
  std::vector<cli::JournalLine> season;
  std::ifstream in(kSeason + "journal.jsonl");
  for (std::string line; std::getline(in, line);) season.push_back(cli::ParseJournalLine(line));

  // What the library sends, and what it comes to.
  const auto probe = std::make_shared<test::Probe>();
  std::vector<double> expected;
  {
    const FreshMill fresh(kOwnFile);
    cli::Console console{std::cin, std::cout, std::cerr};
    cli::Mill mill({fresh.folder.path()},
                   std::make_shared<test::ProbeEngine>(engine::Create(), probe), console);
    probe->events.clear();
    cli::JournalPlayer player(mill);
    for (const cli::JournalLine& line : season) player.CarryOut(line);
    const std::vector<std::string> sent = probe->events;
    expected = SumsIn(mill.session().Database());
    probe->events = sent;
  }
  const std::vector<Step> steps = StepsFor(probe->events);

  double library = 1e9, jet = 1e9, rival = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    const auto replay = [&](const char* file, const char* side) {
      return ReplayThroughTheLibrary(season, file, [&](dao::Database& database) {
        RequireSums(SumsIn(database), expected, side);
      });
    };
    library = std::min(library, replay(kOwnFile, "the library"));
    jet = std::min(jet, replay(kJetFile, "the library over a Jet file"));
    rival = std::min(rival, ReplayOnSqlite(steps, [&](RawDatabase& raw) {
                       RequireSums(SumsIn(raw), expected, "the rival");
                     }));
  }
  fmt::print("season of {} lines, {} statements and transaction steps, answers equal\n",
             season.size(), steps.size());
  fmt::print("library {:.2f} s, prepared statements on SQLite {:.2f} s, ratio {:.2f}\n", library,
             rival, library / rival);
  fmt::print("library over a Jet file {:.2f} s, ratio to its own file {:.2f}\n", jet,
             jet / library);
  fmt::print("largest memory of the whole run: {} MiB\n", PeakMemory());
}
