#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/history.h"
#include "ambrelio/tanks/nivel.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using kestro::Tools;

std::string DischargesInto(const std::string& tank) {
  return "select MomentoHasta from Descargas where (Deposito=" + tank + ") order by MomentoHasta ";
}

std::string InflowsInto(const std::string& tank) {
  return "select mmto from Vaciados where (Destino=" + tank + ") order by mmto ";
}

// A moment that the database does not know is the zero date.
OleDate MomentOf(const Variant& value) { return ToDate(Tools::ValueOrZero(value)); }

}  // namespace

bool Deposito::EntradaNivel(const Variant& mmt, int32_t nivel, double litrs) {
  double volume = litrs;
  if (!(litrs > 0)) {
    if (nivel < 0) return false;
    volume = Capacidad(nivel);
    if (volume < 0) return false;
  }
  if (!data::HasRows(session_, DischargesInto(TankText())) &&
      !data::HasRows(session_, InflowsInto(TankText()))) {
    return false;
  }
  const int32_t item = Successor(UltimoItem());
  const OleDate moment = IsDate(mmt) ? ToDate(mmt) : session_.Now();
  return data::Execute(
             session_,
             "insert into Niveles (Deposito, Item, Momento, Nivel, Litros, Densidad) values (" +
                 TankText() + ", " + Tools::LongText(item) + ", " + data::SqlDate(moment) + ", " +
                 (nivel > 0 ? Tools::LongText(nivel) : "Null") + ", " + data::SqlNum2(volume) +
                 ", Null) ") > 0;
}

bool Deposito::EntradaDensidad(double dens, int32_t itm) {
  const int32_t item = itm == 0 ? UltimoItem() : itm;
  return data::Execute(session_, "update Niveles set Densidad= " + data::SqlNum8(dens) +
                                     " where (Deposito=" + TankText() +
                                     ") and (Item=" + Tools::LongText(item) + ") ") > 0;
}

bool Deposito::EliminarUltimoNivel() {
  const std::string item = Tools::LongText(UltimoItem());
  return data::Execute(session_, "delete from Niveles where (Deposito=" + TankText() +
                                     ") and (Item=" + item + ") ") > 0;
}

Variant Deposito::NivelActual() {
  const State state = EstadoActual();
  return state.code == 0 || state.level == 0 ? Variant::Null() : Variant(state.level);
}

Variant Deposito::LitrosActual() {
  const State state = EstadoActual();
  return state.code == 0 ? Variant::Null() : Variant(state.litres);
}

double Deposito::KilosActual() {
  return ToDouble(Tools::ValueOrZero(data::Aggregate(
      session_,
      "select sum(PARCIALPESO*Fraccion) as pes "
      "from ExtPesada left join Descargas "
      "on (ExtPesada.tolva=Descargas.Tolva) and (ExtPesada.descarga=Descargas.Descarga) "
      "where (Deposito=" +
          TankText() + ") ")));
}

std::shared_ptr<Nivel> Deposito::Nivel(int32_t cod) {
  if (cod <= 0 ||
      !data::HasRows(session_, "select Item from Niveles where (Deposito=" + TankText() +
                                   ") and (Item=" + Tools::LongText(cod) + ") ")) {
    return nullptr;
  }
  return std::make_shared<ambrelio::Nivel>(session_, tank_, cod);
}

Deposito::State Deposito::EstadoActual() {
  const auto discharge = data::LastValue(session_, DischargesInto(TankText()));
  const auto inflow = data::LastValue(session_, InflowsInto(TankText()));
  State state;
  if (!discharge && !inflow) return state;
  const bool inflow_is_last = !discharge || (inflow && tanks::IsLater(*inflow, *discharge));
  state.code = inflow_is_last ? 2 : 1;
  state.moment = MomentOf(inflow_is_last ? *inflow : *discharge);

  const auto readings = session_.Database().OpenRecordset(
      "select Momento, Litros, Nivel from Niveles where (Deposito=" + TankText() +
      ") order by Momento ");
  if (readings->AtEnd()) return state;
  readings->MoveLast();
  const Variant read_at = readings->Value("Momento");
  // A discharge after the reading makes it stale; an inflow does not, it is added below.
  if (state.code == 1 && tanks::IsLater(*discharge, read_at)) return state;
  state.code = 3;
  state.litres = ToDouble(Tools::ValueOrZero(readings->Value("Litros")));
  state.level = ToLong(Tools::ValueOrZero(readings->Value("Nivel")));
  const OleDate reading = MomentOf(read_at);
  const OleDate emptying = MomentoUltimoVaciado();
  state.moment = emptying > reading ? emptying : reading;
  CountEmptyingsSince(reading, state);
  return state;
}

void Deposito::CountEmptyingsSince(OleDate reading, State& state) {
  const auto litres_by = [&](const std::string& column) {
    return data::Aggregate(session_, "select sum(Cantidad) from Vaciados where (" + column + "=" +
                                         TankText() + ") and (mmto>" + data::SqlDate(reading) +
                                         ") ");
  };
  const auto add = [&state](double litres) {
    state.litres = Checked(state.litres + litres);
    state.level = 0;  // a level read before an emptying no longer describes the tank
    state.code = 2;
  };
  if (const Variant out = litres_by("Deposito"); !out.is_null()) add(-ToDouble(out));
  if (const Variant in = litres_by("Destino"); !in.is_null()) add(ToDouble(in));
}

int32_t Deposito::UltimoItem() {
  return ToLong(Tools::ValueOrZero(
      data::Aggregate(session_, "select max(Item) from Niveles where Deposito=" + TankText())));
}

OleDate Deposito::MomentoUltimoVaciado() {
  const auto last_by = [&](const std::string& column) {
    return data::Aggregate(
        session_, "select max(mmto) from Vaciados where (" + column + "=" + TankText() + ") ");
  };
  const OleDate out = MomentOf(last_by("Deposito"));
  const OleDate in = MomentOf(last_by("Destino"));
  return out > in ? out : in;
}

}  // namespace ambrelio
