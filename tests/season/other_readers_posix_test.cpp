// What a season leaves in a Jet file, as mdbtools reads it and by the rules of the format.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "ambrelio/engine/check.h"
#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "engine/jetfile/mdbtools_program.h"
#include "engine/jetfile/mdbtools_text.h"
#include "engine/jetfile/samples.h"
#include "journal.h"
#include "season/season_generator.h"
#include "support/temp_folder.h"

namespace ambrelio::season {
namespace {

TEST(OtherReaders, ReadAMillsFileAfterASeasonAsWeDo) {
  if (!jetfile::HasMdbtools()) GTEST_SKIP() << "mdbtools is not installed";
  const test::TempFolder folder;
  std::ofstream(folder.File("CLIEN.INI")) << "[GENERAL]\nEsclavo=0\n";
  std::ofstream(folder.File("Vardex.ini")) << "[GENERAL]\nMaxTolvas=4,2,6\n";
  const std::string file = folder.File("oliva.mdb");
  host::CreateMillDatabase(*engine::Create(), file, "");
  {
    std::istringstream in;
    std::ostringstream out;
    cli::Console console{in, out, out};
    cli::Mill mill({folder.path()}, engine::Create(), console);
    cli::JournalPlayer player(mill);
    SeasonOptions options;
    options.seed = 500;
    for (const auto& line : MakeSeason(options)) {
      player.CarryOut(cli::ParseJournalLine(line.dump()));
    }
  }
  EXPECT_THAT(engine::CheckFile(file, ""), testing::IsEmpty());
  const std::string ours = jetfile::MdbtoolsText(jetfile::ReadFromDisk(file));
  EXPECT_THAT(ours, testing::HasSubstr("Descargas"));
  EXPECT_EQ(ours, jetfile::OutputOf(AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/expected/tell '" +
                                    file + "'"));
}

}  // namespace
}  // namespace ambrelio::season
