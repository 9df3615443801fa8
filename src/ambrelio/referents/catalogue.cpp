#include "ambrelio/referents/catalogue.h"

#include "ambrelio/data/queries.h"
#include "ambrelio/data/sql_text.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/value/arithmetic.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::referents {

using data::SqlText;
using kestro::Tools;

namespace {

constexpr int16_t kByName = 1;

std::string CatalogueName(int16_t pfx) {
  switch (pfx) {
    case kClients:
      return "Clientes";
    case kCarriers:
      return "Transportistas";
    default:
      return "";
  }
}

std::string ForCatalogue(int16_t pfx, const std::string& sql) {
  return Tools::Replace(sql, "Tabla", CatalogueName(pfx));
}

std::string InsertSql(const Referente& referent) {
  return "insert into Tabla (Codigo, Nombre, NIF, Info1, Info2, Info3) values (" +
         Tools::LongText(referent.Codigo()) + ", " + SqlText(referent.Nombre()) + ", " +
         SqlText(referent.NIF()) + ", " + SqlText(referent.Info(1)) + ", " +
         SqlText(referent.Info(2)) + ", " + SqlText(referent.Info(3)) + ") ";
}

std::string UpdateSql(const Referente& referent) {
  return "update Tabla set Nombre= " + SqlText(referent.Nombre()) +
         ", NIF= " + SqlText(referent.NIF()) + ", Info1= " + SqlText(referent.Info(1)) +
         ", Info2= " + SqlText(referent.Info(2)) + ", Info3= " + SqlText(referent.Info(3)) +
         " where Codigo=" + Tools::LongText(referent.loaded_code()) + " ";
}

}  // namespace

std::shared_ptr<Referente> NewReferent(Session& session, int16_t pfx) {
  const Variant last = data::Aggregate(session, ForCatalogue(pfx, "select max(Codigo) from Tabla"));
  auto referent = std::make_shared<Referente>();
  referent->SetCodigo(Successor(ToLong(Tools::ValueOrZero(last))));
  return referent;
}

std::shared_ptr<Referente> FindReferent(Session& session, int16_t pfx, int32_t code) {
  const auto record = session.Database().OpenRecordset(
      ForCatalogue(pfx, "select * from Tabla where Codigo=" + Tools::LongText(code)));
  if (record->AtEnd()) return nullptr;
  auto referent = std::make_shared<Referente>();
  referent->Load(*record);
  return referent;
}

bool SaveReferent(Session& session, int16_t pfx, const Referente& referent) {
  if (!referent.DatosValidos()) return false;
  const std::string sql = referent.EsNuevo() ? InsertSql(referent) : UpdateSql(referent);
  dao::Database& database = session.Database();
  // A code or name that is taken must reach the host, and not be skipped.
  database.Execute(ForCatalogue(pfx, sql), dao::kFailOnError);
  return database.RecordsAffected() > 0;
}

bool DeleteReferent(Session& session, int16_t pfx, int32_t code) {
  return data::Execute(session, ForCatalogue(pfx, "delete from Tabla where Codigo=" +
                                                      Tools::LongText(code))) > 0;
}

Variant ListReferents(Session& session, int16_t pfx, int16_t order) {
  const std::string sql = Tools::Replace("select Codigo, Nombre, NIF from Tabla order by @ord",
                                         "@ord", order == kByName ? "Nombre" : "Codigo");
  const auto rows = session.Database().OpenRecordset(ForCatalogue(pfx, sql));
  Variant list;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    Tools::Append(list, Variant::Array{Tools::ValueOrZero(rows->Value("Codigo")),
                                       Tools::ValueAsText(rows->Value("Nombre")),
                                       Tools::ValueAsText(rows->Value("NIF"))});
  }
  return list;
}

}  // namespace ambrelio::referents
