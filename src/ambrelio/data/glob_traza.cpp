#include "ambrelio/data/glob_traza.h"

#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::data {

using kestro::Tools;

namespace {

// The row with the highest number; of several, the last in key order.
std::optional<Discharge> LastDischarge(Session& session, int16_t hopper) {
  auto rows = session.Database().OpenRecordset(
      "select * from Descargas where (Tolva=" + Tools::LongText(hopper) + ") order by Descarga ");
  if (rows->AtEnd()) return std::nullopt;
  rows->MoveLast();
  return Discharge{.number = ToLong(Tools::ValueOrZero(rows->Value("Descarga"))),
                   .start = ToDate(rows->Value("MomentoDesde")),
                   .tank = Tools::ValueAsInteger(rows->Value("Deposito"))};
}

std::string NameOf(Session& session, const std::string& select, int32_t code) {
  const auto name = FirstValue(session, select + Tools::LongText(code));
  return name ? Tools::ValueAsText(*name) : "";
}

}  // namespace

bool InsertFirstDischarge(Session& session, int16_t hopper) {
  return Execute(session,
                 "insert into Descargas "
                 "(Tolva, Descarga, MomentoDesde, MomentoHasta, Deposito, Fraccion) "
                 "values (" +
                     Tools::IntegerText(hopper) + ", 1, " + SqlDate(session.Now()) +
                     ", Null, 0, Null) ") > 0;
}

std::optional<Discharge> CurrentDischarge(Session& session, int16_t hopper) {
  std::optional<Discharge> current = LastDischarge(session, hopper);
  if (!current && InsertFirstDischarge(session, hopper)) current = LastDischarge(session, hopper);
  if (current && current->number < 1) return std::nullopt;
  return current;
}

double DischargeWeight(Session& session, int16_t hopper, int32_t discharge) {
  const Variant kilos = Aggregate(session, "select sum(PARCIALPESO) as pes from ExtPesada where " +
                                               WhereHopperDischarge(hopper, discharge));
  return ToDouble(Tools::ValueOrZero(kilos));
}

std::string FillSplitPlaceholders(std::string sql, double share, int16_t origin,
                                  int32_t origin_discharge, int16_t target,
                                  int32_t target_discharge) {
  const auto fill = [&sql](const char* placeholder, const std::string& text) {
    sql = Tools::Replace(sql, placeholder, text);
  };
  // Everywhere else discharge numbers have 32 bits; hosts know this limit of the re-assignment.
  const auto discharge_text = [](int32_t number) {
    return Tools::IntegerText(RoundToInteger(number));
  };
  fill("#QTO", SqlNum8(share));
  fill("#ORG", Tools::IntegerText(origin));
  fill("#DGA1", discharge_text(origin_discharge));
  fill("#DNO", Tools::IntegerText(target));
  fill("#DGA2", discharge_text(target_discharge));
  return sql;
}

std::string MemberName(Session& session, int32_t code) {
  return NameOf(session, "select NOMSOC from SOCIO where CODSOC=", code);
}

std::string ProductName(Session& session, int32_t code) {
  return NameOf(session, "select NOMPRO from PRODUCTO where CODPRO=", code);
}

std::string MunicipalityName(Session& session, int32_t code) {
  return NameOf(session, "select NOMMUN from MUNICIPIO where CODMUN=", code);
}

}  // namespace ambrelio::data
