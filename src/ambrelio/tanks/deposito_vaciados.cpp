#include <cmath>

#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/data/transaction.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/deposito.h"
#include "ambrelio/tanks/lists.h"
#include "ambrelio/tanks/vaciado.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using kestro::Tools;

// The places of `referentes`.
constexpr size_t kUse = 0;
constexpr size_t kLot = 1;
constexpr size_t kClient = 2;
constexpr size_t kCarrier = 3;
constexpr size_t kSaleDestination = 4;

// The values of Uso, Lote, Cliente, Transportista and DestinoVenta. A use that does not exist gets
// too few values, and the engine refuses the statement.
std::string UseValues(const std::optional<Variant>& referentes) {
  if (!referentes) return "0, Null, Null, Null, Null";
  const int16_t use = ToInteger(tanks::Element(*referentes, kUse));
  std::string values = Tools::IntegerText(use) + ", " +
                       data::SqlText(ToText(tanks::Element(*referentes, kLot))) + ", ";
  switch (use) {
    case 0:
    case 1:
      return values + "Null, Null, Null";
    case 2:
      return values + Tools::LongText(ToLong(tanks::Element(*referentes, kClient))) + ", " +
             Tools::LongText(ToLong(tanks::Element(*referentes, kCarrier))) + ", " +
             data::SqlText(ToText(tanks::Element(*referentes, kSaleDestination)));
    default:
      return values;
  }
}

}  // namespace

int32_t Deposito::NuevoVaciado(int16_t dno, double& qty, const Variant& mmto,
                               const std::optional<Variant>& referentes) {
  if (dno < 0 || dno > session_.tank_count) return 0;
  if (!referentes && dno == 0) return 0;
  const State state = EstadoActual();
  if (state.code == 0 || state.litres == 0) return 0;
  if (qty > state.litres) qty = state.litres;
  if (qty == 0 || std::isnan(qty)) return 0;
  const bool dated = IsDate(mmto);
  const OleDate moment = dated ? ToDate(mmto) : session_.Now();
  if (dated && !(moment > state.moment)) return 0;
  const double share = Quotient(qty, state.litres);

  int32_t number = 0;
  const bool recorded = data::InTransaction(session_, [&] {
    number = SiguienteVaciado();
    if (!InsertEmptying(number, moment, qty, dno, UseValues(referentes)) ||
        !InsertSnapshot(number)) {
      return false;
    }
    TakeOut(share, dno);
    return true;
  });
  return recorded ? number : 0;
}

bool Deposito::InsertEmptying(int32_t number, OleDate moment, double quantity, int16_t destination,
                              const std::string& use_values) {
  return data::Execute(session_,
                       "insert into Vaciados (Deposito, Vaciado, mmto, Cantidad, Destino, "
                       "Uso, Lote, Cliente, Transportista, DestinoVenta) values (" +
                           TankText() + ", " + Tools::LongText(number) + ", " +
                           data::SqlDate(moment) + ", " + data::SqlNum8(quantity) + ", " +
                           Tools::IntegerText(destination) + ", " + use_values + ") ") > 0;
}

bool Deposito::InsertSnapshot(int32_t number) {
  return data::Execute(
             session_,
             "insert into detVaciados (Deposito, Vaciado, Tolva, Descarga, Molino, Fraccion) "
             "select " +
                 TankText() + " as Deposito, " + Tools::LongText(number) +
                 " as Vaciado, Tolva, Descarga, Molino, Fraccion from Descargas where (Deposito=" +
                 TankText() + ") and (Fraccion>0) ") > 0;
}

void Deposito::TakeOut(double share, int16_t destination) {
  // Moving clears dust while the rows are being walked: a fraction that was cleared on the way is
  // read as 0 when its row is reached.
  const auto rows =
      session_.Database().OpenRecordset("select * from Descargas where Deposito=" + TankText());
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const double fraction = ToDouble(Tools::ValueOrZero(rows->Value("Fraccion")));
    const int16_t hopper = Tools::ValueAsInteger(rows->Value("Tolva"));
    const int32_t discharge = ToLong(Tools::ValueOrZero(rows->Value("Descarga")));
    if (!(fraction > 0)) continue;
    const double amount = Checked(fraction * share);
    MoverFraccion(hopper, discharge, tank_, -amount);
    if (destination > 0) MoverFraccion(hopper, discharge, destination, amount);
  }
}

bool Deposito::DeshacerVaciado() {
  const LastEmptying last = UltimoVaciadoDatos();
  if (last.number == 0 || DischargedSince(last.moment)) return false;

  const std::string emptying =
      "where (Deposito=" + TankText() + ") and (Vaciado=" + Tools::LongText(last.number) + ") ";
  return data::InTransaction(session_, [&] {
    session_.Database().Execute("delete from Niveles where (Deposito=" + TankText() +
                                ") and (Momento>" + data::SqlDate(last.moment) + ") ");
    return GiveBack(emptying, last.destination) &&
           data::Execute(session_, "delete from detVaciados " + emptying) > 0 &&
           data::Execute(session_, "delete from Vaciados " + emptying) > 0;
  });
}

bool Deposito::DischargedSince(OleDate moment) {
  const auto hopper =
      data::LastValue(session_, "select Tolva from Descargas where Deposito=" + TankText() +
                                    " order by MomentoHasta, Tolva ");
  if (!hopper) return false;
  const auto current = data::CurrentDischarge(session_, Tools::ValueAsInteger(*hopper));
  return current && current->start > moment;
}

bool Deposito::GiveBack(const std::string& emptying, int16_t destination) {
  const auto snapshot = session_.Database().OpenRecordset("select * from detVaciados " + emptying);
  for (; !snapshot->AtEnd(); snapshot->MoveNext()) {
    const double before = ToDouble(Tools::ValueOrZero(snapshot->Value("Fraccion")));
    const int16_t hopper = Tools::ValueAsInteger(snapshot->Value("Tolva"));
    const int32_t discharge = ToLong(Tools::ValueOrZero(snapshot->Value("Descarga")));
    const std::string share = "where " + data::WhereHopperDischarge(hopper, discharge) +
                              " and (Deposito=" + TankText() + ") ";
    if (destination > 0) {
      const auto now = data::FirstValue(session_, "select Fraccion from Descargas " + share);
      const double kept = now ? ToDouble(Tools::ValueOrZero(*now)) : 0;
      MoverFraccion(hopper, discharge, destination, kept - before);
    }
    if (data::Execute(session_, "update Descargas set Fraccion=" + data::SqlNum8(before) + " " +
                                    share) == 0) {
      return false;
    }
  }
  return true;
}

std::shared_ptr<Vaciado> Deposito::Vaciado(int32_t cod) {
  if (cod <= 0 ||
      !data::HasRows(session_, "select Vaciado from Vaciados where (Deposito=" + TankText() +
                                   ") and (Vaciado=" + Tools::LongText(cod) + ") ")) {
    return nullptr;
  }
  return std::make_shared<ambrelio::Vaciado>(session_, tank_, cod);
}

int32_t Deposito::UltimoVaciado() { return UltimoVaciadoDatos().number; }

Deposito::LastEmptying Deposito::UltimoVaciadoDatos() {
  LastEmptying last;
  const auto rows = session_.Database().OpenRecordset(
      "select Vaciado, mmto, Destino from Vaciados where Deposito=" + TankText() +
      " order by mmto ");
  if (rows->AtEnd()) return last;
  rows->MoveLast();
  last.number = ToLong(Tools::ValueOrZero(rows->Value("Vaciado")));
  last.moment = ToDate(Tools::ValueOrZero(rows->Value("mmto")));
  last.destination = Tools::ValueAsInteger(rows->Value("Destino"));
  return last;
}

int32_t Deposito::SiguienteVaciado() {
  return Successor(ToLong(Tools::ValueOrZero(data::Aggregate(
      session_, "select max(Vaciado) from Vaciados where Deposito=" + TankText()))));
}

}  // namespace ambrelio
