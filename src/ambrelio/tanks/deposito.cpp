#include "ambrelio/tanks/deposito.h"

#include <array>

#include "ambrelio/composition/composition.h"
#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/data/stretch.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/tanks/history.h"
#include "ambrelio/tanks/lists.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using kestro::Tools;

// The coefficients of a band, the constant term first.
constexpr std::array<const char*, 4> kCoefficients = {"A0", "A1", "A2", "A3"};
// A band's limit counts in units of ten levels.
constexpr double kLevelsPerUnit = 10;

// Horner's rule, from the highest coefficient down.
template <size_t N>
double Polynomial(const std::array<double, N>& coefficients, double x) {
  double result = 0;
  for (size_t k = N; k-- > 0;) {
    result = Checked(result + coefficients[k]);
    if (k > 0) result = Checked(result * x);
  }
  return result;
}

std::string BandInsert(const std::string& insert, const Variant& band) {
  std::string sql = Tools::Replace(insert, "@N", ToText(tanks::Element(band, 0)));
  const Variant::Array& coefficients = band.array();
  for (size_t j = 1; j <= kCoefficients.size(); ++j) {
    const double coefficient = j < coefficients.size() ? ToDouble(coefficients[j]) : 0;
    sql = Tools::Replace(sql, "@" + std::to_string(j), data::SqlNum8(coefficient));
  }
  return sql;
}

}  // namespace

std::string Deposito::Nombre() {
  const auto name =
      data::FirstValue(session_, "select Nombre from Depositos where Codigo=" + TankText());
  return name ? Tools::ValueAsText(*name) : "";
}

void Deposito::SetNombre(const std::string& name) {
  if (name.empty()) {
    session_.Database().Execute("delete from Depositos where Codigo=" + TankText());
    return;
  }
  const std::string text = "'" + data::ReplaceApostrophes(name) + "'";
  if (data::Execute(session_,
                    "update Depositos set Nombre=" + text + " where Codigo=" + TankText()) == 0) {
    session_.Database().Execute("insert into Depositos (Codigo, Nombre) values (" + TankText() +
                                ", " + text + ") ");
  }
}

Variant Deposito::Formula() {
  Variant bands;
  const auto rows = session_.Database().OpenRecordset(
      "select * from Capacidad where (Deposito=" + TankText() + ") order by nivel ");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Variant band;
    Tools::Append(band, Tools::ValueOrZero(rows->Value("Nivel")));
    for (const char* coefficient : kCoefficients) {
      Tools::Append(band, Tools::ValueOrZero(rows->Value(coefficient)));
    }
    Tools::Append(bands, std::move(band));
  }
  return bands;
}

void Deposito::SetFormula(const Variant& rows) {
  data::InOneStretch(session_, [&] {
    session_.Database().Execute("delete from Capacidad where Deposito=" + TankText());
    if (!rows.is_array()) return;
    tanks::RequireCountable(rows.array());
    const std::string insert = "insert into Capacidad (Deposito, Nivel, A0, A1, A2, A3) values (" +
                               TankText() + ", @N, @1, @2, @3, @4) ";
    for (const Variant& band : rows.array()) {
      if (band.is_array()) session_.Database().Execute(BandInsert(insert, band));
    }
  });
}

double Deposito::Capacidad(int32_t h) {
  const auto bands = session_.Database().OpenRecordset(
      "select * from Capacidad where (Deposito=" + TankText() +
      ") and (10*nivel>=" + Tools::LongText(h) + ") order by nivel ");
  if (bands->AtEnd()) return 0;
  std::array<double, kCoefficients.size()> coefficients{};
  for (size_t k = 0; k < coefficients.size(); ++k) {
    coefficients[k] = ToDouble(Tools::ValueOrZero(bands->Value(kCoefficients[k])));
  }
  return Polynomial(coefficients, h / kLevelsPerUnit);
}

Variant Deposito::Historial() { return tanks::ReadHistory(session_, tank_); }

int16_t Deposito::UltimoMovimiento(Variant& hay, Variant& niv, OleDate& mmto) {
  const State state = EstadoActual();
  hay = state.litres > 0 ? Variant(state.litres) : Variant::Null();
  niv = state.level >= 1 ? Variant(state.level) : Variant::Null();
  if (state.code != 0) mmto = state.moment;
  return state.code;
}

Variant Deposito::Composicion(int16_t clase) {
  const State state = EstadoActual();
  if (state.code == 0) return {};
  return composition::Weighted(session_, clase, state.litres, KilosActual(), "Descargas ",
                               "(Deposito=" + TankText() + ") and (Fraccion>0)");
}

std::string Deposito::TankText() const { return Tools::IntegerText(tank_); }

}  // namespace ambrelio
