// One discharge of a hopper. Every member reads the database; a discharge deleted meanwhile reads
// as 0 kilograms and zero dates.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Descarga : public Object {
 public:
  Descarga(Session& session, int16_t hopper, int32_t number)
      : session_(session), hopper_(hopper), number_(number) {}
  const char* ClassName() const override { return "Descarga"; }

  int16_t Tolva() const { return hopper_; }
  int32_t Codigo() const { return number_; }
  // Kilograms of olives, re-assigned shares included.
  double Kilos();
  OleDate MomentoDesde();
  // The zero date while the discharge is open.
  OleDate MomentoHasta();
  // As Tolva::Composicion, for this discharge.
  Variant Composicion(int16_t clase);

 private:
  OleDate ReadMoment(const std::string& column);

  Session& session_;
  int16_t hopper_;
  int32_t number_;
};

}  // namespace ambrelio
