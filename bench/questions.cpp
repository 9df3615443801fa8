// The library's questions on seasons of growing size, each against named rivals in the same run:
//
//   as written   the same texts on the same engine, with none of the planner's rewrites
//   by hand      SQLite itself on the same file, statements written by hand and prepared once
//   DuckDB       its tables in memory, the reading questions only, if its library is at hand; of a
//                composition it is asked for the one statement that gives the rows with their names
//
// Every rival must give the library's answer before time is taken. Questions that write are asked
// within a transaction that is rolled back afterwards, so that no disk is measured.

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "ambrelio/data/sql_text.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/mill_indexes.h"
#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/host/create_database.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/platform/clock.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/vaciado.h"
#include "by_hand.h"
#include "contest.h"
#include "duckdb.h"
#include "generated_mill.h"
#include "library_mill.h"
#include "measure.h"
#include "support/probe_engine.h"
#include "support/temp_folder.h"

namespace {

using namespace ambrelio;
using namespace ambrelio::bench;
using embedded::PlanOptions;

using Season = GeneratedSeason;

constexpr int kDischarge = kAskedDischarge;
constexpr int16_t kOtherHopper = Season::kOtherHopper;
constexpr int16_t kPickedTank = Season::kPickedTank;
constexpr int16_t kFullTank = Season::kFullTank;
constexpr int kEmptying = Season::kPickedEmptyings;

std::shared_ptr<dao::DBEngine> MakeEngine(const PlanOptions& plan) {
  return embedded::CreateEngine(plan, engine::MillIndexes());
}

// --- what is asked of the library

void AskStates(Mill& mill, Answer& answer) {
  for (int16_t tank = 1; tank <= mill.session.tank_count; ++tank) {
    answer.Add(mill.root.Deposito(tank)->NivelActual());
    answer.Add(mill.root.Deposito(tank)->LitrosActual());
    answer.EndRow();
  }
}

void AskEmptyingComposition(Mill& mill, Answer& answer) {
  AddList(mill.root.Deposito(kPickedTank)->Vaciado(kEmptying)->Composicion(1), answer);
}

void AskCurrentDischarge(Mill& mill, Answer& answer) {
  const auto hopper = mill.root.Tolva(kOtherHopper);
  answer.Add(hopper->DescargaEnCurso());
  answer.Add(hopper->MomentoInicio());
  answer.Add(hopper->Acumulado());
  answer.EndRow();
}

// --- the writing questions, and what the tables hold of them

std::vector<std::string> EmptyingSums() {
  const std::string of = fmt::format(" where Deposito={}", kPickedTank);
  return {"select sum(Fraccion*Descarga) from Descargas" + of,
          "select sum(Cantidad*Vaciado) from Vaciados" + of,
          "select sum(Fraccion*Descarga*Vaciado) from detVaciados" + of,
          "select count(*) from Niveles" + of};
}

AskMill SellAndUndo(double litres) {
  return [=](Mill& mill, Answer& answer) {
    const auto add = [&](const std::string& sum, Answer& into) { Query(sum)(mill, into); };
    ChangeAndUndo(
        EmptyingSums(), add, answer,
        [&] {
          double quantity = litres;
          const Variant sale = Variant::Array{int16_t{2}, "L1", int32_t{1}, int32_t{1}, "MERCADO"};
          Require(mill.root.Deposito(kPickedTank)->NuevoVaciado(0, quantity, {}, sale) > 0,
                  "NuevoVaciado");
        },
        [&] { Require(mill.root.Deposito(kPickedTank)->DeshacerVaciado(), "DeshacerVaciado"); });
  };
}

// --- the questions with all who answer them

// What the library sends, on a connection of its own.
class Listener {
 public:
  explicit Listener(const std::string& folder)
      : mill_(folder, std::make_shared<test::ProbeEngine>(MakeEngine({}), probe_)) {}

  Mill& mill() { return mill_; }

  // The first text with these words that is sent for a question.
  std::string TextSent(const AskMill& ask, const std::string& words) {
    probe_->events.clear();
    Answer answer;
    ask(mill_, answer);
    for (const std::string& text : probe_->events) {
      if (text.find(words) != std::string::npos) return text;
    }
    fmt::print(stderr, "the library sends no text with '{}'\n", words);
    std::exit(1);
  }

 private:
  std::shared_ptr<test::Probe> probe_ = std::make_shared<test::Probe>();
  Mill mill_;
};

// Everybody who is asked about one season. The library comes first and alone, so that its memory
// shows; the rivals are there once `Invite` was called.
class Rivals {
 public:
  Rivals(const std::string& folder, const std::string& path)
      : folder_(folder), path_(path), library_(folder, MakeEngine({})) {}

  void Invite(const std::string& duckdb_library) {
    as_written_.emplace(folder_, MakeEngine(PlanOptions::Without("all")));
    by_hand_.emplace(path_);
    if (duckdb_library.empty()) return;
    duckdb_.emplace(duckdb_library);
    duckdb_->CopyFrom(by_hand_->raw());
  }

  Mill& library() { return library_; }
  Mill& as_written() { return *as_written_; }
  ByHand& by_hand() { return *by_hand_; }
  bool has_duckdb() const { return duckdb_.has_value(); }
  DuckDb& duckdb() { return *duckdb_; }

 private:
  std::string folder_;
  std::string path_;
  Mill library_;
  std::optional<Mill> as_written_;
  std::optional<ByHand> by_hand_;
  std::optional<DuckDb> duckdb_;
};

// A question as it is known before the rivals are there; `by_hand` and `duckdb` make their sides.
struct Draft {
  std::string name = {};
  AskMill library = {};
  std::function<std::function<void(Answer&)>(ByHand&)> by_hand = {};
  // The text for DuckDB and its parameters; "" when it is not asked.
  std::string duckdb = {};
  std::vector<Variant> parameters = {};
  bool writes = false;
  bool whole_season = false;
};

std::function<std::function<void(Answer&)>(ByHand&)> HandQuery(const std::string& text,
                                                               const std::vector<Variant>& values) {
  return [=](ByHand& by_hand) -> std::function<void(Answer&)> {
    sqlite3_stmt* query = by_hand.Prepare(text);
    return [&by_hand, query, values](Answer& answer) { by_hand.Ask(query, values, answer); };
  };
}

// One statement that both rivals are asked.
Draft QueryDraft(const std::string& name, const std::string& text, const std::string& rival,
                 const std::vector<Variant>& values) {
  Draft draft;
  draft.name = name;
  draft.library = Query(text);
  draft.by_hand = HandQuery(rival, values);
  draft.duckdb = rival;
  draft.parameters = values;
  return draft;
}

Draft CompositionDraft(const std::string& name, int16_t tank, int16_t clase) {
  const std::string text = sql::Composition(sql::Content::kTank, clase, true);
  return {.name = name,
          .library = TankComposition(tank, clase),
          .by_hand = [=](ByHand& by_hand) -> std::function<void(Answer&)> {
            sqlite3_stmt* query = by_hand.Prepare(text);
            return [&by_hand, tank, query](Answer& answer) {
              by_hand.AskTankComposition(tank, query, answer);
            };
          },
          // Percentages and litres come from the litres in the tank, which it is given.
          .duckdb = "select k, name, 100*kilos/sum(kilos) over (), " +
                    std::string("?2*kilos/sum(kilos) over () from (") + text +
                    ") as groups (k, name, kilos) order by k",
          .parameters = {int32_t{tank}}};
}

std::vector<Draft> MakeDrafts(const std::string& folder, const Season& season) {
  using sql::Content;
  Listener listener(folder);
  std::vector<Draft> drafts;
  const auto picked = Variant(int32_t{kPickedTank});
  const auto full = Variant(int32_t{kFullTank});
  const std::vector<Variant> discharge = {int32_t{kOtherHopper}, int32_t{kDischarge}};
  const auto litres_of = [&](int16_t tank) {
    return ToDouble(listener.mill().root.Deposito(tank)->LitrosActual());
  };

  drafts.push_back({.name = "1 weight of a discharge",
                    .library = AskWeight,
                    .by_hand = HandQuery(sql::Weight(), discharge),
                    .duckdb = sql::Weight(),
                    .parameters = discharge});
  drafts.push_back(QueryDraft("1 weight of a discharge, the query",
                              listener.TextSent(AskWeight, "sum("), sql::Weight(), discharge));
  drafts.push_back({.name = "2 state of 40 tanks",
                    .library = AskStates,
                    .by_hand =
                        [tanks = season.size.tanks](ByHand& by_hand) {
                          return [&by_hand, tanks](Answer& a) { by_hand.AskStates(tanks, a); };
                        },
                    .duckdb = sql::StateOfAllTanks()});
  for (int16_t clase = 1; clase <= kClasses; ++clase) {
    const std::string name = fmt::format("3 20 discharges by class {}", clase);
    drafts.push_back(CompositionDraft(name, kPickedTank, clase));
    drafts.back().parameters.emplace_back(litres_of(kPickedTank));
    drafts.push_back(QueryDraft(name + ", the query",
                                listener.TextSent(TankComposition(kPickedTank, clase), "group by"),
                                sql::Composition(Content::kTank, clase, false), {picked}));
  }
  drafts.push_back(QueryDraft("3 kilograms of 20 discharges, the query",
                              listener.TextSent(TankComposition(kPickedTank, 1),
                                                "sum(PARCIALPESO*Fraccion) as pes from "
                                                "ExtPesada left join Descargas"),
                              sql::Kilos(Content::kTank), {picked}));

  const std::string emptying = sql::Composition(Content::kEmptying, 1, true);
  const std::vector<Variant> emptied = {picked, int32_t{kEmptying}};
  drafts.push_back({.name = "4 composition of an emptying",
                    .library = AskEmptyingComposition,
                    .by_hand = [emptying](ByHand& by_hand) -> std::function<void(Answer&)> {
                      sqlite3_stmt* query = by_hand.Prepare(emptying);
                      return [&by_hand, query](Answer& answer) {
                        by_hand.AskEmptyingComposition(kPickedTank, kEmptying, query, answer);
                      };
                    }});
  drafts.push_back(QueryDraft("4 composition of an emptying, the query",
                              listener.TextSent(AskEmptyingComposition, "group by"),
                              sql::Composition(Content::kEmptying, 1, false), emptied));
  drafts.push_back({.name = "5 current discharge of a hopper",
                    .library = AskCurrentDischarge,
                    .by_hand = [](ByHand& by_hand) {
                      return
                          [&by_hand](Answer& a) { by_hand.AskCurrentDischarge(kOtherHopper, a); };
                    }});

  drafts.push_back({.name = "6 discharge with a share, and back",
                    .library = DischargeAndRestore(season),
                    .by_hand =
                        [sums = DischargeSums(season)](ByHand& by_hand) {
                          return [&by_hand, sums](Answer& answer) {
                            const auto add = [&](const std::string& sum, Answer& into) {
                              by_hand.Ask(by_hand.Prepare(sum), {}, into);
                            };
                            ChangeAndUndo(
                                sums, add, answer,
                                [&] {
                                  by_hand.Discharge(kOtherHopper, 3, kMillLine, kShareOut,
                                                    AfterTheSeason());
                                },
                                [&] { by_hand.RestoreDischarge(kOtherHopper); });
                          };
                        },
                    .writes = true});
  const double sold = litres_of(kPickedTank) / 2;
  drafts.push_back({.name = "7 emptying of 20 discharges, and back",
                    .library = SellAndUndo(sold),
                    .by_hand =
                        [sold](ByHand& by_hand) {
                          return [&by_hand, sold](Answer& answer) {
                            const auto add = [&](const std::string& sum, Answer& into) {
                              by_hand.Ask(by_hand.Prepare(sum), {}, into);
                            };
                            ChangeAndUndo(
                                EmptyingSums(), add, answer,
                                [&] { by_hand.Sell(kPickedTank, sold, AfterTheSeason()); },
                                [&] { by_hand.UndoEmptying(kPickedTank); });
                          };
                        },
                    .writes = true});

  const OleDate from = Season::PickedDay();
  const OleDate to = from.NextDay();
  const std::vector<Variant> day = {from.days(), to.days()};
  const auto between = [&](const std::string& column, const std::string& before) {
    return before + "(" + column + " >= " + data::SqlDate(from) + ") and (" + column +
           " <= " + data::SqlDate(to) + ") ";
  };
  drafts.push_back(QueryDraft(
      "8 discharges of a day, the query",
      between("MomentoHasta",
              "select MomentoHasta as mmto, Descargas.Descarga as cod, Descargas.Tolva as tva, "
              "Descargas.Deposito as dto, sum(PARCIALPESO) as pes from ExtPesada left join "
              "Descargas on (ExtPesada.tolva= Descargas.Tolva) and (ExtPesada.descarga= "
              "Descargas.Descarga) where (Descargas.Deposito > 0) and ") +
          "group by MomentoHasta, Descargas.Descarga, Descargas.Tolva, Descargas.Deposito "
          "order by MomentoHasta ",
      sql::HistoryOfDischarges(), day));
  drafts.push_back(
      QueryDraft("8 readings of a day, the query",
                 between("Momento",
                         "select Momento as mmto, Item as cod, Deposito as dto, Litros as can "
                         "from Niveles where ") +
                     "order by Momento ",
                 sql::HistoryOfReadings(), day));
  drafts.push_back(QueryDraft(
      "8 emptyings of a day, the query",
      between("mmto",
              "select mmto, Vaciado as cod, Deposito as dto, Cantidad as can, Destino as "
              "dno, Lote as lot, Uso, Cliente as cli, Transportista as trp, DestinoVenta "
              "as dvt from Vaciados where ") +
          "order by mmto ",
      sql::HistoryOfEmptyings(), day));

  drafts.push_back(CompositionDraft("9 the whole season by member", kFullTank, 1));
  drafts.back().parameters.emplace_back(litres_of(kFullTank));
  drafts.back().whole_season = true;
  drafts.push_back(QueryDraft(
      "9 the whole season by member, the query",
      kestro::Tools::Replace(listener.TextSent(TankComposition(kPickedTank, 1), "group by"),
                             fmt::format("Deposito={}", kPickedTank),
                             fmt::format("Deposito={}", kFullTank)),
      sql::Composition(Content::kTank, 1, false), {full}));
  drafts.back().whole_season = true;
  return drafts;
}

Side MillSide(Mill& mill, const Draft& draft) {
  Side side{.ask = [&mill, ask = draft.library](Answer& answer) { ask(mill, answer); }};
  if (draft.writes) {
    side.before = [&mill] { mill.workspace().BeginTrans(); };
    side.after = [&mill] { mill.workspace().Rollback(); };
  }
  return side;
}

void AddRivals(Question& question, const Draft& draft, Rivals& rivals, bool as_written) {
  if (as_written) question.sides[kAsWritten] = MillSide(rivals.as_written(), draft);
  Side& by_hand = question.sides[kByHand];
  by_hand.ask = draft.by_hand(rivals.by_hand());
  if (draft.writes) {
    by_hand.before = [&rivals] { rivals.by_hand().Run("begin immediate"); };
    by_hand.after = [&rivals] { rivals.by_hand().Run("rollback"); };
  }
  if (!rivals.has_duckdb() || draft.duckdb.empty()) return;
  const auto query = std::make_shared<DuckDb::Query>(rivals.duckdb(), sql::ForDuckDb(draft.duckdb));
  question.sides[kDuckDb].ask = [query, values = draft.parameters](Answer& answer) {
    query->Ask(values, answer);
  };
}

// --- the run

struct Options {
  std::vector<int64_t> sizes = {20'000, 200'000};
  std::string duckdb;
  int rounds = 7;
  std::string only;
};

Season MakeMill(const std::string& folder, const std::string& path, int64_t weighings) {
  const auto start = std::chrono::steady_clock::now();
  SeasonSize size;
  size.weighings = weighings;
  WriteSettings(folder, size, "oliva.ambrelio");
  host::CreateMillDatabase(*embedded::CreateEngine(), path, "");
  const Season season = FillSeason(path, size);
  Mill(folder, MakeEngine({})).database();  // the indexes are made now
  fmt::print("\n{} weighings: {} MiB, made in {:.1f} s\n", weighings,
             std::filesystem::file_size(path) >> 20, SecondsSince(start));
  return season;
}

void RunSize(int64_t weighings, const Options& options, std::vector<Result>& results) {
  // What took a tenth of a second as written is not asked like that of a larger season.
  constexpr double kTooSlow = 1e5;
  const test::TempFolder folder;
  const std::string path = folder.File("oliva.ambrelio");
  const Season season = MakeMill(folder.path(), path, weighings);
  std::vector<Draft> drafts = MakeDrafts(folder.path(), season);
  StepCounter counter;
  Rivals rivals(folder.path(), path);

  struct Asked {
    Draft draft;
    Question question = {};
    Result result = {};
    Answer expected = Answer();
  };
  std::vector<Asked> all;
  ForgetPeakMemory();
  const int64_t memory = PeakMemory();
  for (Draft& draft : drafts) {
    if (draft.name.find(options.only) == std::string::npos) continue;
    Asked asked{.draft = std::move(draft)};
    asked.question.name = asked.result.question = asked.draft.name;
    asked.question.whole_season = asked.result.whole_season = asked.draft.whole_season;
    asked.result.weighings = weighings;
    asked.question.sides[kLibrary] = MillSide(rivals.library(), asked.draft);
    asked.expected = AskLibrary(asked.question, counter, asked.result);
    all.push_back(std::move(asked));
  }
  fmt::print("memory of the process: {} MiB, at most {} MiB while the library answered all\n\n",
             memory, PeakMemory());

  rivals.Invite(options.duckdb);
  PrintHeading();
  for (Asked& asked : all) {
    const bool slow = std::any_of(results.begin(), results.end(), [&](const Result& before) {
      return before.question == asked.result.question && before.microseconds[kAsWritten] > kTooSlow;
    });
    AddRivals(asked.question, asked.draft, rivals, !slow);
    Compete(asked.question, asked.expected, options.rounds, counter, asked.result);
    Print(asked.result);
    results.push_back(asked.result);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("The library's questions against rivals, on seasons of growing size");
  // Of fewer weighings the tanks and days that are asked for cannot be filled.
  app.add_option("--sizes", options.sizes, "weighings, separated by commas")
      ->delimiter(',')
      ->check(CLI::Range(int64_t{20'000}, int64_t{100'000'000}));
  app.add_option("--duckdb", options.duckdb, "DuckDB's shared library; left out without it");
  app.add_option("--rounds", options.rounds, "rounds, the best of which counts");
  app.add_option("--only", options.only, "only questions whose name holds this text");
  CLI11_PARSE(app, argc, argv);
  std::setvbuf(stdout, nullptr, _IOLBF, 0);

  const ManualClock clock(AfterTheSeason());
  const ScopedClock scoped_clock(clock);
  std::vector<Result> results;
  fmt::print("steps are those of SQLite's machine, KiB what SQLite needed beside its caches\n");
  if (options.duckdb.empty()) fmt::print("DuckDB is left out\n");
  for (const int64_t size : options.sizes) RunSize(size, options, results);
  PrintBars(results);
}
