#include "ambrelio/engine/engine_by_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

using test::ErrorOf;
using ::testing::ElementsAre;

// An engine that writes down what it is asked; what it opens is never used.
class Recorder final : public dao::DBEngine, private dao::Workspace {
 public:
  std::string Version() const override { return "recorder"; }
  dao::Workspace& DefaultWorkspace() override { return *this; }

  std::vector<std::string> asked;
  bool refuses = false;

 private:
  std::shared_ptr<dao::Database> OpenDatabase(const std::string&, bool exclusive, bool read_only,
                                              const std::string& connect) override {
    asked.push_back(std::string("open") + (exclusive ? " exclusive" : "") +
                    (read_only ? " read-only" : "") + " " + connect);
    if (refuses) throw AutomationError(3031, "Test", "Not a valid password.");
    return nullptr;
  }
  std::shared_ptr<dao::Database> CreateDatabase(const std::string&, const std::string&) override {
    asked.emplace_back("create");
    return nullptr;
  }
  void BeginTrans() override { asked.emplace_back("begin"); }
  void CommitTrans() override { asked.emplace_back("commit"); }
  void Rollback() override { asked.emplace_back("rollback"); }
  void BeginStretch() override { asked.emplace_back("begin stretch"); }
  void EndStretch() override { asked.emplace_back("end stretch"); }
};

class EngineByFileTest : public ::testing::Test {
 protected:
  dao::Workspace& workspace() { return engine_->DefaultWorkspace(); }
  void Open(const std::string& path, const std::string& connect = ";pwd=") {
    workspace().OpenDatabase(path, false, false, connect);
  }
  std::string FileWith(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_.File(name), std::ios::binary) << bytes << std::string(4096, '\0');
    return folder_.File(name);
  }

  test::TempFolder folder_;
  std::string jet_file_ = FileWith("jet.mdb", std::string("\0\1\0\0Standard Jet DB\0", 20));
  std::string ace_file_ = FileWith("ace.mdb", std::string("\0\1\0\0Standard ACE DB\0", 20));
  std::string other_file_ = FileWith("other.mdb", "SQLite format 3");
  std::shared_ptr<Recorder> own_ = std::make_shared<Recorder>();
  std::shared_ptr<Recorder> jet_ = std::make_shared<Recorder>();
  int made_ = 0;
  std::shared_ptr<dao::DBEngine> engine_ = EngineByFile(own_, [this] {
    ++made_;
    return jet_;
  });
};

TEST_F(EngineByFileTest, SendsFilesOfJetToItsEngine) {
  Open(jet_file_, ";pwd=oliva");
  workspace().OpenDatabase(ace_file_, true, true, "");
  EXPECT_THAT(jet_->asked, ElementsAre("open ;pwd=oliva", "open exclusive read-only "));
  EXPECT_THAT(own_->asked, ElementsAre());
}

TEST_F(EngineByFileTest, SendsAllElseToItsOwn) {
  Open(other_file_);
  Open(folder_.File("missing.mdb"));
  Open(folder_.File("missing/oliva.mdb"));
  Open("");
  workspace().CreateDatabase(folder_.File("new.mdb"), "");
  EXPECT_THAT(own_->asked,
              ElementsAre("open ;pwd=", "open ;pwd=", "open ;pwd=", "open ;pwd=", "create"));
  EXPECT_EQ(made_, 0);
}

TEST_F(EngineByFileTest, MakesTheEngineOfJetOnceAndOnlyWhenNeeded) {
  EXPECT_EQ(made_, 0);
  Open(jet_file_);
  Open(jet_file_);
  EXPECT_EQ(made_, 1);
}

TEST_F(EngineByFileTest, TriesAgainWhereTheEngineOfJetWasMissing) {
  int tries = 0;
  const auto engine = EngineByFile(own_, [&]() -> std::shared_ptr<dao::DBEngine> {
    if (++tries == 1) Raise(RuntimeError::kCannotCreateObject);
    return jet_;
  });
  const auto open = [&] { engine->DefaultWorkspace().OpenDatabase(jet_file_, false, false, ""); };
  EXPECT_EQ(ErrorOf(open), 429);
  EXPECT_EQ(ErrorOf(open), 0);
}

TEST_F(EngineByFileTest, BeginsInItsOwnBeforeAnyDatabaseIsOpen) {
  workspace().BeginTrans();
  workspace().Rollback();
  EXPECT_THAT(own_->asked, ElementsAre("begin", "rollback"));
}

TEST_F(EngineByFileTest, MovesTheLevelsOfTheDatabaseOpenedLast) {
  Open(jet_file_);
  workspace().BeginTrans();
  workspace().CommitTrans();
  workspace().BeginStretch();
  workspace().EndStretch();
  Open(other_file_);
  workspace().BeginTrans();
  workspace().Rollback();
  Open(jet_file_);
  workspace().BeginTrans();
  workspace().CreateDatabase(folder_.File("new.mdb"), "");
  workspace().BeginTrans();
  EXPECT_THAT(jet_->asked, ElementsAre("open ;pwd=", "begin", "commit", "begin stretch",
                                       "end stretch", "open ;pwd=", "begin"));
  EXPECT_THAT(own_->asked, ElementsAre("open ;pwd=", "begin", "rollback", "create", "begin"));
}

TEST_F(EngineByFileTest, StaysWithTheDatabaseBeforeWhenAnotherDoesNotOpen) {
  Open(other_file_);
  jet_->refuses = true;
  EXPECT_EQ(ErrorOf([&] { Open(jet_file_); }), 3031);
  workspace().BeginTrans();
  EXPECT_THAT(own_->asked, ElementsAre("open ;pwd=", "begin"));
}

}  // namespace
}  // namespace ambrelio::engine
