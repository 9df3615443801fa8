#include "ambrelio/engine/embedded/storage/kept_indexes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

using dao::FieldType;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const KeptIndexes kByPlaceAndDust = {
    {"Pesadas", {"Tolva", "Descarga"}, ""},
    {"Pesadas", {"Fraccion"}, "Fraccion >= 0.999 OR Fraccion < 0.001"},
};

class KeptIndexesTest : public ::testing::Test {
 protected:
  using DatabasePtr = std::shared_ptr<dao::Database>;

  static std::shared_ptr<dao::DBEngine> Engine(const KeptIndexes& kept) {
    return CreateEngine(PlanOptions(), kept);
  }
  // Keeps its engine, whose workspace the database belongs to.
  DatabasePtr Open(const KeptIndexes& kept = kByPlaceAndDust, bool read_only = false) {
    engine_ = Engine(kept);
    return engine_->DefaultWorkspace().OpenDatabase(path_, false, read_only, ";pwd=");
  }
  void CreateMill(const std::string& more = "") {
    const auto engine = Engine({});
    const auto database = engine->DefaultWorkspace().CreateDatabase(path_, "");
    database->Execute(
        "create table Pesadas (Lote long, Tolva short, Descarga long, Fraccion double" + more +
        ")");
    database->Close();
  }

  // The names of the kept indexes in the file.
  std::vector<std::string> Kept() {
    const auto storage = Storage::Open(path_, Storage::Access::kShared);
    StorageStatement names(storage->raw(),
                           "select name from sqlite_master where type = 'index' and "
                           "name like 'kept.%' order by name");
    std::vector<std::string> kept;
    while (names.Step()) kept.emplace_back(names.Text(0));
    return kept;
  }

  // How the storage carries out a statement of its own.
  std::string StepsOf(const std::string& sql) {
    const auto storage = Storage::Open(path_, Storage::Access::kShared);
    StorageStatement plan(storage->raw(), "explain query plan " + sql);
    std::string steps;
    while (plan.Step()) steps += std::string(plan.Text(3)) + "\n";
    return steps;
  }

  test::TempFolder folder_;
  std::string path_ = folder_.File("oliva.sqlite");
  std::shared_ptr<dao::DBEngine> engine_;
};

TEST_F(KeptIndexesTest, AreMadeAtTheOpening) {
  CreateMill();
  EXPECT_THAT(Kept(), IsEmpty());
  Open()->Close();
  EXPECT_THAT(Kept(), ElementsAre("kept.Pesadas.Fraccion.some", "kept.Pesadas.Tolva.Descarga"));
}

TEST_F(KeptIndexesTest, AreFoundAtTheNextOpening) {
  CreateMill();
  Open()->Close();
  const auto before = Kept();
  Open()->Close();
  EXPECT_EQ(Kept(), before);
}

TEST_F(KeptIndexesTest, StayWithWhoeverDoesNotKeepThem) {
  CreateMill();
  Open()->Close();
  const auto other = Open({});
  other->Execute("insert into Pesadas values (1, 2, 3, 0.5)", dao::kFailOnError);
  other->Close();
  EXPECT_EQ(Kept().size(), 2U);
}

TEST_F(KeptIndexesTest, AreNotSeenByClients) {
  CreateMill();
  const auto database = Open();
  const auto table = database->TableDefs().Item("Pesadas");
  EXPECT_EQ(table->Indexes().Count(), 0);
}

TEST_F(KeptIndexesTest, TakeNoNameFromAnIndexOfTheClient) {
  CreateMill();
  const auto database = Open();
  database->Execute("create index Tolva on Pesadas (Tolva, Descarga)", dao::kFailOnError);
  EXPECT_EQ(database->TableDefs().Item("Pesadas")->Indexes().Count(), 1);
}

TEST_F(KeptIndexesTest, AreNotMadeWhereTheClientsOwnIndexServes) {
  CreateMill(", constraint k primary key (Tolva, Descarga, Lote)");
  Open()->Close();
  EXPECT_THAT(Kept(), ElementsAre("kept.Pesadas.Fraccion.some"));
}

TEST_F(KeptIndexesTest, AreMadeWhenTheClientsOwnIndexGoes) {
  CreateMill(", constraint k primary key (Tolva, Descarga, Lote)");
  const auto database = Open();
  database->TableDefs().Item("Pesadas")->Indexes().Delete("k");
  database->Close();
  EXPECT_THAT(Kept(), ElementsAre("kept.Pesadas.Fraccion.some", "kept.Pesadas.Tolva.Descarga"));
}

TEST_F(KeptIndexesTest, AreMadeWithATableThatIsMadeLater) {
  const auto engine = Engine(kByPlaceAndDust);
  const auto database = engine->DefaultWorkspace().CreateDatabase(path_, "");
  database->Execute("create table Pesadas (Tolva short, Descarga long)");
  database->Close();
  EXPECT_THAT(Kept(), ElementsAre("kept.Pesadas.Tolva.Descarga"));
}

TEST_F(KeptIndexesTest, AreMadeWithAColumnThatIsMadeLater) {
  const auto engine = Engine(kByPlaceAndDust);
  const auto database = engine->DefaultWorkspace().CreateDatabase(path_, "");
  database->Execute("create table Pesadas (Tolva short, Descarga long)");
  database->Execute("alter table Pesadas add column Fraccion double");
  database->Close();
  EXPECT_EQ(Kept().size(), 2U);
}

TEST_F(KeptIndexesTest, AreInTheWayOfNoChange) {
  CreateMill();
  const auto database = Open();
  database->Execute("insert into Pesadas values (1, 2, 3, 0.5)", dao::kFailOnError);
  const auto table = database->TableDefs().Item("Pesadas");
  table->Fields().Item("Lote")->SetRequired(true);  // the table is made anew
  table->Fields().Item("Fraccion")->SetName("Parte");
  EXPECT_EQ(database->OpenRecordset("select Parte from Pesadas")->Value(0), Variant(0.5));
  table->Fields().Delete("Descarga");
  database->Close();
  EXPECT_THAT(Kept(), IsEmpty());
}

TEST_F(KeptIndexesTest, GoWithTheirTable) {
  CreateMill();
  const auto database = Open();
  database->Execute("drop table Pesadas");
  database->Close();
  EXPECT_THAT(Kept(), IsEmpty());
}

TEST_F(KeptIndexesTest, AreNotMadeInAFileOpenedForReading) {
  CreateMill();
  Open(kByPlaceAndDust, /*read_only=*/true)->Close();
  EXPECT_THAT(Kept(), IsEmpty());
}

TEST_F(KeptIndexesTest, WaitForTheNextOpeningWhileAnotherWrites) {
  CreateMill();
  const auto writer = Engine({});
  const auto held = writer->DefaultWorkspace().OpenDatabase(path_, false, false, ";pwd=");
  writer->DefaultWorkspace().BeginTrans();
  held->Execute("insert into Pesadas values (1, 2, 3, 0.5)");
  Open()->Close();
  writer->DefaultWorkspace().Rollback();
  EXPECT_THAT(Kept(), IsEmpty());
  Open()->Close();
  EXPECT_EQ(Kept().size(), 2U);
}

TEST_F(KeptIndexesTest, ServeTheStorage) {
  CreateMill();
  Open()->Close();
  EXPECT_THAT(StepsOf("select Lote from Pesadas where Tolva = 1 and Descarga = 2"),
              HasSubstr("USING INDEX kept.Pesadas.Tolva.Descarga (Tolva=? AND Descarga=?)"));
  EXPECT_THAT(StepsOf("delete from Pesadas where Fraccion >= 0.999 or Fraccion < 0.001"),
              HasSubstr("INDEX kept.Pesadas.Fraccion.some"));
}

}  // namespace
}  // namespace ambrelio::embedded
