// The stand-in itself, where a program has no other hold of it than the environment.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "ambrelio/engine/dao_com/dao_engine.h"
#include "ambrelio/engine/engine.h"
#include "support/environment.h"
#include "support/error_of.h"
#include "support/second_process.h"
#include "windows/dao_stand_in/stand_in.h"

namespace ambrelio::dao_com {
namespace {

TEST(StandInEnvironment, NamesALogAndTheCallThatFails) {
  const test::TempFolder folder;
  const std::string log = folder.File("llamadas.log");
  test::ScopedEnvironment environment;
  environment.Set("AMBRELIO_DAO_STAND_IN_LOG", log);
  environment.Set("AMBRELIO_DAO_STAND_IN_FAIL", "2:3218");
  test::SecondProcess child(folder, [](test::SecondProcess&) {
    const test::StandIn stand_in;
    if (test::ErrorOf(CreateEngine) != 3218) throw std::runtime_error("not failed");
    CreateEngine();
  });
  EXPECT_TRUE(child.EndedWell());
  std::ifstream file(log);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
            "DAO.DbEngine.Workspaces\nDAO.Workspaces.Item(0)\n"
            "DAO.DbEngine.Workspaces\nDAO.Workspaces.Item(0)\n");
}

// As a script calls: arguments behind a property are for the default member of what it gives.
TEST(StandInAsAScriptUsesIt, PassesArgumentsOnToDefaultMembers) {
  const test::StandIn stand_in;
  const test::TempFolder folder;
  const com::LateBound engine(com::CreateObject("DAO.DBEngine.36"));
  const com::LateBound workspace = engine.ObjectFrom("workspaces", {int32_t{0}});
  const com::LateBound database = workspace.ObjectFrom(
      "CreateDatabase", {folder.File("oliva.mdb"), ";LANGID=0x0409;CP=1252;COUNTRY=0"});
  database.Call("Execute", {"create table Nombres (Numero long)"});
  database.Call("Execute", {"insert into Nombres values (7)"});
  const com::LateBound rows = database.ObjectFrom("OpenRecordset", {"Nombres"});
  EXPECT_EQ(rows.ObjectFrom("Fields", {"Numero"}).Call("Value"), Variant(int32_t{7}));
  EXPECT_EQ(rows.Item("Numero").Call("Name"), Variant("Numero"));
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("Seek"); }), 438);
  EXPECT_EQ(test::ErrorOf([&] { database.Call("Execute"); }), 450);
}

// A host's own table, with rows of every kind of value.
class StandInRows : public testing::Test {
 protected:
  StandInRows() {
    database.Call("Execute",
                  {"create table Avisos (Numero long primary key, Texto text(40), Kilos double, "
                   "Dia datetime, Visto yesno, Precio currency)"});
    AddRow(1, "L'Olivar", 0.1, OleDate::FromDays(45000.1234567), true);
    AddRow(2, "", 1e-7, OleDate::FromDays(45001), false);
  }

  com::LateBound Open(const Variant& source, int32_t type = 2) const {
    return database.ObjectFrom("OpenRecordset", {source, type});
  }
  static Variant ValueOf(const com::LateBound& rows, const char* field) {
    return rows.Item(field).Call("Value");
  }
  static void Put(const com::LateBound& rows, const char* field, const Variant& value) {
    rows.Item(field).Put("Value", value);
  }
  void AddRow(int32_t number, const std::string& text, double kilos, OleDate day, bool seen) const {
    const com::LateBound rows = Open("Avisos");
    rows.Call("AddNew");
    Put(rows, "Numero", number);
    Put(rows, "texto", text.empty() ? Variant::Null() : Variant(text));
    Put(rows, "Kilos", kilos);
    Put(rows, "Dia", day);
    Put(rows, "Visto", seen);
    rows.Call("Update");
  }

  const test::StandIn stand_in;
  const test::TempFolder folder;
  const com::LateBound engine{com::CreateObject("DAO.DBEngine.36")};
  const com::LateBound database =
      engine.ObjectFrom("CreateDatabase", {folder.File("oliva.mdb"), ";LANGID=0x0409"});
};

TEST_F(StandInRows, AreAddedWithTheirValuesToTheLastBit) {
  const com::LateBound rows = Open("select * from Avisos order by Numero");
  EXPECT_EQ(ValueOf(rows, "Texto"), Variant("L'Olivar"));
  EXPECT_EQ(ValueOf(rows, "Kilos"), Variant(0.1));
  EXPECT_EQ(ValueOf(rows, "Dia"), Variant(OleDate::FromDays(45000.1234567)));
  EXPECT_EQ(ValueOf(rows, "Visto"), Variant(true));
  EXPECT_EQ(ValueOf(rows, "Precio"), Variant::Null());
  rows.Call("MoveNext");
  EXPECT_EQ(ValueOf(rows, "Texto"), Variant::Null());
  EXPECT_EQ(ValueOf(rows, "Kilos"), Variant(1e-7));
  EXPECT_EQ(ValueOf(rows, "Visto"), Variant(false));
}

TEST_F(StandInRows, AreChangedWhereTheyStand) {
  const com::LateBound rows = Open("select * from Avisos order by Numero");
  rows.Call("Edit");
  EXPECT_EQ(rows.Call("EditMode"), Variant(int16_t{1}));
  Put(rows, "Precio", Currency{12500});
  Put(rows, "Numero", int32_t{7});
  EXPECT_EQ(ValueOf(rows, "Numero"), Variant(int32_t{7}));
  rows.Call("Update");
  EXPECT_EQ(rows.Call("EditMode"), Variant(int16_t{0}));
  EXPECT_EQ(ValueOf(rows, "Numero"), Variant(int32_t{7}));
  EXPECT_EQ(ValueOf(rows, "Precio"), Variant(Currency{12500}));
  rows.Call("MoveNext");
  EXPECT_EQ(ValueOf(rows, "Numero"), Variant(int32_t{2}));
  EXPECT_EQ(ValueOf(rows, "Precio"), Variant::Null());
}

TEST_F(StandInRows, AreLeftAloneByWhatIsNotStored) {
  const com::LateBound rows = Open("select * from Avisos order by Numero");
  rows.Call("Edit");
  Put(rows, "Kilos", 5.0);
  rows.Call("CancelUpdate");
  EXPECT_EQ(ValueOf(rows, "Kilos"), Variant(0.1));
  rows.Call("AddNew");
  EXPECT_EQ(ValueOf(rows, "Kilos"), Variant::Null());
  rows.Call("MoveNext");
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("Update"); }), 3020);
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("CancelUpdate"); }), 3020);
  EXPECT_EQ(test::ErrorOf([&] { Put(rows, "Kilos", 5.0); }), 3020);
  EXPECT_EQ(ValueOf(Open("select count(*) as n from Avisos"), "n"), Variant(int32_t{2}));
}

TEST_F(StandInRows, AreDeletedAndStayCurrent) {
  const com::LateBound rows = Open("select * from Avisos order by Numero");
  rows.Call("Delete");
  EXPECT_EQ(test::ErrorOf([&] { ValueOf(rows, "Kilos"); }), 3167);
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("Edit"); }), 3167);
  rows.Call("MoveNext");
  EXPECT_EQ(ValueOf(rows, "Numero"), Variant(int32_t{2}));
  EXPECT_EQ(ValueOf(Open("select count(*) as n from Avisos"), "n"), Variant(int32_t{1}));
}

TEST_F(StandInRows, AreFoundByAllTheirValuesInATableWithoutAKey) {
  database.Call("Execute", {"create table Notas (Numero long, Texto text(40))"});
  database.Call("Execute", {"insert into Notas values (1, Null)"});
  database.Call("Execute", {"insert into Notas values (2, Null)"});
  const com::LateBound rows = Open("Notas");
  rows.Call("Edit");
  Put(rows, "Texto", "vista");
  rows.Call("Update");
  EXPECT_EQ(ValueOf(Open("select Texto from Notas where Numero = 1"), "Texto"), Variant("vista"));
  EXPECT_EQ(ValueOf(Open("select Texto from Notas where Numero = 2"), "Texto"), Variant::Null());
}

TEST_F(StandInRows, AreRefusedByTheTableAsInAStatement) {
  EXPECT_EQ(test::ErrorOf([&] { AddRow(2, "", 0, OleDate(), false); }), 3022);
  const com::LateBound rows = Open("Avisos");
  rows.Call("AddNew");
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("Update"); }), 3058);
  EXPECT_EQ(test::ErrorOf([&] { Put(rows, "Olivos", 1.0); }), 3265);
}

TEST_F(StandInRows, AreOnlyReadWhereTheyAreNotThoseOfATable) {
  const auto edited = [&](const com::LateBound& rows) {
    return test::ErrorOf([&] { rows.Call("Edit"); });
  };
  EXPECT_EQ(edited(Open("Avisos", 4)), 3251);
  EXPECT_EQ(edited(Open("select Visto, count(*) as n from Avisos group by Visto")), 3027);
  EXPECT_EQ(edited(Open("select a.Numero from Avisos as a, Avisos as b")), 3027);
  EXPECT_EQ(edited(Open("select * from Avisos where Numero = 99")), 3021);
}

TEST(StandInAsAScriptUsesIt, WantsAllArgumentsBeforeAPassword) {
  const test::StandIn stand_in;
  const test::TempFolder folder;
  const com::LateBound engine(com::CreateObject("DAO.DBEngine.36"));
  const std::string path = folder.File("oliva.mdb");
  engine.Call("CreateDatabase", {path, ""});
  const auto open = [&](const Variant& options) {
    return test::ErrorOf([&] { engine.Call("OpenDatabase", {path, options, false, ";pwd="}); });
  };
  EXPECT_EQ(open(Variant()), 3031);
  EXPECT_EQ(open(false), 0);
}

TEST(StandInAsAScriptUsesIt, ReadsNoFilesButThoseOfJet) {
  const test::StandIn stand_in;
  const test::TempFolder folder;
  const std::string path = folder.File("oliva.sqlite");
  engine::Create()->DefaultWorkspace().CreateDatabase(path, "")->Close();
  const com::LateBound engine(com::CreateObject("DAO.DBEngine.36"));
  EXPECT_EQ(test::ErrorOf([&] { engine.Call("OpenDatabase", {path}); }), 3343);
}

}  // namespace
}  // namespace ambrelio::dao_com
