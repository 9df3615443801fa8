// An intermediate hopper: weighings wait in it until they are moved, all at once, into a hopper.
// Waiting weighings carry the hopper number -k in PESADA.
#pragma once

#include <cstdint>
#include <string>

#include "ambrelio/data/session.h"
#include "ambrelio/value/object.h"

namespace ambrelio {

class TvaInter : public Object {
 public:
  TvaInter(Session& session, int16_t number) : session_(session), number_(number) {}
  const char* ClassName() const override { return "TvaInter"; }

  // Moves all that waits into the current discharge of hopper `dno`. False when there is no such
  // hopper.
  bool DescargarEn(int16_t dno);
  // Weighing lines waiting.
  int32_t Partidas();
  // Whole kilograms waiting, a half to the even neighbour.
  int32_t Acumulado();

 private:
  std::string Marker() const;

  Session& session_;
  int16_t number_;
};

}  // namespace ambrelio
