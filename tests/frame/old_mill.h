// Databases as mills had them before the library knew mill lines, level alerts, tank names and
// shares: what the schema steps have to bring up to date.
#pragma once

#include <string>
#include <vector>

#include "support/layout.h"
#include "support/mill.h"

namespace ambrelio::test {

class OldMillTest : public MillTest {
 protected:
  using Type = dao::FieldType;
  struct Column {
    const char* name;
    Type type;
    int size = 0;
  };

  // A session on an empty database; the test makes the tables and calls Open.
  void SetUp() override {
    session.UseEngine(std::make_shared<ProbeEngine>(MakeMillEngine(), probe));
    session.SetDatabase(session.Workspace().CreateDatabase(folder.File("oliva.mdb"), ";pwd="));
  }

  // Lets the library open the database, which runs the schema steps.
  void Open() {
    session.CloseDatabase();
    root.Constructor(folder.path(), false);
  }

  void AddTable(const std::string& name, const std::vector<Column>& columns,
                const std::vector<const char*>& key = {}, const std::string& key_name = "Key") {
    const auto table = session.Database().CreateTableDef(name);
    for (const Column& column : columns) {
      table->Fields().Append(table->CreateField(column.name, column.type, column.size));
    }
    if (!key.empty()) {
      const auto index = table->CreateIndex(key_name);
      for (const char* column : key) index->Fields().Append(index->CreateField(column));
      index->SetPrimary(true);
      table->Indexes().Append(index);
    }
    session.Database().TableDefs().Append(table);
  }

  void AddOldDischarges() {
    AddTable("Descargas",
             {{"Tolva", Type::kInteger},
              {"Descarga", Type::kLong},
              {"MomentoDesde", Type::kDate},
              {"MomentoHasta", Type::kDate},
              {"Deposito", Type::kInteger},
              {"Fraccion", Type::kDouble}},
             {"Tolva", "Descarga"});
  }
  void AddOldEmptyings() {
    AddTable("Vaciados", {{"Deposito", Type::kInteger},
                          {"Vaciado", Type::kLong},
                          {"mmto", Type::kDate},
                          {"Cantidad", Type::kDouble}});
  }
  void AddOldDetails() {
    AddTable("detVaciados", {{"Deposito", Type::kInteger},
                             {"Vaciado", Type::kLong},
                             {"Tolva", Type::kInteger},
                             {"Descarga", Type::kLong},
                             {"Fraccion", Type::kDouble}});
  }
  void AddOldReadings() {
    AddTable("Niveles", {{"Deposito", Type::kInteger},
                         {"Item", Type::kLong},
                         {"Momento", Type::kDate},
                         {"Nivel", Type::kLong},
                         {"Litros", Type::kDouble}});
  }
  // The whole of an old mill, without PESADA: a stored query needs no tables until it is opened.
  void AddOldTables() {
    AddOldDischarges();
    AddOldEmptyings();
    AddOldDetails();
    AddOldReadings();
  }

  bool HasTable(const std::string& name) {
    return ErrorOf([&] { session.Database().TableDefs().Item(name); }) == 0;
  }
  std::vector<std::string> Columns(const std::string& table) {
    return test::Columns(session.Database(), table);
  }
  std::string IndexText(const std::string& table, const std::string& name) {
    return test::IndexText(session.Database(), table, name);
  }
};

}  // namespace ambrelio::test
