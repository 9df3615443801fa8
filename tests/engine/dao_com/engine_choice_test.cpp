// The engine that a session uses, where there is DAO and where there is none.
#include <fstream>

#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/engine/engine.h"
#include "engine/dao_com/dao_com_test.h"
#include "support/environment.h"

namespace ambrelio::dao_com {
namespace {

using test::ErrorOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST(EngineWithoutDao, OpensFilesOfBothKindsItself) {
  const test::TempFolder folder;
  const auto engine = engine::Create();
  dao::Workspace& workspace = engine->DefaultWorkspace();
  for (const char* name : {"jet.mdb", "own.sqlite"}) {
    const std::string path = folder.File(name);
    workspace.CreateDatabase(path, "")->Close();
    EXPECT_EQ(embedded::IsJetFile(path), name == std::string("jet.mdb"));
    EXPECT_EQ(ErrorOf([&] { workspace.OpenDatabase(path, false, false, ""); }), 0);
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
  try {
    engine::Create();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), HasSubstr("AMBRELIO_JET is dao or own, not jet"));
  }
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

TEST_F(EngineWithDao, CanBeToldToUseItOrToLeaveItAlone) {
  AddNames(*Open());
  test::ScopedEnvironment environment;
  const auto asked_when_told = [&](const char* choice) {
    environment.Set("AMBRELIO_JET", choice);
    chosen_ = engine::Create();
    return Asked([&] {
      const auto database = OpenChosen("oliva.mdb");
      EXPECT_EQ(database->OpenRecordset("Nombres")->Value("Nombre"), Variant("uno")) << choice;
    });
  };
  EXPECT_THAT(asked_when_told("dao"), Contains(StartsWith("DAO.Workspace.OpenDatabase")));
  EXPECT_THAT(asked_when_told("own"), IsEmpty());
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
