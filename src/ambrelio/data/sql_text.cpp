#include "ambrelio/data/sql_text.h"

#include <cmath>

#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::data {

using kestro::Tools;

namespace {

// The sign is settled before rounding: a small negative number keeps its minus in front of zeros.
std::string SqlNumber(double value, int decimals) {
  if (value == 0) return "0";
  return (value < 0 ? "-" : "") + FixedText(std::abs(value), decimals);
}

}  // namespace

std::string SqlDate(OleDate moment) {
  const CivilTime civil = moment.Civil();
  const auto number = [](int part) { return Tools::LongText(part); };
  return "#" + number(civil.month) + "/" + number(civil.day) + "/" + number(civil.year) + " " +
         number(civil.hour) + ":" + number(civil.minute) + ":" + number(civil.second) + "#";
}

std::string SqlNum8(double value) { return SqlNumber(value, 8); }

std::string SqlNum2(double value) { return SqlNumber(value, 2); }

std::string SqlText(std::string_view text) {
  if (text.empty()) return "Null";
  const std::string clean = ReplaceApostrophes(text);
  const size_t first = clean.find_first_not_of(' ');
  if (first == std::string::npos) return "''";
  return "'" + clean.substr(first, clean.find_last_not_of(' ') - first + 1) + "'";
}

std::string ReplaceApostrophes(std::string_view text) {
  return Tools::Replace(text, "'", "\u00B4");
}

std::string PesadaKeyColumns() {
  return "PESADA.COOPERATIVA AS cooperativa, "
         "PESADA.PARTIDA as partida, "
         "PESADA.MEDIANA as mediana, "
         "PESADA.CODPRO as codpro, ";
}

std::string PesadaSplitJoin() {
  return "PESADA left join splitDescar "
         "on "
         "(PESADA.COOPERATIVA = splitDescar.cooperativa) "
         "and "
         "(PESADA.PARTIDA = splitDescar.partida) "
         "and "
         "(PESADA.MEDIANA = splitDescar.mediana) "
         "and "
         "(PESADA.CODPRO = splitDescar.codpro) ";
}

std::string WhereHopperDischarge(int16_t hopper, int32_t discharge) {
  return "(TOLVA=" + Tools::IntegerText(hopper) +
         ") "
         "and "
         "(DESCARGA=" +
         Tools::LongText(discharge) + ") ";
}

}  // namespace ambrelio::data
