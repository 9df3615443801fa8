// One file under the hands of several processes, and of one that dies.
#include <filesystem>
#include <thread>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "support/engine_test.h"
#include "support/second_process.h"

namespace ambrelio::embedded {
namespace {

using test::ErrorOf;
using test::SecondProcess;

class Processes : public test::EngineTest {
 protected:
  Processes() {
    if (!SecondProcess::IsThis()) AddTanks(*Create());
  }

  // What a child needs: an engine of its own, with the database open.
  struct Client {
    explicit Client(const std::string& path)
        : database(engine->DefaultWorkspace().OpenDatabase(path, false, false, "")) {}
    dao::Workspace& workspace() { return engine->DefaultWorkspace(); }

    std::shared_ptr<dao::DBEngine> engine = CreateEngine();
    DatabasePtr database;
  };
};

TEST_F(Processes, KeepWhatAKilledOneHadCommitted) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    AddTank(*client.database, 1);
    client.workspace().BeginTrans();
    AddTank(*client.database, 2);
    client.workspace().CommitTrans();
    parent.Signal();
    parent.Await();
  });
  ASSERT_TRUE(child.Await());
  child.Kill();
  EXPECT_EQ(CountRows(*Open()), 2);
}

TEST_F(Processes, LoseWhatAKilledOneHadNotCommitted) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    client.workspace().BeginTrans();
    client.workspace().BeginTrans();
    AddTank(*client.database, 1);
    AddTanks(*client.database, "Otra");
    client.workspace().CommitTrans();
    parent.Signal();
    parent.Await();
  });
  ASSERT_TRUE(child.Await());
  child.Kill();
  const auto database = Open();
  EXPECT_EQ(CountRows(*database), 0);
  EXPECT_EQ(database->TableDefs().Count(), 1);
  AddTank(*database, 1);
}

TEST_F(Processes, LeaveNoHalfDatabaseWhenTheMakerIsKilled) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Storage::Create(Path("new.mdb"), [&](Storage&) {
      parent.Signal();
      parent.Await();
    });
  });
  ASSERT_TRUE(child.Await());
  child.Kill();
  EXPECT_FALSE(std::filesystem::exists(Path("new.mdb")));
  Create("new.mdb");
}

TEST_F(Processes, SeeEachOthersCommits) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    parent.Signal();
    parent.Await();
    if (CountRows(*client.database) != 1) throw std::runtime_error("rows");
    AddTank(*client.database, 2);
  });
  ASSERT_TRUE(child.Await());
  const auto database = Open();
  AddTank(*database, 1);
  child.Signal();
  ASSERT_TRUE(child.EndedWell());
  EXPECT_EQ(CountRows(*database), 2);
}

TEST_F(Processes, SeeEachOthersDefinitionsAfterARefresh) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    const auto table = client.database->TableDefs().Item("Tanques");
    parent.Signal();
    parent.Await();
    if (table->Fields().Count() != 2) throw std::runtime_error("fields before the refresh");
    table->Fields().Refresh();
    if (table->Fields().Count() != 3) throw std::runtime_error("fields after the refresh");
    client.database->TableDefs().Delete("Tanques");
    AddTanks(*client.database, "Otra");
  });
  ASSERT_TRUE(child.Await());
  const auto database = Open();
  const auto table = database->TableDefs().Item("Tanques");
  table->Fields().Append(table->CreateField("A", dao::FieldType::kLong));
  child.Signal();
  ASSERT_TRUE(child.EndedWell());
  EXPECT_EQ(database->TableDefs().Item(0)->Name(), "Otra");
  EXPECT_EQ(ErrorOf([&] { table->Name(); }), 3420);
}

TEST_F(Processes, WaitForEachOthersTransactions) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    client.workspace().BeginTrans();
    AddTank(*client.database, 1);
    parent.Signal();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    client.workspace().CommitTrans();
  });
  ASSERT_TRUE(child.Await());
  const auto database = Open();
  AddTank(*database, 2);
  EXPECT_EQ(CountRows(*database), 2);
  EXPECT_TRUE(child.EndedWell());
}

TEST_F(Processes, RefuseDefinitionsWhileAnotherWrites) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    Client client(Path());
    client.workspace().BeginTrans();
    parent.Signal();
    parent.Await();
  });
  ASSERT_TRUE(child.Await());
  const auto database = Open();
  EXPECT_EQ(ErrorOf([&] { AddTanks(*database, "Otra"); }), 3218);
  EXPECT_EQ(database->TableDefs().Count(), 1);
  child.Signal();
  ASSERT_TRUE(child.EndedWell());
  AddTanks(*database, "Otra");
}

TEST_F(Processes, KeepEachOtherOutWhenOneIsExclusive) {
  SecondProcess child(folder_, [&](SecondProcess& parent) {
    const auto engine = CreateEngine();
    const auto held = engine->DefaultWorkspace().OpenDatabase(Path(), true, false, "");
    parent.Signal();
    parent.Await();
  });
  ASSERT_TRUE(child.Await());
  EXPECT_EQ(ErrorOf([&] { Open(); }), 3045);
  child.Kill();
  EXPECT_EQ(ErrorOf([&] { Open(); }), 0);
}

}  // namespace
}  // namespace ambrelio::embedded
