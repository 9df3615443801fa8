// Which journal a database has: the judgement of a disk that loses its power at any moment, and the
// price of each journal in waits for the disk.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/value/automation_error.h"
#include "support/power_cut.h"
#include "support/temp_folder.h"

namespace ambrelio::embedded {
namespace {

// What a power cut does to what was committed, the worst last.
enum class Fate : uint8_t { kKept, kLost, kDamaged };

struct Journal {
  const char* name;
  const char* settings;  // "" for those that every database has
  int waits;             // of a commit, without moving the log into the file
  Fate fate;
  bool disk_lies = false;
};

void PrintTo(const Journal& journal, std::ostream* out) { *out << journal.name; }

class JournalTest : public ::testing::TestWithParam<Journal> {
 protected:
  static constexpr int kCommits = 25;
  static constexpr int kRows = 200;

  JournalTest() : storage_(Storage::Create(folder_.File("a.sqlite"))) {
    storage_->Run(
        "create table t(a integer primary key, v integer, rest blob);"
        "create index i on t(v);"
        "with recursive n(a) as (select 1 union all select a + 1 from n where a < " +
        std::to_string(kRows) + ") insert into t select a, 0, zeroblob(150) from n");
    // Often enough for many cuts to fall into it, and into the beginning of the next log.
    storage_->Run("pragma wal_autocheckpoint = 60;" + std::string(GetParam().settings));
  }

  // Commits one change of all rows after the other, of some pages each; with every one the table
  // can grow or shrink. Each row holds the number of the last.
  void Work() {
    std::mt19937 random(7);
    record_.Follow(folder_.path());
    committed_ = {record_.now()};
    for (int commit = 1; commit <= kCommits; ++commit) {
      storage_->Begin();
      storage_->Run("update t set v = " + std::to_string(commit));
      if (random() % 4 == 0) {
        const std::string size = std::to_string(random() % 600);
        storage_->Run("update t set rest = zeroblob(" + size + ") where a % 5 = 0");
      }
      storage_->Commit();
      committed_.push_back(record_.now());
    }
  }

  // How often the disk is waited for in most commits.
  int Waits() const {
    std::vector<int> waits;
    for (size_t i = 1; i < committed_.size(); ++i) {
      waits.push_back(static_cast<int>(
          std::count_if(record_.steps().begin() + static_cast<ptrdiff_t>(committed_[i - 1]),
                        record_.steps().begin() + static_cast<ptrdiff_t>(committed_[i]),
                        [](const test::DiskRecord::Step& step) {
                          return step.kind == test::FileRequest::kSync || step.waits;
                        })));
    }
    std::nth_element(waits.begin(), waits.begin() + kCommits / 2, waits.end());
    return waits[kCommits / 2];
  }

  // The worst that can be found after a cut at some moment.
  Fate Judge() const {
    test::DiskReplay disk(record_, GetParam().disk_lies);
    Fate worst = Fate::kKept;
    std::mt19937 random(11);
    size_t acknowledged = 0;
    for (size_t moment = record_.begin(); moment <= record_.now(); ++moment) {
      if (worst == Fate::kDamaged) break;
      disk.AdvanceTo(moment);
      while (acknowledged < kCommits && committed_[acknowledged + 1] <= moment) ++acknowledged;
      // At every tenth moment, in a long run at each in many ways.
      for (uint32_t tries = test::PowerCutEffort(); tries > 0; --tries) {
        if (random() % 10 > 0) continue;
        worst = std::max(worst, FateOf(disk, static_cast<uint32_t>(random()), acknowledged));
      }
    }
    return worst;
  }

 private:
  static Fate FateOf(const test::DiskReplay& disk, uint32_t seed, size_t acknowledged) {
    const test::TempFolder found;
    disk.WriteImage(found.path(), seed);
    try {
      const auto storage = Storage::Open(found.File("a.sqlite"), Storage::Access::kShared);
      StorageStatement rows(storage->raw(),
                            "select count(*), min(v), max(v), (select group_concat(integrity_check)"
                            " from pragma_integrity_check) from t");
      rows.Step();
      const int64_t number = rows.Integer(1);
      if (rows.Integer(0) != kRows || rows.Integer(2) != number || rows.Text(3) != "ok") {
        return Fate::kDamaged;
      }
      return number < static_cast<int64_t>(acknowledged) ? Fate::kLost : Fate::kKept;
    } catch (const AutomationError&) {
      return Fate::kDamaged;
    }
  }

  test::DiskRecord record_;
  test::TempFolder folder_;
  std::unique_ptr<Storage> storage_;
  std::vector<size_t> committed_;  // moments, that of the beginning first
};

TEST_P(JournalTest, APowerCutHasTheFateThatTheJournalPromises) {
  Work();
  EXPECT_EQ(Waits(), GetParam().waits);
  EXPECT_EQ(Judge(), GetParam().fate);
}

// The one that is used, and those that are not: they wait more often, or they lose. That they are
// seen to lose also shows that the judge can tell.
INSTANTIATE_TEST_SUITE_P(
    Journals, JournalTest,
    ::testing::Values(Journal{"LogAsUsed", "", 1, Fate::kKept},
                      Journal{"LogAsUsedOnADiskThatLies", "", 1, Fate::kDamaged, true},
                      Journal{"LogNormal", "pragma synchronous = normal", 0, Fate::kLost},
                      Journal{"LogWithoutWaiting", "pragma synchronous = off", 0, Fate::kDamaged},
                      Journal{"DeletedFull", "pragma journal_mode = delete", 3, Fate::kLost},
                      Journal{"DeletedExtra",
                              "pragma journal_mode = delete; pragma synchronous = extra", 4,
                              Fate::kKept},
                      Journal{"TruncatedFull", "pragma journal_mode = truncate", 4, Fate::kKept},
                      Journal{"PersistentFull", "pragma journal_mode = persist", 4, Fate::kKept},
                      Journal{"WithoutWaiting",
                              "pragma journal_mode = delete; pragma synchronous = off", 0,
                              Fate::kDamaged}),
    [](const auto& journal) { return std::string(journal.param.name); });

}  // namespace
}  // namespace ambrelio::embedded
