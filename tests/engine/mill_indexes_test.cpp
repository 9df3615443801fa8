#include "ambrelio/engine/mill_indexes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class MillIndexesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto engine = Create();
    host::CreateMillDatabase(*engine, path_, "");
    // The opening makes them.
    const auto database = engine->DefaultWorkspace().OpenDatabase(path_, false, false, ";pwd=");
    for (const embedded::KeptIndex& index : MillIndexes()) {
      const auto table = database->TableDefs().Item(index.table);
      for (const std::string& column : index.columns) {
        EXPECT_NO_THROW(table->Fields().Item(column)) << index.table << "." << column;
      }
    }
    database->Close();
    storage_ = embedded::Storage::Open(path_, embedded::Storage::Access::kShared);
  }

  std::string StepsOf(const std::string& sql) {
    embedded::StorageStatement plan(storage_->raw(), "explain query plan " + sql);
    std::string steps;
    while (plan.Step()) steps += std::string(plan.Text(3)) + "\n";
    return steps;
  }

  test::TempFolder folder_;
  std::string path_ = folder_.File("oliva.sqlite");
  std::unique_ptr<embedded::Storage> storage_;
};

TEST_F(MillIndexesTest, AreOnColumnsThatAMillHas) {
  embedded::StorageStatement count(storage_->raw(),
                                   "select count(*) from sqlite_schema where name like 'kept.%'");
  ASSERT_TRUE(count.Step());
  EXPECT_GT(count.Integer(0), 0);
}

TEST_F(MillIndexesTest, GiveTheMovementsOfATankInTheirOrder) {
  for (const char* sql :
       {"select 1 from Descargas where Deposito = 3 order by MomentoHasta, Tolva, Descarga",
        "select 1 from Niveles where Deposito = 3 order by Momento, Item",
        "select 1 from Vaciados where Deposito = 3 order by mmto, Vaciado",
        "select 1 from Vaciados where Destino = 3 order by mmto, Deposito, Vaciado"}) {
    EXPECT_THAT(StepsOf(sql), HasSubstr("SEARCH")) << sql;
    EXPECT_THAT(StepsOf(sql), Not(HasSubstr("TEMP B-TREE"))) << sql;
  }
}

TEST_F(MillIndexesTest, GiveTheEventsOfADayInTheirOrder) {
  for (const char* sql :
       {"select 1 from Niveles where Momento >= 5 and Momento <= 6 order by Momento, Deposito, "
        "Item",
        "select 1 from Vaciados where mmto >= 5 and mmto <= 6 order by mmto, Deposito, Vaciado"}) {
    EXPECT_THAT(StepsOf(sql), HasSubstr("SEARCH")) << sql;
    EXPECT_THAT(StepsOf(sql), Not(HasSubstr("TEMP B-TREE"))) << sql;
  }
}

TEST_F(MillIndexesTest, FindDustWithoutReadingTheSeason) {
  EXPECT_THAT(StepsOf("update Descargas set Fraccion = 0 where Fraccion < 0.0001"),
              HasSubstr("SEARCH"));
  EXPECT_THAT(StepsOf("delete from splitDescar where fraccion >= 0.999 or fraccion < 0.001"),
              HasSubstr("kept.splitDescar.fraccion.some"));
}

}  // namespace
}  // namespace ambrelio::engine
