#include "ambrelio/engine/explain.h"

#include <gtest/gtest.h>

#include "ambrelio/dao/trace.h"
#include "ambrelio/engine/engine.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

using test::ErrorOf;

class Explaining : public ::testing::Test {
 protected:
  std::shared_ptr<dao::Database> Made(dao::DBEngine& engine) const {
    auto database = engine.DefaultWorkspace().CreateDatabase(folder_.File("oliva.mdb"), "");
    database->Execute("create table A (k long primary key)");
    return database;
  }

  test::TempFolder folder_;
};

TEST_F(Explaining, LooksIntoTheEmbeddedEngine) {
  const auto engine = Create();
  EXPECT_EQ(
      Explain(*Made(*engine), "select k from A where k = 5").statements.front().sql,
      "SELECT t1.\"rowid\", t1.\"k\" FROM \"A\" AS t1 WHERE (t1.\"k\" = ?1) ORDER BY t1.\"k\"");
}

TEST_F(Explaining, IsNotSupportedByAnotherEngine) {
  const auto traced = dao::Traced(Create(), [](const dao::TraceEntry&) {});
  const auto database = Made(*traced);
  EXPECT_EQ(ErrorOf([&] { Explain(*database, "select k from A"); }), 3251);
}

TEST_F(Explaining, NeedsAnOpenDatabase) {
  const auto engine = Create();
  const auto database = Made(*engine);
  database->Close();
  EXPECT_EQ(ErrorOf([&] { Explain(*database, "select k from A"); }), 3420);
}

}  // namespace
}  // namespace ambrelio::engine
