// The engine that a session uses, where there is DAO and where there is none.
#include <fstream>

#include "ambrelio/engine/engine.h"
#include "engine/dao_com/dao_com_test.h"
#include "support/environment.h"

namespace ambrelio::dao_com {
namespace {

using test::ErrorOf;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST(EngineWithoutDao, OpensFilesOfBothKindsItself) {
  const test::TempFolder folder;
  const auto engine = engine::Create();
  dao::Workspace& workspace = engine->DefaultWorkspace();
  for (const char* name : {"jet.mdb", "own.sqlite"}) {
    workspace.CreateDatabase(folder.File(name), "")->Close();
    EXPECT_EQ(ErrorOf([&] { workspace.OpenDatabase(folder.File(name), false, false, ""); }), 0);
  }
}

TEST(EngineWithoutDao, CanBeToldToUseItAllTheSame) {
  const test::TempFolder folder;
  const std::string path = folder.File("jet.mdb");
  engine::Create()->DefaultWorkspace().CreateDatabase(path, "")->Close();
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_JET", "dao");
  const auto engine = engine::Create();
  EXPECT_EQ(ErrorOf([&] { engine->DefaultWorkspace().OpenDatabase(path, false, false, ""); }), 429);
}

TEST(EngineChoice, RefusesWhatIsNoChoice) {
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_JET", "jet");
  EXPECT_EQ(ErrorOf([] { engine::Create(); }), 5);
}

class EngineWithDao : public DaoComTest {
 protected:
  void SetUp() override {
    Create()->Close();  // a file of Jet, oliva.mdb
    chosen_->DefaultWorkspace().CreateDatabase(Path("own.sqlite"), "")->Close();
  }
  DatabasePtr OpenChosen(const std::string& name) {
    return chosen_->DefaultWorkspace().OpenDatabase(Path(name), false, false, ";pwd=");
  }

  std::shared_ptr<dao::DBEngine> chosen_ = engine::Create();
};

TEST_F(EngineWithDao, LeavesFilesOfJetToIt) {
  EXPECT_THAT(Asked([&] { OpenChosen("oliva.mdb"); }),
              Contains(StartsWith("DAO.Workspace.OpenDatabase")));
}

TEST_F(EngineWithDao, KeepsItsOwnFilesAndThoseItMakes) {
  EXPECT_THAT(Asked([&] {
                OpenChosen("own.sqlite");
                chosen_->DefaultWorkspace().CreateDatabase(Path("new.sqlite"), "");
              }),
              IsEmpty());
}

TEST_F(EngineWithDao, CanBeToldToLeaveItAlone) {
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_JET", "own");
  const auto own = engine::Create();
  own->DefaultWorkspace().CreateDatabase(Path("new.mdb"), "")->Close();
  EXPECT_THAT(
      Asked([&] { own->DefaultWorkspace().OpenDatabase(Path("new.mdb"), false, false, ""); }),
      IsEmpty());
}

TEST_F(EngineWithDao, RefusesWhatIsMissingOrNeitherItself) {
  std::ofstream(Path("text.mdb")) << "Olivar;Kilos\n";
  EXPECT_THAT(Asked([&] {
                EXPECT_EQ(ErrorOf([&] { OpenChosen("missing.mdb"); }), 3024);
                EXPECT_EQ(ErrorOf([&] { OpenChosen("no/folder.mdb"); }), 3044);
                EXPECT_EQ(ErrorOf([&] { OpenChosen("text.mdb"); }), 3343);
              }),
              IsEmpty());
}

TEST_F(EngineWithDao, MovesTheLevelsOfTheDatabaseOpenedLast) {
  const auto rows = [](const DatabasePtr& database) {
    return database->OpenRecordset("select count(*) from Nombres")->Value(0).as<int32_t>();
  };
  dao::Workspace& both = chosen_->DefaultWorkspace();
  for (const char* name : {"oliva.mdb", "own.sqlite", "oliva.mdb"}) {
    const auto database = OpenChosen(name);
    if (database->TableDefs().Count() == 0) AddNames(*database);
    both.BeginTrans();
    database->Execute("delete from Nombres");
    EXPECT_EQ(rows(database), 0) << name;
    both.Rollback();
    EXPECT_EQ(rows(database), 3) << name;
    EXPECT_EQ(ErrorOf([&] { both.CommitTrans(); }), 3034) << name;
  }
}

}  // namespace
}  // namespace ambrelio::dao_com
