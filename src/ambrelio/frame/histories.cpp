#include "ambrelio/frame/histories.h"

#include <string>
#include <vector>

#include "ambrelio/data/sql_text.h"
#include "ambrelio/data/stretch.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/referents/catalogue.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::frame {

using kestro::Tools;

namespace {

using Conditions = std::vector<std::string>;

Conditions MomentConditions(const HistoryRange& range, const std::string& column) {
  Conditions conditions;
  if (IsDate(range.from)) {
    conditions.push_back("(" + column + " >= " + data::SqlDate(ToDate(range.from)) + ") ");
  }
  if (IsDate(range.to)) {
    conditions.push_back("(" + column + " <= " + data::SqlDate(ToDate(range.to).NextDay()) + ") ");
  }
  return conditions;
}

void LimitTo(Conditions& conditions, const std::string& column, int16_t number) {
  if (number > 0) conditions.push_back("(" + column + " = " + Tools::IntegerText(number) + ") ");
}

std::string Where(const Conditions& conditions) {
  return conditions.empty() ? "" : "where " + Tools::Join(conditions, "and ");
}

// The name of the client or carrier, Empty for code 0.
Variant ReferentName(Session& session, int16_t pfx, const Variant& code) {
  const int32_t number = ToLong(Tools::ValueOrZero(code));
  if (number <= 0) return {};
  const auto referent = referents::FindReferent(session, pfx, number);
  if (referent == nullptr) {
    const char* const kind = pfx == referents::kClients ? "client " : "carrier ";
    Raise(RuntimeError::kObjectNotSet, kind + Tools::LongText(number));
  }
  return referent->Nombre();
}

}  // namespace

Variant DischargeHistory(Session& session, const HistoryRange& range) {
  Conditions conditions = {"(Descargas.Deposito > 0) "};
  for (std::string& condition : MomentConditions(range, "MomentoHasta")) {
    conditions.push_back(std::move(condition));
  }
  LimitTo(conditions, "Descargas.Tolva", range.hopper);
  LimitTo(conditions, "Descargas.Deposito", range.tank);
  const auto rows = session.Database().OpenRecordset(
      "select MomentoHasta as mmto, Descargas.Descarga as cod, Descargas.Tolva as tva, "
      "Descargas.Deposito as dto, sum(PARCIALPESO) as pes "
      "from ExtPesada left join Descargas "
      "on (ExtPesada.tolva= Descargas.Tolva) and (ExtPesada.descarga= Descargas.Descarga) " +
      Where(conditions) +
      "group by MomentoHasta, Descargas.Descarga, Descargas.Tolva, Descargas.Deposito "
      "order by MomentoHasta ");
  Variant history;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Tools::Append(history,
                  Variant::Array{rows->Value("mmto"), rows->Value("cod"), rows->Value("tva"),
                                 rows->Value("dto"), rows->Value("pes"), Variant(), Variant()});
  }
  return history;
}

Variant ReadingHistory(Session& session, const HistoryRange& range) {
  Conditions conditions = MomentConditions(range, "Momento");
  LimitTo(conditions, "Deposito", range.tank);
  const auto rows = session.Database().OpenRecordset(
      "select Momento as mmto, Item as cod, Deposito as dto, Litros as can from Niveles " +
      Where(conditions) + "order by Momento ");
  Variant history;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Tools::Append(history,
                  Variant::Array{rows->Value("mmto"), rows->Value("cod"), Variant(),
                                 rows->Value("dto"), Variant(), rows->Value("can"), Variant()});
  }
  return history;
}

Variant EmptyingHistory(Session& session, const HistoryRange& range) {
  Conditions conditions = MomentConditions(range, "mmto");
  LimitTo(conditions, "Deposito", range.tank);
  const auto rows = session.Database().OpenRecordset(
      "select mmto, Vaciado as cod, Deposito as dto, Cantidad as can, Destino as dno, "
      "Lote as lot, Uso, Cliente as cli, Transportista as trp, DestinoVenta as dvt "
      "from Vaciados " +
      Where(conditions) + "order by mmto ");
  Variant history;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Variant client = rows->Value("cli");
    const Variant carrier = rows->Value("trp");
    Tools::Append(
        history,
        Variant::Array{rows->Value("mmto"), rows->Value("cod"), Variant(), rows->Value("dto"),
                       Variant(), rows->Value("can"), rows->Value("dno"), rows->Value("lot"),
                       rows->Value("Uso"), client,
                       ReferentName(session, referents::kClients, client), carrier,
                       ReferentName(session, referents::kCarriers, carrier), rows->Value("dvt")});
  }
  return history;
}

Variant SaleDestinations(Session& session) {
  const auto rows = session.Database().OpenRecordset(
      "select DestinoVenta from Vaciados where DestinoVenta>'' group by DestinoVenta ");
  Variant destinations;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Tools::Append(destinations, Tools::ValueAsText(rows->Value("DestinoVenta")));
  }
  return destinations;
}

void StartSeason(Session& session) {
  data::InOneStretch(session, [&session] {
    for (const char* statement :
         {"delete from split", "delete from splitDescar", "delete from Descargas",
          "delete from Vaciados", "delete from Niveles"}) {
      session.Database().Execute(statement);
    }
  });
}

}  // namespace ambrelio::frame
