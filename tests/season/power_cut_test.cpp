// A season whose power goes: what each line of a journal had left is there, or what the one before
// it had.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ambrelio/engine/engine.h"
#include "ambrelio/host/create_database.h"
#include "journal.h"
#include "season/season_generator.h"
#include "support/mill.h"
#include "support/power_cut.h"
#include "support/temp_folder.h"

namespace ambrelio::season {
namespace {

using test::DiskRecord;
using test::FileRequest;

struct Form {
  const char* file;
  int waits;  // of a commit
};

class SeasonCut : public testing::TestWithParam<Form> {
 protected:
  SeasonCut() {
    std::ofstream(folder_.File("CLIEN.INI")) << "[GENERAL]\nEsclavo=0\n";
    std::ofstream(folder_.File("Vardex.ini"))
        << "[GENERAL]\nMaxTolvas=4,2,6\nBaseDatos=" << GetParam().file << "\n";
    host::CreateMillDatabase(*engine::Create(), folder_.File(GetParam().file), "");
  }

  static std::vector<std::string> Lines(uint32_t seed) {
    SeasonOptions options;
    options.seed = seed;
    options.days = 5;
    options.questions = false;
    std::vector<std::string> lines;
    for (const auto& line : MakeSeason(options)) lines.push_back(line.dump());
    return lines;
  }

  static std::string StateIn(dao::Database& database) { return test::MillTest::DumpOf(database); }
  static std::string StateIn(const std::string& folder) {
    const auto engine = engine::Create();
    return StateIn(*engine->DefaultWorkspace().OpenDatabase(folder + "/" + GetParam().file, false,
                                                            false, ";pwd="));
  }

  int WaitsSince(size_t moment) const {
    const auto& steps = record_.steps();
    return static_cast<int>(std::count_if(
        steps.begin() + static_cast<ptrdiff_t>(moment), steps.end(),
        [](const DiskRecord::Step& step) { return step.kind == FileRequest::kSync; }));
  }

  DiskRecord record_;
  test::TempFolder folder_;
  std::istringstream in_;
  std::ostringstream out_;
  std::ostringstream err_;
  cli::Console console_{in_, out_, err_};
};

TEST_P(SeasonCut, LosesNothingAnsweredAndLeavesNothingHalfDone) {
  const uint32_t effort = test::PowerCutEffort();
  std::mt19937 random(20251104);
  struct Line {
    size_t begin;
    size_t end;  // the moment of its answer
    std::string before;
    std::string after;
  };
  std::vector<Line> looked_at;
  const std::vector<std::string> lines = Lines(401);
  {
    cli::Mill mill({folder_.path()}, engine::Create(), console_);
    cli::JournalPlayer player(mill);
    record_.Follow(folder_.path());
    for (const std::string& text : lines) {
      // A formula is several statements without a transaction.
      const bool look = random() % 12 < effort && text.find("Formula") == std::string::npos;
      const std::string before = look ? StateIn(mill.session().Database()) : "";
      const size_t begin = record_.now();
      player.CarryOut(cli::ParseJournalLine(text));
      EXPECT_LE(WaitsSince(begin), GetParam().waits) << text;
      if (look && record_.now() > begin) {
        looked_at.push_back({begin, record_.now(), before, StateIn(mill.session().Database())});
      }
    }
  }
  ASSERT_GT(looked_at.size(), 10);

  test::DiskReplay disk(record_);
  for (const Line& line : looked_at) {
    // The cut falls into the line, or behind its answer.
    const size_t cut = line.begin + random() % (line.end - line.begin + 1);
    disk.AdvanceTo(cut);
    const test::TempFolder found;
    const auto seed = static_cast<uint32_t>(random());
    disk.WriteImage(found.path(), seed);
    const std::string state = StateIn(found.path());
    EXPECT_TRUE(state == line.after || (cut < line.end && state == line.before))
        << "cut at " << cut << ", " << line.end - cut << " changes before the answer, seed "
        << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(OfAJetFile, SeasonCut, testing::Values(Form{"oliva.mdb", 2}));
INSTANTIATE_TEST_SUITE_P(OfTheEnginesOwnFile, SeasonCut, testing::Values(Form{"oliva.sqlite", 1}));

}  // namespace
}  // namespace ambrelio::season
