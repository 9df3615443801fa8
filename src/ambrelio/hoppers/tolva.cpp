#include "ambrelio/hoppers/tolva.h"

#include <string>

#include "ambrelio/composition/composition.h"
#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/data/transaction.h"
#include "ambrelio/hoppers/descarga.h"
#include "ambrelio/hoppers/reassign.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {

using data::CurrentDischarge;
using data::SqlDate;
using data::WhereHopperDischarge;
using kestro::Tools;

OleDate Tolva::MomentoInicio() {
  const std::string current = Tools::LongText(DescargaEnCurso());
  const auto start = data::FirstValue(
      session_, "select MomentoDesde from Descargas where (Tolva=" + Tools::IntegerText(hopper_) +
                    ") and (Descarga=" + current + ") ");
  return start ? ToDate(Tools::ValueOrZero(*start)) : OleDate();
}

int32_t Tolva::DescargaEnCurso() {
  const Variant last = data::Aggregate(
      session_,
      "select max(Descarga) from Descargas where Tolva=" + Tools::IntegerText(hopper_) + " ");
  if (!last.is_null()) return ToLong(last);
  return data::InsertFirstDischarge(session_, hopper_) ? 1 : 0;
}

bool Tolva::Descargar(int16_t dto, int16_t mol, double& qto) {
  if (!(qto >= 0)) return false;  // a NaN is refused too
  if (qto == 0 || qto > 1) qto = 1;
  return data::InTransaction(session_, [&] {
    const auto current = CurrentDischarge(session_, hopper_);
    if (!current || current->tank >= 1) return false;
    Close(current->number, dto, mol, 1);
    const int32_t next = Successor(current->number);
    if (!OpenNext(next)) return false;
    // What stays in the hopper goes over to the new discharge.
    return qto >= 1 ||
           ReassignDischarge(session_, hopper_, current->number, hopper_, next, 1 - qto);
  });
}

bool Tolva::RestaurarCarga() {
  return data::InTransaction(session_, [&] {
    const auto undone = CurrentDischarge(session_, hopper_);
    if (!undone) return false;
    if (data::Execute(session_, "delete from Descargas where " +
                                    WhereHopperDischarge(hopper_, undone->number)) == 0) {
      return false;
    }

    const auto restored = CurrentDischarge(session_, hopper_);
    if (!restored || EmptiedSince(restored->tank, undone->start)) return false;
    if (data::Execute(
            session_,
            "update Descargas set MomentoHasta= Null, Molino= 0, Deposito=0, Fraccion=Null "
            "where " +
                WhereHopperDischarge(hopper_, restored->number)) == 0) {
      return false;
    }
    return ReassignDischarge(session_, hopper_, undone->number, hopper_, restored->number, 1);
  });
}

std::shared_ptr<ambrelio::Descarga> Tolva::Descarga(int32_t cod) {
  if (cod <= 0 || !data::HasRows(session_, "select Descarga from Descargas where (Tolva=" +
                                               Tools::IntegerText(hopper_) +
                                               ") and (Descarga=" + Tools::LongText(cod) + ") ")) {
    return nullptr;
  }
  return std::make_shared<ambrelio::Descarga>(session_, hopper_, cod);
}

int32_t Tolva::Partidas() {
  const auto current = CurrentDischarge(session_, hopper_);
  if (!current) return 0;
  return ToLong(Tools::ValueOrZero(data::Aggregate(
      session_,
      "select count(partida) as cnt from ExtPesada where (tolva=" + Tools::IntegerText(hopper_) +
          ") and (descarga=" + Tools::LongText(current->number) + ") ")));
}

double Tolva::Acumulado() {
  const auto current = CurrentDischarge(session_, hopper_);
  return current ? data::DischargeWeight(session_, hopper_, current->number) : 0;
}

Variant Tolva::Composicion(int16_t clase) {
  const auto current = CurrentDischarge(session_, hopper_);
  if (!current) return {};
  return composition::Plain(session_, clase, hopper_, current->number);
}

// The condition on the tank lets it touch an open discharge only.
void Tolva::Close(int32_t discharge, int16_t tank, int16_t mill_line, double fraction) {
  session_.Database().Execute("update Descargas set Deposito= " + Tools::IntegerText(tank) +
                              ", MomentoHasta= " + SqlDate(session_.Now()) +
                              ", Molino= " + Tools::IntegerText(mill_line) +
                              ", Fraccion= " + data::SqlNum8(fraction) + " where " +
                              WhereHopperDischarge(hopper_, discharge) + " and (Deposito=0) ");
}

bool Tolva::OpenNext(int32_t discharge) {
  return data::Execute(
             session_,
             "insert into Descargas "
             "(Tolva, Descarga, MomentoDesde, MomentoHasta, Molino, Deposito, Fraccion) values (" +
                 Tools::IntegerText(hopper_) + ", " + Tools::LongText(discharge) + ", " +
                 SqlDate(session_.Now()) + ", Null, 0, 0, Null) ") > 0;
}

bool Tolva::EmptiedSince(int16_t tank, OleDate moment) {
  const Variant last = data::Aggregate(
      session_, "select max(mmto) from Vaciados where Deposito=" + Tools::IntegerText(tank));
  return !last.is_null() && ToDate(last) > moment;
}

}  // namespace ambrelio
