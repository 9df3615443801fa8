// A tank: its name and capacity table, its level readings and present state, the fractions of
// discharges it holds, its emptyings and its history.
//
// Levels are whole numbers ten times finer than the bands of the capacity table; volumes are
// litres.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Nivel;
class Vaciado;

class Deposito : public Object {
 public:
  Deposito(Session& session, int16_t tank) : session_(session), tank_(tank) {}
  const char* ClassName() const override { return "Deposito"; }

  // --- record (deposito.cpp)
  // The name, "" when the tank has none; setting "" removes it.
  std::string Nombre();
  void SetNombre(const std::string& name);
  // The capacity table: a list of rows (level, A0, A1, A2, A3) by level; Empty without rows.
  // Setting replaces the whole table; anything but an array clears it.
  Variant Formula();
  void SetFormula(const Variant& rows);
  // Litres at a level: the cubic polynomial of the lowest band that reaches it; 0 above the last.
  double Capacidad(int32_t h);

  // --- level readings (deposito_niveles.cpp)
  // Records a reading; anything but a date means now. Litres are taken as given when positive, else
  // from the capacity table. False, with nothing written, when refused.
  bool EntradaNivel(const Variant& mmt = {}, int32_t nivel = 0, double litrs = 0);
  // Sets the density of reading `itm`, or of the last one when 0.
  bool EntradaDensidad(double dens, int32_t itm = 0);
  bool EliminarUltimoNivel();
  // Null when not known.
  Variant NivelActual();
  Variant LitrosActual();
  // Kilograms of weighed olives whose oil is in the tank.
  double KilosActual();
  // The reading of that number, or null.
  std::shared_ptr<ambrelio::Nivel> Nivel(int32_t cod);

  // --- emptyings (deposito_vaciados.cpp)
  // Empties `qty` litres into tank `dno`, or out of the mill when 0; `qty` is lowered to what there
  // is. `referentes` is (use, lot [, client, carrier, destination]) and must be given for an
  // emptying out of the mill. The number of the emptying, or 0 with nothing written when refused.
  int32_t NuevoVaciado(int16_t dno, double& qty, const Variant& mmto = {},
                       const std::optional<Variant>& referentes = {});
  // Undoes the last emptying. False, with nothing written, when refused.
  bool DeshacerVaciado();
  // The emptying of that number, or null.
  std::shared_ptr<ambrelio::Vaciado> Vaciado(int32_t cod);
  // The number of the last emptying, 0 without any.
  int32_t UltimoVaciado();

  // --- history and composition (deposito.cpp)
  // A list of rows (moment, kind, number, code); see history.h. Empty for a tank never used.
  Variant Historial();
  // The code of the last movement (0 never used, 1 discharge, 2 emptying, 3 reading); `hay` litres
  // or Null, `niv` level or Null, `mmto` its moment (left alone for code 0).
  int16_t UltimoMovimiento(Variant& hay, Variant& niv, OleDate& mmto);
  // The content by 1 member, 2 product, 3 municipality, 4 place, 5 mill line: a list of rows (key,
  // name, percentage, litres), or Empty.
  Variant Composicion(int16_t clase);

  // --- fractions (deposito_fracciones.cpp)
  // Multiplies all fractions of this tank by `k`, then resets every fraction below 0.0001, of any
  // tank, to 0.
  void EscalarFracciones(double k);
  // Adds `amount` (signed) to the fraction of a discharge that tank `destination` holds; makes the
  // row from this tank's when there is none.
  void MoverFraccion(int16_t hopper, int32_t discharge, int16_t destination, double amount);

 private:
  // What EstadoActual finds. `code` 0: never received oil, 1: a discharge is the last thing, 2: an
  // emptying in or out is, 3: the last reading is current.
  struct State {
    int16_t code = 0;
    double litres = 0;
    int32_t level = 0;
    OleDate moment;  // without meaning for code 0
  };
  State EstadoActual();
  // Adds to `state` what emptyings brought or took after its reading.
  void CountEmptyingsSince(OleDate reading, State& state);
  int32_t UltimoItem();
  OleDate MomentoUltimoVaciado();

  struct LastEmptying {
    int32_t number = 0;
    OleDate moment;
    int16_t destination = 0;
  };
  LastEmptying UltimoVaciadoDatos();
  int32_t SiguienteVaciado();

  // The steps of NuevoVaciado; False when no row was written.
  bool InsertEmptying(int32_t number, OleDate moment, double quantity, int16_t destination,
                      const std::string& use_values);
  bool InsertSnapshot(int32_t number);
  // Takes a share of every positive fraction out of this tank, into `destination` unless it is 0.
  void TakeOut(double share, int16_t destination);

  // The steps of DeshacerVaciado. Whether the hopper of the latest discharge into this tank opened
  // its current discharge after `moment`.
  bool DischargedSince(OleDate moment);
  // Sets the fractions back to the snapshot that the condition `emptying` selects. False when the
  // tank no longer has the row of one.
  bool GiveBack(const std::string& emptying, int16_t destination);

  std::string TankText() const;

  Session& session_;
  int16_t tank_;
};

}  // namespace ambrelio
