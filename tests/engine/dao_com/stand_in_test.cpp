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
  EXPECT_EQ(test::ErrorOf([&] { rows.Call("Edit"); }), 438);
  EXPECT_EQ(test::ErrorOf([&] { database.Call("Execute"); }), 450);
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
