// A hopper, and the life of its discharges.
#pragma once

#include <cstdint>
#include <memory>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Descarga;

class Tolva : public Object {
 public:
  Tolva(Session& session, int16_t hopper) : session_(session), hopper_(hopper) {}
  const char* ClassName() const override { return "Tolva"; }

  // When the current discharge was opened; the zero date when there is none.
  OleDate MomentoInicio();
  // Number of the current discharge; makes discharge 1 for a hopper without any.
  int32_t DescargaEnCurso();
  // Closes the current discharge towards tank `dto` over mill line `mol` and opens the next one.
  // `qto` is the share (0 to 1) of the content that goes out; 0 or above 1 means all of it and is
  // written back as 1. False, with nothing written, when refused.
  bool Descargar(int16_t dto, int16_t mol, double& qto);
  bool Descargar(int16_t dto, int16_t mol) {
    double whole = 0;
    return Descargar(dto, mol, whole);
  }
  // Undoes the last Descargar. False, with nothing written, when refused.
  bool RestaurarCarga();
  // The discharge of that number, or null.
  std::shared_ptr<ambrelio::Descarga> Descarga(int32_t cod);
  // Weighing lines in the current discharge.
  int32_t Partidas();
  // Kilograms in the current discharge.
  double Acumulado();
  // The current discharge broken down by 1 member, 2 product, 3 municipality, 4 place: a list of
  // rows (key, name, percentage, kilograms); Empty for any other class.
  Variant Composicion(int16_t clase);

 private:
  // Writes the end, tank, mill line and fraction of an open discharge.
  void Close(int32_t discharge, int16_t tank, int16_t mill_line, double fraction);
  // Inserts an open discharge, started now. False when no row was written.
  bool OpenNext(int32_t discharge);
  // Whether the tank was emptied later than `moment`.
  bool EmptiedSince(int16_t tank, OleDate moment);

  Session& session_;
  int16_t hopper_;
};

}  // namespace ambrelio
