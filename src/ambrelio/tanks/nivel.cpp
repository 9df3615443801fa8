#include "ambrelio/tanks/nivel.h"

#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/history.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {

using kestro::Tools;

Nivel::Nivel(Session& session, int16_t tank, int32_t item)
    : session_(session), tank_(tank), item_(item), history_(tanks::ReadHistory(session, tank)) {}

OleDate Nivel::Momento() { return Load() ? moment_ : OleDate(); }

void Nivel::SetMomento(OleDate moment) {
  Variant before;
  Variant after;
  if (!GetCotasMomento(before, after) || !tanks::FitsBetween(moment, before, after)) return;
  if (data::Execute(session_,
                    "update Niveles set Momento=" + data::SqlDate(moment) + " " + Where()) > 0) {
    // The day number goes into the level: clients have come to see it there.
    level_ = ToLong(moment);
  }
}

bool Nivel::GetCotasMomento(Variant& mmt1, Variant& mmt2) {
  const auto neighbours = tanks::FindNeighbours(history_, tanks::kReading, tank_, item_);
  const tanks::Neighbours bounds = neighbours.value_or(tanks::Neighbours());
  mmt1 = bounds.before;
  mmt2 = bounds.after;
  return neighbours.has_value();
}

int32_t Nivel::NivelLeido() { return Load() ? level_ : 0; }

void Nivel::SetNivel(int32_t level) {
  if (data::Execute(session_,
                    "update Niveles set Nivel=" + Tools::LongText(level) + " " + Where()) > 0) {
    level_ = level;
  }
}

double Nivel::Litros() { return Load() ? litres_ : 0; }

void Nivel::SetLitros(double litres) {
  if (data::Execute(session_, "update Niveles set Litros=" + Tools::LongText(RoundToLong(litres)) +
                                  " " + Where()) > 0) {
    litres_ = litres;
  }
}

bool Nivel::Load() {
  if (loaded_) return true;
  const auto row =
      session_.Database().OpenRecordset("select Momento, Nivel, Litros from Niveles " + Where());
  if (row->AtEnd()) return false;
  moment_ = ToDate(Tools::ValueOrZero(row->Value("Momento")));
  level_ = ToLong(Tools::ValueOrZero(row->Value("Nivel")));
  litres_ = ToDouble(Tools::ValueOrZero(row->Value("Litros")));
  loaded_ = true;
  return true;
}

std::string Nivel::Where() const {
  return "where (Deposito=" + Tools::IntegerText(tank_) + ") and (Item=" + Tools::LongText(item_) +
         ") ";
}

}  // namespace ambrelio
