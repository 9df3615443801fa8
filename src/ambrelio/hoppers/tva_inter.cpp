#include "ambrelio/hoppers/tva_inter.h"

#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/data/stretch.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {

using kestro::Tools;

bool TvaInter::DescargarEn(int16_t dno) {
  if (dno < 1 || dno > session_.hopper_count) return false;
  bool moved = false;
  data::InOneStretch(session_, [&] {
    const auto current = data::CurrentDischarge(session_, dno);
    if (!current) return;
    session_.Database().Execute("update PESADA set TOLVA=" + Tools::IntegerText(dno) +
                                ", DESCARGA=" + Tools::LongText(current->number) + " where " +
                                Marker());
    moved = true;
  });
  return moved;
}

int32_t TvaInter::Partidas() {
  return ToLong(Tools::ValueOrZero(
      data::Aggregate(session_, "select count(PARTIDA) as cnt from PESADA where " + Marker())));
}

// Waiting weighings are never divided, so their weights come straight from PESADA.
int32_t TvaInter::Acumulado() {
  return ToLong(Tools::ValueOrZero(
      data::Aggregate(session_, "select sum(PARCIALPESO) as pes from PESADA where " + Marker())));
}

std::string TvaInter::Marker() const { return "(TOLVA=-" + Tools::IntegerText(number_) + ") "; }

}  // namespace ambrelio
