// Four processes at work on one file, of either form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <stdexcept>
#include <string>

#include "ambrelio/engine/check.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/value/convert.h"
#include "support/second_process.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

using test::SecondProcess;

constexpr int kProcesses = 4;
constexpr int kRounds = 20;

class FourProcesses : public testing::TestWithParam<const char*> {
 protected:
  FourProcesses() {
    const auto engine = engine::Create();
    const auto database = engine->DefaultWorkspace().CreateDatabase(path_, ";pwd=");
    for (const char* const statement :
         {"create table Total (Numero long constraint k primary key, Litros double)",
          "create table Paso (Proceso long, Vuelta long, Texto text(50), "
          "constraint k primary key (Proceso, Vuelta))",
          "insert into Total values (1, 0)"}) {
      database->Execute(statement, dao::kFailOnError);
    }
  }

  static double NumberOf(dao::Database& database, const std::string& question) {
    return ToDouble(database.OpenRecordset(question)->Value(0));
  }

  // Adds to the total and writes a row of its own, both in a transaction; every third time it
  // thinks better of it first.
  void Work(int process) const {
    const auto engine = engine::Create();
    auto& workspace = engine->DefaultWorkspace();
    const auto database = workspace.OpenDatabase(path_, false, false, ";pwd=");
    const std::string of_process =
        "select count(*) from Paso where Proceso = " + std::to_string(process);
    for (int round = 0; round < kRounds; ++round) {
      for (const bool meant : {round % 3 != 0, true}) {
        workspace.BeginTrans();
        database->Execute("update Total set Litros = Litros + 1 where Numero = 1",
                          dao::kFailOnError);
        database->Execute("insert into Paso values (" + std::to_string(process) + ", " +
                              std::to_string(round) + ", 'vuelta')",
                          dao::kFailOnError);
        if (meant) {
          workspace.CommitTrans();
          break;
        }
        workspace.Rollback();
      }
      if (NumberOf(*database, of_process) != round + 1) throw std::runtime_error("lost a row");
      const double total = NumberOf(*database, "select Litros from Total");
      if (total > NumberOf(*database, "select count(*) from Paso")) {
        throw std::runtime_error("saw half a commit");
      }
    }
  }

  test::TempFolder folder_;
  std::string path_ = folder_.File(GetParam());
};

TEST_P(FourProcesses, LoseNothingOfEachOther) {
  std::list<SecondProcess> others;
  for (int process = 1; process < kProcesses; ++process) {
    others.emplace_back(folder_, [&](SecondProcess&) { Work(process); });
  }
  Work(0);
  for (SecondProcess& other : others) EXPECT_TRUE(other.EndedWell());

  const auto engine = engine::Create();
  const auto database = engine->DefaultWorkspace().OpenDatabase(path_, false, true, ";pwd=");
  EXPECT_EQ(NumberOf(*database, "select Litros from Total"), kProcesses * kRounds);
  EXPECT_EQ(NumberOf(*database, "select count(*) from Paso"), kProcesses * kRounds);
  EXPECT_THAT(CheckFile(path_, ""), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfAJetFile, FourProcesses, testing::Values("oliva.mdb"));
INSTANTIATE_TEST_SUITE_P(OfTheEnginesOwnFile, FourProcesses, testing::Values("oliva.sqlite"));

}  // namespace
}  // namespace ambrelio::engine
