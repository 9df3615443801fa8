#include "library_mill.h"

#include <fmt/core.h>

#include <fstream>
#include <utility>

#include "ambrelio/hoppers/descarga.h"
#include "ambrelio/hoppers/tolva.h"
#include "ambrelio/tanks/deposito.h"

namespace ambrelio::bench {

namespace {

constexpr int16_t kOtherHopper = GeneratedSeason::kOtherHopper;

}  // namespace

Mill::Mill(const std::string& folder, std::shared_ptr<dao::DBEngine> engine) {
  session.UseEngine(std::move(engine));
  root.Constructor(folder, false);
  if (root.BaseAbierta()) return;
  fmt::print(stderr, "the generated database does not open\n");
  std::exit(1);
}

void WriteSettings(const std::string& folder, const SeasonSize& size, const std::string& database) {
  std::ofstream(folder + "/Vardex.ini") << fmt::format(
      "[GENERAL]\nMaxTolvas={},2,{}\nBaseDatos={}\n", size.hoppers, size.tanks, database);
}

OleDate AfterTheSeason() { return OleDate::FromDays(GeneratedSeason::PickedDay().days() + 2); }

void AddRows(dao::Database& database, const std::string& source, Answer& answer) {
  const auto rows = database.OpenRecordset(source);
  const int columns = rows->Fields().Count();
  for (; !rows->AtEnd(); rows->MoveNext()) {
    for (int i = 0; i < columns; ++i) answer.Add(rows->Value(i));
    answer.EndRow();
  }
}

void AddList(const Variant& list, Answer& answer) {
  if (!list.is_array()) return;
  for (const Variant& row : list.array()) {
    for (const Variant& value : row.array()) answer.Add(value);
    answer.EndRow();
  }
}

AskMill Query(const std::string& text) {
  return [text](Mill& mill, Answer& answer) { AddRows(mill.database(), text, answer); };
}

AskMill TankComposition(int16_t tank, int16_t clase) {
  return [=](Mill& mill, Answer& answer) {
    AddList(mill.root.Deposito(tank)->Composicion(clase), answer);
  };
}

void AskWeight(Mill& mill, Answer& answer) {
  answer.Add(mill.root.Tolva(kOtherHopper)->Descarga(kAskedDischarge)->Kilos());
  answer.EndRow();
}

void Require(bool done, const char* what) {
  if (done) return;
  fmt::print(stderr, "{} was refused\n", what);
  std::exit(1);
}

void ChangeAndUndo(const std::vector<std::string>& sums, const AddSum& add, Answer& answer,
                   const std::function<void()>& change, const std::function<void()>& undo) {
  const auto look = [&](Answer& into) {
    for (const std::string& sum : sums) add(sum, into);
  };
  if (!answer.kept()) {
    change();
    undo();
    for (size_t i = 0; i < sums.size(); ++i) answer.EndRow();  // as many as an answer has
    return;
  }
  Answer before(true), between(true), after(true);
  look(before);
  change();
  look(between);
  look(answer);
  undo();
  look(after);
  if (!Equal(before, after) || Equal(before, between)) {
    fmt::print(stderr, "a change was not made, or not undone\n");
    std::exit(1);
  }
}

std::vector<std::string> DischargeSums(const GeneratedSeason& season) {
  const std::string of =
      fmt::format(" where Tolva={} and Descarga>={}", kOtherHopper, season.closed_discharges);
  return {"select sum(PARCIALPESO*DESCARGA) from PESADA" + of,
          "select sum(fraccion*descarga) from splitDescar" + of,
          "select count(*) from splitDescar" + of,
          "select sum(Descarga*(Deposito+1)) from Descargas" + of};
}

AskMill DischargeAndRestore(const GeneratedSeason& season) {
  return [sums = DischargeSums(season)](Mill& mill, Answer& answer) {
    const auto add = [&](const std::string& sum, Answer& into) { Query(sum)(mill, into); };
    ChangeAndUndo(
        sums, add, answer,
        [&] {
          double share = kShareOut;
          Require(mill.root.Tolva(kOtherHopper)->Descargar(3, kMillLine, share), "Descargar");
        },
        [&] { Require(mill.root.Tolva(kOtherHopper)->RestaurarCarga(), "RestaurarCarga"); });
  };
}

}  // namespace ambrelio::bench
