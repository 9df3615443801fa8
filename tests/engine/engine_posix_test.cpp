#include <gtest/gtest.h>

#include <fstream>

#include "ambrelio/engine/engine.h"
#include "support/error_of.h"
#include "support/temp_folder.h"

namespace ambrelio::engine {
namespace {

TEST(EngineHere, RefusesJetFilesByTheirFirstBytes) {
  const test::TempFolder folder;
  for (const char* format : {"Standard Jet DB", "Standard ACE DB"}) {
    const std::string path = folder.File("oliva.mdb");
    std::ofstream(path, std::ios::binary)
        << std::string("\0\1\0\0", 4) << format << std::string(4096, '\0');
    EXPECT_EQ(test::ErrorOf(
                  [&] { Create()->DefaultWorkspace().OpenDatabase(path, false, false, ";pwd="); }),
              3343);
  }
}

}  // namespace
}  // namespace ambrelio::engine
