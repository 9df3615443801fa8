#include "ambrelio/hoppers/descarga.h"

#include "ambrelio/composition/composition.h"
#include "ambrelio/data/glob_traza.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {

using kestro::Tools;

double Descarga::Kilos() { return data::DischargeWeight(session_, hopper_, number_); }

OleDate Descarga::MomentoDesde() { return ReadMoment("MomentoDesde"); }

OleDate Descarga::MomentoHasta() { return ReadMoment("MomentoHasta"); }

Variant Descarga::Composicion(int16_t clase) {
  return composition::Plain(session_, clase, hopper_, number_);
}

OleDate Descarga::ReadMoment(const std::string& column) {
  const auto moment = data::FirstValue(
      session_, "select " + column + " from Descargas where (Tolva=" + Tools::IntegerText(hopper_) +
                    ") and (Descarga=" + Tools::LongText(number_) + ") ");
  return moment ? ToDate(Tools::ValueOrZero(*moment)) : OleDate();
}

}  // namespace ambrelio
