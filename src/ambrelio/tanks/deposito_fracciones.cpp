#include <cmath>

#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/deposito.h"

namespace ambrelio {
namespace {

using kestro::Tools;

// Dust is cleared in every tank, whichever one was being changed.
constexpr const char* kClearDust = "update Descargas set Fraccion=0 where (Fraccion<0.0001) ";

std::string FiltroDescarga(int16_t hopper, int32_t discharge, int16_t tank) {
  return "where (Tolva=" + Tools::IntegerText(hopper) +
         ") and (Descarga=" + Tools::LongText(discharge) +
         ") and (Deposito=" + Tools::IntegerText(tank) + ") ";
}

}  // namespace

void Deposito::EscalarFracciones(double k) {
  session_.Database().Execute("update Descargas set Fraccion= Fraccion * " + data::SqlNum8(k) +
                              " where (Deposito=" + TankText() + ") ");
  session_.Database().Execute(kClearDust);
}

void Deposito::MoverFraccion(int16_t hopper, int32_t discharge, int16_t destination,
                             double amount) {
  // The amount goes unsigned behind its sign, so that no plus is followed by a minus.
  const std::string sign = amount < 0 ? "-" : "+";
  if (data::Execute(session_, "update Descargas set Fraccion= Fraccion" + sign +
                                  data::SqlNum8(std::abs(amount)) + " " +
                                  FiltroDescarga(hopper, discharge, destination)) != 0) {
    session_.Database().Execute(kClearDust);
    return;
  }
  session_.Database().Execute(
      "insert into Descargas (Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
      "select Tolva, Descarga, MomentoDesde, MomentoHasta, " +
      Tools::IntegerText(destination) + ", " + data::SqlNum8(amount) + " from Descargas " +
      FiltroDescarga(hopper, discharge, tank_));
}

}  // namespace ambrelio
