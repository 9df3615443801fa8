#include "ambrelio/host/create_database.h"

#include <filesystem>
#include <initializer_list>

namespace ambrelio::host {
namespace {

using dao::FieldType;

struct Column {
  const char* name;
  FieldType type;
  int size = 0;
  const char* default_value = "";
  bool allow_zero_length = true;  // counts for Text only
};

struct Key {
  const char* name;
  std::initializer_list<const char*> columns;
  enum Kind : uint8_t { kPrimary, kUniqueIgnoringNulls, kPlain } kind = kPrimary;
};

void AddTable(dao::Database& database, const char* name, std::initializer_list<Column> columns,
              std::initializer_list<Key> keys) {
  const auto table = database.CreateTableDef(name);
  for (const Column& column : columns) {
    const auto field = table->CreateField(column.name, column.type, column.size);
    if (column.type == FieldType::kText) field->SetAllowZeroLength(column.allow_zero_length);
    field->SetDefaultValue(column.default_value);
    table->Fields().Append(field);
  }
  for (const Key& key : keys) {
    const auto index = table->CreateIndex(key.name);
    if (key.kind == Key::kPrimary) index->SetPrimary(true);
    if (key.kind == Key::kUniqueIgnoringNulls) {
      index->SetUnique(true);
      index->SetIgnoreNulls(true);
    }
    for (const char* column : key.columns) index->Fields().Append(index->CreateField(column));
    table->Indexes().Append(index);
  }
  database.TableDefs().Append(table);
}

void AddMovements(dao::Database& database) {
  AddTable(database, "Descargas",
           {{"Tolva", FieldType::kInteger},
            {"Descarga", FieldType::kLong},
            {"MomentoDesde", FieldType::kDate},
            {"MomentoHasta", FieldType::kDate},
            {"Molino", FieldType::kInteger, 0, "0"},
            {"Deposito", FieldType::kInteger},
            {"Fraccion", FieldType::kDouble}},
           {{"key", {"Tolva", "Descarga", "Deposito"}}, {"tank", {"Deposito"}, Key::kPlain}});
  AddTable(database, "Vaciados",
           {{"Deposito", FieldType::kInteger},
            {"Vaciado", FieldType::kLong},
            {"mmto", FieldType::kDate},
            {"Cantidad", FieldType::kDouble},
            {"Destino", FieldType::kInteger},
            {"Uso", FieldType::kInteger},
            {"Lote", FieldType::kText, 20},
            {"Cliente", FieldType::kLong},
            {"Transportista", FieldType::kLong},
            {"DestinoVenta", FieldType::kText, 50}},
           {{"key", {"Deposito", "Vaciado"}},
            {"destination", {"Destino"}, Key::kPlain},
            {"moment", {"mmto"}, Key::kPlain}});
  AddTable(database, "detVaciados",
           {{"Deposito", FieldType::kInteger},
            {"Vaciado", FieldType::kLong},
            {"Tolva", FieldType::kInteger},
            {"Descarga", FieldType::kLong},
            {"Molino", FieldType::kInteger, 0, "0"},
            {"Fraccion", FieldType::kDouble}},
           {{"key", {"Deposito", "Vaciado", "Tolva", "Descarga"}}});
  AddTable(database, "Niveles",
           {{"Deposito", FieldType::kInteger},
            {"Item", FieldType::kLong},
            {"Momento", FieldType::kDate},
            {"Nivel", FieldType::kLong},
            {"Litros", FieldType::kDouble},
            {"Densidad", FieldType::kDouble},
            {"Alerta", FieldType::kBoolean}},
           {{"key", {"Deposito", "Item"}}, {"moment", {"Momento"}, Key::kPlain}});
}

void AddTanksAndReferents(dao::Database& database) {
  AddTable(database, "Capacidad",
           {{"Deposito", FieldType::kInteger},
            {"Nivel", FieldType::kDouble},
            {"A0", FieldType::kDouble},
            {"A1", FieldType::kDouble},
            {"A2", FieldType::kDouble},
            {"A3", FieldType::kDouble}},
           {{"key", {"Deposito", "Nivel"}}});
  AddTable(database, "Depositos", {{"Codigo", FieldType::kLong}, {"Nombre", FieldType::kText, 40}},
           {{"key", {"Codigo"}}});
  for (const char* referents : {"Clientes", "Transportistas"}) {
    AddTable(database, referents,
             {{"Codigo", FieldType::kLong},
              {"Nombre", FieldType::kText, 50, "", false},
              {"NIF", FieldType::kText, 20},
              {"Info1", FieldType::kText, 50},
              {"Info2", FieldType::kText, 50},
              {"Info3", FieldType::kText, 50}},
             {{"key1", {"Codigo"}}, {"key2", {"Nombre"}, Key::kUniqueIgnoringNulls}});
  }
}

void AddShares(dao::Database& database) {
  for (const char* shares : {"splitDescar", "split"}) {
    AddTable(database, shares,
             {{"cooperativa", FieldType::kInteger},
              {"partida", FieldType::kLong},
              {"mediana", FieldType::kByte},
              {"codpro", FieldType::kInteger},
              {"tolva", FieldType::kInteger},
              {"descarga", FieldType::kLong},
              {"fraccion", FieldType::kDouble}},
             {{"key", {"cooperativa", "partida", "mediana", "codpro", "tolva", "descarga"}},
              {"discharge", {"tolva", "descarga"}, Key::kPlain}});
  }
}

// The tables that the host fills: the weighings, and the names behind their codes.
void AddHostTables(dao::Database& database) {
  AddTable(database, "PESADA",
           {{"COOPERATIVA", FieldType::kInteger},
            {"PARTIDA", FieldType::kLong},
            {"MEDIANA", FieldType::kByte},
            {"CODPRO", FieldType::kInteger},
            {"CODSOC", FieldType::kLong},
            {"CODMUN", FieldType::kInteger},
            {"PARAJE", FieldType::kText, 50},
            {"POLIGONO", FieldType::kInteger},
            {"PARCELA", FieldType::kLong},
            {"H_INICIO", FieldType::kDate},
            {"TOLVA", FieldType::kInteger},
            {"DESCARGA", FieldType::kLong},
            {"PARCIALPESO", FieldType::kDouble}},
           {{"key", {"COOPERATIVA", "PARTIDA", "MEDIANA", "CODPRO"}},
            {"discharge", {"TOLVA", "DESCARGA"}, Key::kPlain}});
  AddTable(database, "SOCIO", {{"CODSOC", FieldType::kLong}, {"NOMSOC", FieldType::kText, 60}},
           {{"key", {"CODSOC"}}});
  AddTable(database, "PRODUCTO",
           {{"CODPRO", FieldType::kInteger}, {"NOMPRO", FieldType::kText, 60}},
           {{"key", {"CODPRO"}}});
  AddTable(database, "MUNICIPIO",
           {{"CODMUN", FieldType::kInteger}, {"NOMMUN", FieldType::kText, 60}},
           {{"key", {"CODMUN"}}});
}

}  // namespace

void CreateMillDatabase(dao::DBEngine& engine, const std::string& path,
                        const std::string& password) {
  dao::Workspace& workspace = engine.DefaultWorkspace();
  const auto database = workspace.CreateDatabase(path, ";pwd=" + password);
  try {
    workspace.BeginTrans();  // one synchronisation with the disk instead of one for each table
    AddHostTables(*database);
    AddMovements(*database);
    AddTanksAndReferents(*database);
    AddShares(*database);
    workspace.CommitTrans();
    database->Close();
  } catch (...) {
    // Half a database is worse than none.
    database->Close();
    std::filesystem::remove(path);
    throw;
  }
}

}  // namespace ambrelio::host
