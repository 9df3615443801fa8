#include "ambrelio/engine/engine.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

using test::ErrorOf;

class EngineChoice : public ::testing::Test {
 protected:
  int OpenError() {
    return ErrorOf([&] { engine_->DefaultWorkspace().OpenDatabase(path_, false, false, ";pwd="); });
  }
  void Write(const std::string& bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }

  test::TempFolder folder_;
  // The name says nothing about what the file is.
  std::string path_ = folder_.File("oliva.mdb");
  std::shared_ptr<dao::DBEngine> engine_ = Create();
};

TEST_F(EngineChoice, OpensItsOwnFilesUnderAnyName) {
  engine_->DefaultWorkspace().CreateDatabase(path_, "")->Close();
  EXPECT_EQ(OpenError(), 0);
}

TEST_F(EngineChoice, RefusesAnythingElse) {
  Write("Olivar;Kilos\nLa Cañada;1250\n");
  EXPECT_EQ(OpenError(), 3343);
}

TEST_F(EngineChoice, GivesEachCallerAnEngineOfItsOwn) { EXPECT_NE(Create(), Create()); }

}  // namespace
}  // namespace ambrelio::engine
