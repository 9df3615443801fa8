// One emptying of a tank. The tank's history is loaded when the object is made, use, referents and
// lot on first use; neither sees later changes made through other objects.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"
#include "ambrelio/value/variant.h"

namespace ambrelio {

class Vaciado : public Object {
 public:
  Vaciado(Session& session, int16_t tank, int32_t number);
  const char* ClassName() const override { return "Vaciado"; }

  int16_t Deposito() const { return tank_; }
  int32_t Codigo() const { return number_; }
  // Use of the oil: 0, 1, or 2 for a sale. Client, carrier and sale destination exist only for a
  // sale and read as 0 or "" otherwise.
  int16_t Uso();
  int32_t Cliente();
  int32_t Transportista();
  std::string DestinoVenta();
  // False, with nothing written, when the use is unknown, a sale lacks client or carrier (0), or
  // another use has one (above 0).
  bool FijarUso(int16_t u, int32_t cli, int32_t trp, const std::string& dno);
  std::string Lote();
  void SetLote(const std::string& lot);
  // 3021 when the emptying no longer exists.
  double Litros();
  OleDate Momento();
  // Moves the emptying, only strictly between its neighbouring events; otherwise nothing happens.
  void SetMomento(OleDate moment);
  // The moments between which the emptying may be moved, in both tanks it touches; Null where the
  // emptied tank has no event on that side. False when it is missing from a tank's history.
  bool GetCotasMomento(Variant& mmt1, Variant& mmt2);
  // The receiving tank, 0 when the oil left the mill.
  int16_t Destino();
  // As Deposito::Composicion, for the emptied oil.
  Variant Composicion(int16_t clase);

 private:
  bool Load();
  std::string Where() const;
  double Kilos();

  Session& session_;
  int16_t tank_;
  int32_t number_;
  Variant history_;
  bool loaded_ = false;
  int16_t use_ = 0;
  int32_t client_ = 0;
  int32_t carrier_ = 0;
  std::string sale_destination_;
  std::string lot_;
};

}  // namespace ambrelio
