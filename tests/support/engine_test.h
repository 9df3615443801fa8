// A test with an embedded engine and a folder for its databases.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "support/error_of.h"
#include "support/temp_folder.h"
#include "support/test_files.h"

namespace ambrelio::test {

class EngineTest : public ::testing::Test {
 protected:
  using DatabasePtr = std::shared_ptr<dao::Database>;

  std::string Path(const std::string& name = "oliva.mdb") const { return folder_.File(name); }
  dao::Workspace& workspace() { return engine_->DefaultWorkspace(); }

  DatabasePtr Create(const std::string& name = "oliva.mdb", const std::string& connect = "") {
    return workspace().CreateDatabase(Path(name), connect);
  }
  DatabasePtr Open(const std::string& name = "oliva.mdb", const std::string& connect = ";pwd=") {
    return workspace().OpenDatabase(Path(name), false, false, connect);
  }

  // A table with the Long fields `Numero`, its primary key, and `Litros`.
  static void AddTanks(dao::Database& database, const std::string& name = "Tanques") {
    const auto table = database.CreateTableDef(name);
    table->Fields().Append(table->CreateField("Numero", dao::FieldType::kLong));
    table->Fields().Append(table->CreateField("Litros", dao::FieldType::kLong));
    const auto key = table->CreateIndex("key");
    key->Fields().Append(key->CreateField("Numero"));
    key->SetPrimary(true);
    table->Indexes().Append(key);
    database.TableDefs().Append(table);
  }
  static void AddTank(dao::Database& database, int number) {
    database.Execute("insert into Tanques values (" + std::to_string(number) + ", 0)",
                     dao::kFailOnError);
  }
  static int32_t CountRows(dao::Database& database, const std::string& table = "Tanques") {
    return database.OpenRecordset("select count(*) from [" + table + "]")->Value(0).as<int32_t>();
  }

  // An engine of its own: to the file it is what another process is.
  static std::shared_ptr<dao::DBEngine> OtherEngine(
      embedded::NewFiles new_files = FormOfTestFiles()) {
    return embedded::CreateEngine(embedded::PlanOptions::FromEnvironment(), {}, new_files);
  }

  TempFolder folder_;
  std::shared_ptr<dao::DBEngine> engine_ = OtherEngine();
};

}  // namespace ambrelio::test
