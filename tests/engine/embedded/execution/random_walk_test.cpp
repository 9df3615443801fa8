// Random walks on several recordsets at once, between writes, transactions and commits of another
// connection, beside a model that holds every set as a whole from its opening.
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "support/engine_test.h"

namespace ambrelio::embedded {
namespace {

using dao::RecordsetType;
using test::ErrorOf;

struct Row {
  int number;
  int litres;
};
// By the identities of the rows. That of a last row which is gone goes to the next new one.
using Table = std::map<int, Row>;

// A recordset that has read everything.
class Model {
 public:
  Model(const Table& table, int from, bool ordered, bool descending, bool is_dynaset)
      : is_dynaset_(is_dynaset) {
    for (const auto& entry : table) {
      if (entry.second.litres >= from) rows_.push_back(entry);
    }
    if (ordered) {
      std::stable_sort(rows_.begin(), rows_.end(), [descending](const Entry& a, const Entry& b) {
        return descending ? a.second.litres > b.second.litres : a.second.litres < b.second.litres;
      });
    }
    GoTo(0, table);
  }

  bool AtEnd() const { return place_ == Count(); }
  bool AtStart() const { return place_ < 0 || rows_.empty(); }

  // The error of the move, 0 for none.
  int Move(int kind, const Table& table) {
    if (rows_.empty()) return 3021;
    if (kind == 0) return GoTo(0, table);
    if (kind == 1) return GoTo(Count() - 1, table);
    if (kind == 2) return AtEnd() ? 3021 : GoTo(place_ + 1, table);
    return AtStart() ? 3021 : GoTo(place_ - 1, table);
  }

  // What reading the current row gives: its values, or an error.
  int Error() const {
    if (AtEnd() || AtStart()) return 3021;
    return deleted_ ? 3167 : 0;
  }
  const Row& current() const { return current_; }

 private:
  int Count() const { return static_cast<int>(rows_.size()); }

  int GoTo(int place, const Table& table) {
    place_ = place;
    if (AtEnd() || AtStart()) return 0;
    const Entry& entry = rows_[static_cast<size_t>(place)];
    current_ = entry.second;
    if (!is_dynaset_) return 0;
    const auto found = table.find(entry.first);
    deleted_ = found == table.end();
    if (!deleted_) current_ = found->second;
    return 0;
  }

  using Entry = std::pair<int, Row>;
  std::vector<Entry> rows_;
  bool is_dynaset_;
  bool deleted_ = false;
  int place_ = 0;
  Row current_ = {};
};

class RandomWalk : public test::EngineTest {
 protected:
  RandomWalk() : database_(Create()) {
    AddTanks(*database_);
    database_->Execute("create index porLitros on Tanques (Litros)");
    others_ = other_->DefaultWorkspace().OpenDatabase(Path(), false, false, "");
  }

  int Chance(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

  // What the database holds, as this connection sees it.
  Table& table() { return levels_.back(); }

  void Open() {
    const bool joined = Chance(3) == 0;
    const bool ordered = Chance(2) == 0;
    const bool descending = Chance(2) == 0;
    const int from = Chance(6);
    const auto type = Chance(2) == 0 ? RecordsetType::kSnapshot : RecordsetType::kDefault;
    std::string sql = "select a.Numero, a.Litros from Tanques as a";
    if (joined) sql += " inner join Tanques as b on a.Numero = b.Numero";
    sql += " where a.Litros >= " + std::to_string(from);
    if (ordered) sql += descending ? " order by a.Litros desc" : " order by a.Litros";
    const bool is_dynaset = !joined && type == RecordsetType::kDefault;
    Walk& walk = walks_[static_cast<size_t>(Chance(kWalks))];
    walk.rows = database_->OpenRecordset(sql, type);
    walk.model.emplace(table(), from, ordered, descending, is_dynaset);
    walk.story = sql + (is_dynaset ? ", dynaset" : ", snapshot");
  }

  void Move() {
    Walk& walk = walks_[static_cast<size_t>(Chance(kWalks))];
    if (!walk.rows) return;
    constexpr std::array kMoves = {&dao::Recordset::MoveFirst, &dao::Recordset::MoveLast,
                                   &dao::Recordset::MoveNext, &dao::Recordset::MovePrevious};
    constexpr std::array kNames = {" first", " last", " next", " previous"};
    const size_t kind = std::min(static_cast<size_t>(Chance(8)) / 2, kMoves.size() - 1);
    walk.story += kNames[kind];
    const int error = ErrorOf([&] { (*walk.rows.*kMoves[kind])(); });
    ASSERT_EQ(error, walk.model->Move(static_cast<int>(kind), table())) << walk.story;
  }

  void Write(dao::Database& database) {
    const int litres = Chance(8);
    if (table().empty() || Chance(2) == 0) {
      const int identity = table().empty() ? 1 : std::prev(table().end())->first + 1;
      table()[identity] = {++last_number_, litres};
      database.Execute("insert into Tanques values (" + std::to_string(last_number_) + ", " +
                       std::to_string(litres) + ")");
      return;
    }
    const auto row = std::next(table().begin(), Chance(static_cast<int>(table().size())));
    const std::string where = " where Numero = " + std::to_string(row->second.number);
    if (Chance(2) == 0) {
      row->second.litres = litres;
      database.Execute("update Tanques set Litros = " + std::to_string(litres) + where);
    } else {
      table().erase(row);
      database.Execute("delete from Tanques" + where);
    }
  }

  void ChangeLevel() {
    const bool open = levels_.size() > 1;
    if (levels_.size() < 4 && (!open || Chance(2) == 0)) {
      workspace().BeginTrans();
      levels_.push_back(table());
    } else if (Chance(2) == 0) {
      workspace().CommitTrans();
      levels_.erase(levels_.end() - 2);
    } else {
      workspace().Rollback();
      levels_.pop_back();
    }
    for (Walk& walk : walks_) walk.story += " level=" + std::to_string(levels_.size() - 1);
  }

  void Compare() {
    for (const Walk& walk : walks_) {
      if (!walk.rows) continue;
      ASSERT_EQ(walk.rows->AtEnd(), walk.model->AtEnd()) << walk.story;
      ASSERT_EQ(walk.rows->AtStart(), walk.model->AtStart()) << walk.story;
      Variant number;
      Variant litres;
      const int error = ErrorOf([&] {
        number = walk.rows->Value(0);
        litres = walk.rows->Value(1);
      });
      ASSERT_EQ(error, walk.model->Error()) << walk.story;
      if (error != 0) continue;
      ASSERT_EQ(number, Variant(int32_t{walk.model->current().number})) << walk.story;
      ASSERT_EQ(litres, Variant(int32_t{walk.model->current().litres})) << walk.story;
    }
  }

  void Step() {
    const int what = Chance(20);
    if (what < 3) return Open();
    if (what < 15) return Move();
    if (what == 15) return ChangeLevel();
    if (what == 16) return walks_[static_cast<size_t>(Chance(kWalks))].rows.reset();
    // Others have to wait until an open transaction ends.
    const bool by_others = levels_.size() == 1 && Chance(2) == 0;
    for (Walk& walk : walks_) walk.story += by_others ? " others-write" : " write";
    Write(by_others ? *others_ : *database_);
  }

  static constexpr int kWalks = 3;
  struct Walk {
    std::unique_ptr<dao::Recordset> rows;
    std::optional<Model> model;
    std::string story;
  };

  DatabasePtr database_;
  std::shared_ptr<dao::DBEngine> other_ = OtherEngine();
  DatabasePtr others_;
  std::mt19937 random_;
  std::vector<Table> levels_ = {Table()};  // before each open level, and now
  int last_number_ = 0;
  std::array<Walk, kWalks> walks_;
};

TEST_F(RandomWalk, AgreesWithSetsReadAtTheOpening) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    random_.seed(seed);
    for (int step = 0; step < 150; ++step) {
      Step();
      if (!HasFatalFailure()) Compare();
      ASSERT_FALSE(HasFatalFailure()) << "seed " << seed << ", step " << step;
    }
    while (levels_.size() > 1) ChangeLevel();
  }
}

}  // namespace
}  // namespace ambrelio::embedded
