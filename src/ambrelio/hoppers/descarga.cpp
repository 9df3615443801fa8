#include "ambrelio/hoppers/descarga.h"

#include "ambrelio/composition/composition.h"
#include "ambrelio/data/glob_traza.h"
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
  auto rows = session_.Database().OpenRecordset(
      "select " + column + " from Descargas where (Tolva=" + Tools::IntegerText(hopper_) +
      ") and (Descarga=" + Tools::LongText(number_) + ") ");
  if (rows->AtEnd()) return {};
  return ToDate(Tools::ValueOrZero(rows->Value(column)));
}

}  // namespace ambrelio
