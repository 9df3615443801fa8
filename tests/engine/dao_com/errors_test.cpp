#include <fstream>
#include <string>

#include "ambrelio/engine/dao_com/database.h"
#include "engine/dao_com/dao_com_test.h"

namespace ambrelio::dao_com {
namespace {

using test::ErrorOf;
using test::StandIn;
using ::testing::HasSubstr;

TEST(DaoMissing, Raises429) { EXPECT_EQ(ErrorOf(CreateEngine), 429); }

TEST(DaoOfTheAccessEngine, ServesWhereDao36IsMissing) {
  const StandIn stand_in(StandIn::Version::kDao120);
  const test::TempFolder folder;
  const auto engine = CreateEngine();
  EXPECT_NO_THROW(engine->DefaultWorkspace().CreateDatabase(folder.File("oliva.mdb"), ""));
}

class DaoErrors : public DaoComTest {};

TEST_F(DaoErrors, HaveDaosNumberSourceAndDescription) {
  const auto database = Create();
  const AutomationError error = Caught([&] { database->OpenRecordset("select * from Nada"); });
  EXPECT_EQ(error.number(), 3078);
  EXPECT_EQ(error.source(), "DAO.Database");
  EXPECT_THAT(error.description(), HasSubstr("'Nada' does not exist"));
}

TEST_F(DaoErrors, ComeOutOfEveryCallAsDaoRaisesThem) {
  const auto database = Create();
  for (const int number : {5, 13, 3000, 3218, 3260, 3422, 32767}) {
    stand_in_.FailAt(1, number);
    const AutomationError error = Caught([&] { database->Execute("delete from Nada"); });
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "DAO.Database");
    EXPECT_EQ(error.description(), "A failure made for the test.");
  }
}

TEST_F(DaoErrors, OfOpening) {
  Create(";pwd=oliva")->Close();
  EXPECT_EQ(ErrorOf([&] { Open(";pwd=oliva"); }), 0);
  EXPECT_EQ(ErrorOf([&] { Open(";pwd=Oliva"); }), 3031);
  EXPECT_EQ(ErrorOf([&] { Open(";pwd="); }), 3031);
  EXPECT_EQ(ErrorOf([&] { workspace().OpenDatabase(Path("x.mdb"), false, false, ""); }), 3024);
  EXPECT_EQ(ErrorOf([&] { workspace().OpenDatabase(Path("x/x.mdb"), false, false, ""); }), 3044);
  std::ofstream(Path("text.mdb")) << "Olivar;Kilos\n";
  EXPECT_EQ(ErrorOf([&] { workspace().OpenDatabase(Path("text.mdb"), false, false, ""); }), 3343);
  EXPECT_EQ(ErrorOf([&] { Create(); }), 3204);
}

TEST_F(DaoErrors, OfStatementsAndRows) {
  const auto database = Create();
  AddNames(*database);
  EXPECT_EQ(ErrorOf([&] { database->Execute("delete from Nada"); }), 3078);
  EXPECT_EQ(ErrorOf([&] { database->Execute("insert into Nombres values (1, 'x')"); }), 0);
  EXPECT_EQ(
      ErrorOf([&] { database->Execute("insert into Nombres values (1, 'x')", dao::kFailOnError); }),
      3022);
  const auto rows = database->OpenRecordset("select * from Nombres where Numero>3");
  EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3021);
  EXPECT_EQ(ErrorOf([&] { rows->Value("Nombre"); }), 3021);
  EXPECT_EQ(ErrorOf([&] { rows->Value("Apellido"); }), 3265);
  EXPECT_EQ(ErrorOf([&] { rows->Value(2); }), 3265);
  EXPECT_EQ(ErrorOf([&] { database->TableDefs().Item(7); }), 3265);
}

TEST_F(DaoErrors, OfLevels) {
  const auto database = Create();
  EXPECT_EQ(ErrorOf([&] { workspace().CommitTrans(); }), 3034);
  EXPECT_EQ(ErrorOf([&] { workspace().Rollback(); }), 3034);
  for (int level = 1; level <= 5; ++level) workspace().BeginTrans();
  EXPECT_EQ(ErrorOf([&] { workspace().BeginTrans(); }), 3003);
  for (int level = 1; level <= 5; ++level) workspace().Rollback();
}

TEST_F(DaoErrors, OfClosedObjects) {
  const auto database = Create();
  AddNames(*database);
  const auto rows = database->OpenRecordset("Nombres");
  const auto closed = database->OpenRecordset("Nombres");
  EXPECT_EQ(ErrorOf([&] { closed->Value(0); }), 0);
  closed->Close();
  EXPECT_EQ(ErrorOf([&] { closed->Value(0); }), 3420);
  EXPECT_EQ(ErrorOf([&] { closed->Close(); }), 3420);
  database->Close();
  EXPECT_EQ(ErrorOf([&] { rows->AtEnd(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->Execute("delete from Nombres"); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->TableDefs(); }), 3420);
  EXPECT_EQ(ErrorOf([&] { database->Close(); }), 3420);
}

// As Visual Basic's for a variable that holds Nothing.
TEST_F(DaoErrors, OfNothingAre91) {
  Database nothing{com::LateBound()};
  EXPECT_EQ(ErrorOf([&] { nothing.Execute("delete from Nombres", 0); }), 91);
  EXPECT_EQ(ErrorOf([&] { nothing.Close(); }), 91);
  EXPECT_EQ(ErrorOf([&] { nothing.TableDefs(); }), 91);
}

TEST_F(DaoErrors, OfObjectsOfAnotherEngineAre3421) {
  struct Foreign final : dao::TableDef {
    std::string Name() const override { return {}; }
    void SetName(const std::string&) override {}
    dao::Collection<dao::Field>& Fields() override { throw std::bad_exception(); }
    dao::Collection<dao::Index>& Indexes() override { throw std::bad_exception(); }
    std::shared_ptr<dao::Field> CreateField(const std::string&, dao::FieldType, int32_t) override {
      return nullptr;
    }
    std::shared_ptr<dao::Index> CreateIndex(const std::string&) override { return nullptr; }
  };
  const auto database = Create();
  EXPECT_EQ(ErrorOf([&] { database->TableDefs().Append(std::make_shared<Foreign>()); }), 3421);
}

class DaoReferences : public DaoComTest {};

TEST_F(DaoReferences, AreLetGoWithTheObjects) {
  const int before = stand_in_.Living();
  {
    const auto database = Create();
    AddNames(*database);
    const auto rows = database->OpenRecordset("Nombres");
    while (!rows->AtEnd()) {
      rows->Value(0);
      rows->Value("Nombre");
      rows->MoveNext();
    }
    database->CreateQueryDef("Una", "select 1 as n");
    for (int i = 0; i < database->TableDefs().Count(); ++i) {
      database->TableDefs().Item(i)->Fields().Item(0)->Name();
      database->TableDefs().Item(i)->Indexes().Item(0)->Fields().Item(0)->Name();
    }
    EXPECT_GT(stand_in_.Living(), before);
  }
  EXPECT_EQ(stand_in_.Living(), before);
  engine_ = nullptr;
  EXPECT_EQ(stand_in_.Living(), 0);
}

TEST_F(DaoReferences, AreLetGoWhereverDaoFails) {
  Create()->Close();
  const int before = stand_in_.Living();
  const auto work = [&] {
    const auto database = Open();
    const auto table = database->CreateTableDef("Clientes");
    table->Fields().Append(table->CreateField("Codigo", dao::FieldType::kLong));
    const auto key = table->CreateIndex("key");
    key->Fields().Append(key->CreateField("Codigo"));
    key->SetPrimary(true);
    table->Indexes().Append(key);
    database->TableDefs().Append(table);
    database->Execute("insert into Clientes values (1)");
    const auto rows = database->OpenRecordset("Clientes");
    for (; !rows->AtEnd(); rows->MoveNext()) rows->Value("Codigo");
    rows->Close();
    database->TableDefs().Delete("Clientes");
    database->Close();
  };
  int calls = 0;
  for (int error = 3218; error != 0;) {
    stand_in_.FailAt(++calls, 3218);
    error = ErrorOf(work);
    stand_in_.FailAt(0, 0);
    EXPECT_TRUE(error == 3218 || error == 0) << error << " at call " << calls;
    EXPECT_EQ(stand_in_.Living(), before) << "at call " << calls;
    const auto database = Open();
    if (database->TableDefs().Count() > 0) database->TableDefs().Delete("Clientes");
  }
  EXPECT_GT(calls, 20);
}

}  // namespace
}  // namespace ambrelio::dao_com
