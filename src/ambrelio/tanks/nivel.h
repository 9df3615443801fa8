// One level reading of a tank. The tank's history is loaded when the object is made, the reading on
// first use; neither sees later changes made through other objects.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Nivel : public Object {
 public:
  Nivel(Session& session, int16_t tank, int32_t item);
  const char* ClassName() const override { return "Nivel"; }

  int16_t Deposito() const { return tank_; }
  int32_t Codigo() const { return item_; }
  // The zero date when the reading no longer exists.
  OleDate Momento();
  // Moves the reading, only strictly between its neighbouring events; otherwise nothing happens.
  // Of what this object has already read, the moment stays the old one and the level becomes the
  // new day number.
  void SetMomento(OleDate moment);
  // The moments of the neighbouring events, Null where there is none. False when the reading is not
  // in the history.
  bool GetCotasMomento(Variant& mmt1, Variant& mmt2);
  // Level, 0 when not known.
  int32_t NivelLeido();
  void SetNivel(int32_t level);
  double Litros();
  // Stores whole litres, a half to the even neighbour.
  void SetLitros(double litres);

 private:
  bool Load();
  std::string Where() const;

  Session& session_;
  int16_t tank_;
  int32_t item_;
  Variant history_;
  bool loaded_ = false;
  OleDate moment_;
  int32_t level_ = 0;
  double litres_ = 0;
};

}  // namespace ambrelio
