#include "ambrelio/frame/schema_steps.h"

#include <array>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/data/sql_text.h"
#include "ambrelio/frame/connection.h"
#include "ambrelio/value/ascii.h"

namespace ambrelio::frame {

using dao::FieldType;
using dao::TableDef;

namespace {

bool TableExists(dao::Database& database, std::string_view name) {
  auto& tables = database.TableDefs();
  for (int i = 0; i < tables.Count(); ++i) {
    if (EqualsIgnoringAsciiCase(tables.Item(i)->Name(), name)) return true;
  }
  return false;
}

// Ordinal position of the field, -1 when the table has none of that name.
int16_t FieldPosition(TableDef& table, std::string_view name) {
  auto& fields = table.Fields();
  for (int i = 0; i < fields.Count(); ++i) {
    const auto field = fields.Item(i);
    if (EqualsIgnoringAsciiCase(field->Name(), name)) return field->OrdinalPosition();
  }
  return -1;
}

std::shared_ptr<TableDef> Table(dao::Database& database, std::string_view name) {
  return database.TableDefs().Item(name);
}

void AppendField(TableDef& table, const std::string& name, FieldType type, int32_t size = 0) {
  table.Fields().Append(table.CreateField(name, type, size));
}

void AppendFieldAt(TableDef& table, const std::string& name, FieldType type, int16_t position) {
  const auto field = table.CreateField(name, type);
  field->SetOrdinalPosition(position);
  table.Fields().Append(field);
}

std::shared_ptr<dao::Index> IndexOver(TableDef& table, const std::string& name,
                                      std::initializer_list<const char*> fields) {
  auto index = table.CreateIndex(name);
  for (const char* field : fields) index->Fields().Append(index->CreateField(field));
  return index;
}

void DefineSplitFields(TableDef& table) {
  AppendField(table, "cooperativa", FieldType::kInteger);
  AppendField(table, "partida", FieldType::kLong);
  AppendField(table, "mediana", FieldType::kByte);
  AppendField(table, "codpro", FieldType::kInteger);
  AppendField(table, "tolva", FieldType::kInteger);
  AppendField(table, "descarga", FieldType::kLong);
  AppendField(table, "fraccion", FieldType::kDouble);
  const auto key =
      IndexOver(table, "key", {"cooperativa", "partida", "mediana", "codpro", "tolva", "descarga"});
  key->SetUnique(true);
  key->SetPrimary(true);
  table.Indexes().Append(key);
}

// Every weighing, once for each of its shares, or once whole when it has none.
std::string ExtPesadaSql() {
  return "select " + data::PesadaKeyColumns() +
         "PESADA.CODSOC as codsoc, "
         "PESADA.CODMUN as codmun, "
         "PESADA.PARAJE as paraje, "
         "PESADA.POLIGONO as poligono, "
         "PESADA.PARCELA as parcela, "
         "PESADA.H_INICIO as h_inicio, "
         "IIf(IsNull(splitDescar.tolva), PESADA.tolva, splitDescar.tolva) as tolva, "
         "IIf(IsNull(splitDescar.descarga), PESADA.descarga, splitDescar.descarga) as descarga, "
         "PESADA.PARCIALPESO * IIf(IsNull(fraccion), 1, fraccion) as parcialpeso "
         "from " +
         data::PesadaSplitJoin();
}

void DefineReferentFields(TableDef& table) {
  AppendField(table, "Codigo", FieldType::kLong);
  AppendField(table, "Nombre", FieldType::kText, 50);
  AppendField(table, "NIF", FieldType::kText, 20);
  AppendField(table, "Info1", FieldType::kText, 50);
  AppendField(table, "Info2", FieldType::kText, 50);
  AppendField(table, "Info3", FieldType::kText, 50);
  const auto by_code = IndexOver(table, "key1", {"Codigo"});
  by_code->SetUnique(true);
  by_code->SetPrimary(true);
  table.Indexes().Append(by_code);
  const auto by_name = IndexOver(table, "key2", {"Nombre"});
  by_name->SetUnique(true);
  by_name->SetIgnoreNulls(true);
  table.Indexes().Append(by_name);
  for (int i = 0; i < table.Fields().Count(); ++i) {
    const auto field = table.Fields().Item(i);
    if (field->Name() != "Codigo" && field->Name() != "Nombre") field->SetAllowZeroLength(true);
  }
}

}  // namespace

void EnsureSplitTables(dao::Database& database) {
  if (TableExists(database, "splitDescar")) return;
  for (const char* name : {"splitDescar", "split"}) {
    const auto table = database.CreateTableDef(name);
    DefineSplitFields(*table);
    database.TableDefs().Append(table);
  }
}

void EnsureExtPesada(dao::Database& database) {
  auto& queries = database.QueryDefs();
  for (int i = 0; i < queries.Count(); ++i) {
    const auto query = queries.Item(i);
    if (query->Name() == "ExtPesada") {
      query->SetSql(ExtPesadaSql());
      return;
    }
  }
  database.CreateQueryDef("ExtPesada", ExtPesadaSql());
}

void UpgradeDischargeKey(dao::Database& database) {
  const auto discharges = Table(database, "Descargas");
  const auto old_key = discharges->Indexes().Item("Key");
  for (int i = 0; i < old_key->Fields().Count(); ++i) {
    if (old_key->Fields().Item(i)->Name() == "Deposito") return;
  }
  database.Execute("update Descargas set Deposito=0 where isnull(Deposito)");
  discharges->Indexes().Delete("key");
  const auto key = IndexOver(*discharges, "key", {"Tolva", "Descarga", "Deposito"});
  key->SetPrimary(true);
  discharges->Indexes().Append(key);
  AppendField(*Table(database, "Vaciados"), "Destino", FieldType::kInteger);
}

void EnsureTankNames(dao::Database& database) {
  if (TableExists(database, "Depositos")) return;
  const auto table = database.CreateTableDef("Depositos");
  AppendField(*table, "Codigo", FieldType::kLong);
  const auto name = table->CreateField("Nombre", FieldType::kText, 40);
  name->SetAllowZeroLength(true);
  table->Fields().Append(name);
  const auto key = IndexOver(*table, "key", {"Codigo"});
  key->SetPrimary(true);
  table->Indexes().Append(key);
  database.TableDefs().Append(table);
}

void EnsureMillLine(dao::Database& database) {
  const auto discharges = Table(database, "Descargas");
  if (FieldPosition(*discharges, "Molino") != -1) return;
  const int16_t position = FieldPosition(*discharges, "MomentoDesde");
  if (position == -1) return;
  AppendFieldAt(*discharges, "Molino", FieldType::kInteger, position);
  database.Execute("update Descargas set Molino=1 where Deposito>0");
  database.Execute("update Descargas set Molino=0 where Deposito=0");

  const auto details = Table(database, "detVaciados");
  const int16_t detail_position = FieldPosition(*details, "Fraccion");
  if (detail_position == -1) return;
  AppendFieldAt(*details, "Molino", FieldType::kInteger, detail_position);
  database.Execute("update detVaciados set Molino=1 ");
}

void EnsureLevelAlert(dao::Database& database) {
  const auto readings = Table(database, "Niveles");
  if (FieldPosition(*readings, "Alerta") != -1) return;
  AppendField(*readings, "Alerta", FieldType::kBoolean);
  database.Execute("update Niveles set Alerta=False ");
}

void EnsureSaleColumns(dao::Database& database) {
  if (TableExists(database, "Depositos")) return;
  for (const char* name : {"Clientes", "Transportistas"}) {
    const auto table = database.CreateTableDef(name);
    DefineReferentFields(*table);
    database.TableDefs().Append(table);
  }
  const auto emptyings = Table(database, "Vaciados");
  AppendField(*emptyings, "Lote", FieldType::kText, 20);
  AppendField(*emptyings, "Uso", FieldType::kInteger);
  AppendField(*emptyings, "Cliente", FieldType::kLong);
  AppendField(*emptyings, "Transportista", FieldType::kLong);
  AppendField(*emptyings, "DestinoVenta", FieldType::kText, 50);
}

void EnsureSchema(Session& session) {
  constexpr std::array kSteps = {EnsureSplitTables, EnsureExtPesada, UpgradeDischargeKey,
                                 EnsureTankNames,   EnsureMillLine,  EnsureLevelAlert,
                                 EnsureSaleColumns};
  for (const auto step : kSteps) step(session.Database());
}

}  // namespace ambrelio::frame
