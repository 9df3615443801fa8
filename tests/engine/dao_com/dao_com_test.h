// A test with DAO's stand-in, the adapter over it, and a folder for its databases.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/engine/dao_com/dao_engine.h"
#include "ambrelio/value/automation_error.h"
#include "support/error_of.h"
#include "support/temp_folder.h"
#include "windows/dao_stand_in/stand_in.h"

namespace ambrelio::dao_com {

class DaoComTest : public ::testing::Test {
 protected:
  using DatabasePtr = std::shared_ptr<dao::Database>;

  std::string Path(const std::string& name = "oliva.mdb") const { return folder_.File(name); }
  dao::Workspace& workspace() { return engine_->DefaultWorkspace(); }
  DatabasePtr Create(const std::string& connect = "") {
    return workspace().CreateDatabase(Path(), connect);
  }
  DatabasePtr Open(const std::string& connect = ";pwd=") {
    return workspace().OpenDatabase(Path(), false, false, connect);
  }

  // Numbers, the primary key, and their names: 1 uno, 2 dos, 3 tres.
  static void AddNames(dao::Database& database) {
    database.Execute(
        "create table Nombres (Numero long constraint k primary key, Nombre text(20))");
    database.Execute("insert into Nombres values (1, 'uno')");
    database.Execute("insert into Nombres values (2, 'dos')");
    database.Execute("insert into Nombres values (3, 'tres')");
  }

  // What DAO is asked for by `action`.
  template <class Action>
  std::vector<std::string> Asked(Action action) {
    stand_in_.Record();
    action();
    return stand_in_.Calls();
  }

  // The error that `action` ends with; fails the test when it does not.
  template <class Action>
  static AutomationError Caught(Action action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return error;
    }
    ADD_FAILURE() << "no error";
    return {0, "", ""};
  }

  test::StandIn stand_in_;
  test::TempFolder folder_;
  std::shared_ptr<dao::DBEngine> engine_ = CreateEngine();
};

}  // namespace ambrelio::dao_com
