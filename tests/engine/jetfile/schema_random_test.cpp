// The schema of every sample and of a new file changed at random beside a model, with rows written
// in between, and the file checked as a whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/column_schema.h"
#include "ambrelio/engine/jetfile/index_schema.h"
#include "ambrelio/engine/jetfile/query_schema.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

// The values of a row by the numbers of their columns.
using ModelRow = std::map<uint16_t, Variant>;

struct ModelTable {
  std::string name;
  std::map<uint16_t, std::string> columns;
  std::set<std::string> indexes;
  std::map<RowPointer, ModelRow> rows;
};

class RandomSchema {
 public:
  RandomSchema(JetFile& file, uint32_t seed) : file_(file), random_(seed) {
    for (const auto& [name, page] : UserTables(file)) tables_[page] = ReadTable(name, page);
    queries_ = QueryNames();
  }

  // One change, which may be refused and then changes nothing.
  void Step() {
    const auto before = file_.changes();
    const uint32_t table = tables_.empty() ? 0 : AnyTable();
    const auto others = PagesOfOthers(file_, table);
    const int error = test::ErrorOf([&] { Change(random_.Below(11), table); });
    EXPECT_TRUE(error == 0 || file_.changes() == before) << error;
    for (const auto& [number, page] : others) EXPECT_EQ(file_.Read(number), page) << number;
    done_ += error == 0 ? 1 : 0;
  }

  void ExpectModel() const {
    const auto tables = UserTables(file_);
    EXPECT_EQ(tables.size(), tables_.size());
    for (const auto& [page, expected] : tables_) {
      ASSERT_TRUE(tables.contains(expected.name)) << expected.name;
      const ModelTable table = ReadTable(expected.name, page);
      EXPECT_EQ(table.columns, expected.columns) << expected.name;
      EXPECT_EQ(table.indexes, expected.indexes) << expected.name;
      EXPECT_EQ(table.rows, expected.rows) << expected.name;
    }
    EXPECT_EQ(QueryNames(), queries_);
  }

  size_t done() const { return done_; }

 private:
  std::set<std::string> QueryNames() const {
    std::set<std::string> names;
    const Catalogue catalogue = ReadCatalogue(file_);
    for (const auto* query : catalogue.UserObjects(ObjectType::kQuery)) names.insert(query->name);
    return names;
  }

  ModelTable ReadTable(const std::string& name, uint32_t page) const {
    ModelTable table;
    table.name = name;
    const TableDefinition definition = ReadDefinition(file_, page);
    for (const ColumnDefinition& column : definition.columns) {
      table.columns[column.number] = column.name;
    }
    for (const IndexName& index : definition.index_names) table.indexes.insert(index.name);
    for (const auto& [pointer, values] : ReadRows(file_, page)) {
      for (size_t i = 0; i < values.size(); ++i) {
        table.rows[pointer][definition.columns[i].number] = values[i];
      }
    }
    return table;
  }

  uint32_t AnyTable() {
    return std::next(tables_.begin(), static_cast<std::ptrdiff_t>(random_.Below(tables_.size())))
        ->first;
  }
  ColumnDefinition AnyColumn(uint32_t table) {
    const auto columns = ReadDefinition(file_, table).columns;
    return columns[random_.Below(columns.size())];
  }

  std::string Name() {
    constexpr auto kPieces = std::to_array<const char*>(
        {"a", "Ñ", "ç", "é", "Straße", "-", "'", " x", "7", "Órgano", "Q", "zz"});
    std::string name = "n";
    for (size_t i = random_.Below(4) + 1; i > 0; --i)
      name += kPieces[random_.Below(kPieces.size())];
    return name;
  }
  NewColumn AnyNewColumn() {
    constexpr auto kTypes = std::to_array<ColumnType>(
        {ColumnType::kBoolean, ColumnType::kByte, ColumnType::kInteger, ColumnType::kLong,
         ColumnType::kMoney, ColumnType::kDouble, ColumnType::kDate, ColumnType::kBinary,
         ColumnType::kText, ColumnType::kText, ColumnType::kOle, ColumnType::kMemo,
         ColumnType::kGuid});
    NewColumn column = Column(Name(), kTypes[random_.Below(kTypes.size())]);
    const bool sized = column.type == ColumnType::kText || column.type == ColumnType::kBinary;
    if (sized) column.length = static_cast<uint16_t>(random_.Below(80) + 1);
    if (random_.OneIn(3)) column.ordinal = static_cast<uint16_t>(random_.Below(9));
    return column;
  }
  NewIndex AnyNewIndex(uint32_t table) {
    NewIndex index = IndexOver(Name(), {});
    for (size_t i = random_.Below(3) + 1; i > 0; --i) {
      index.columns.emplace_back(AnyColumn(table).name, !random_.OneIn(4));
    }
    index.unique = random_.OneIn(4);
    index.ignore_nulls = random_.OneIn(4);
    index.required = random_.OneIn(8);
    index.primary = random_.OneIn(8);
    return index;
  }

  void Change(size_t kind, uint32_t table) {
    if (kind == 0 || tables_.empty()) return Create();
    switch (kind) {
      case 1:
        return random_.OneIn(3) ? Drop(table) : WriteRows(table);
      case 2:
        return Rename(table);
      case 3:
        return Add(table);
      case 4:
        return DropAColumn(table);
      case 5:
        return ChangeAColumn(table);
      case 6:
        return AddAnIndex(table);
      case 7:
        return DropAnIndex(table);
      case 8:
        return SetRules(
            file_, table,
            {{AnyColumn(table).name,
              {random_.OneIn(2), random_.OneIn(2), std::string(random_.Below(200), 'd')}}},
            kNow);
      case 9:
        return ChangeQueries();
      default:
        return WriteRows(table);
    }
  }

  void Create() {
    std::vector<NewColumn> columns;
    for (size_t i = random_.Below(9) + 1; i > 0; --i) columns.push_back(AnyNewColumn());
    const std::string name = Name();
    const uint32_t page = CreateTable(file_, name, columns, {}, kNow);
    tables_[page] = ReadTable(name, page);
    EXPECT_EQ(tables_[page].columns.size(), columns.size());
  }
  void Drop(uint32_t table) {
    DropTable(file_, table);
    tables_.erase(table);
  }
  void Rename(uint32_t table) {
    const std::string name = Name();
    RenameTable(file_, table, name, kNow);
    tables_[table].name = name;
  }
  void Add(uint32_t table) {
    const NewColumn column = AnyNewColumn();
    const uint16_t number = AddColumn(file_, table, column, kNow);
    ModelTable& model = tables_[table];
    EXPECT_TRUE(model.columns.emplace(number, column.name).second);
    const bool flag = column.type == ColumnType::kBoolean;
    for (auto& [pointer, row] : model.rows) row[number] = flag ? Variant(false) : Variant::Null();
  }
  void DropAColumn(uint32_t table) {
    const uint16_t number = AnyColumn(table).number;
    DropColumn(file_, table, number, kNow);
    ModelTable& model = tables_[table];
    model.columns.erase(number);
    for (auto& [pointer, row] : model.rows) row.erase(number);
  }
  void ChangeAColumn(uint32_t table) {
    const uint16_t number = AnyColumn(table).number;
    const std::string name = Name();
    ChangeColumn(file_, table, number, name, static_cast<uint16_t>(random_.Below(9)), kNow);
    tables_[table].columns[number] = name;
  }
  void AddAnIndex(uint32_t table) {
    const NewIndex index = AnyNewIndex(table);
    CreateIndex(file_, table, index, kNow);
    tables_[table].indexes.insert(index.name);
  }
  void DropAnIndex(uint32_t table) {
    auto& indexes = tables_[table].indexes;
    if (indexes.empty()) return;
    const std::string name = *indexes.begin();
    DropIndex(file_, table, name, kNow);
    indexes.erase(name);
  }
  void ChangeQueries() {
    if (random_.OneIn(2) && !queries_.empty()) {
      const std::string name = *queries_.begin();
      DropQuery(file_, name);
      queries_.erase(name);
      return;
    }
    std::vector<QueryRow> parts(1);
    parts[0].part = QueryPart::kWhere;
    parts[0].expression = std::string(random_.Below(300), 'w');
    const std::string name = Name();
    CreateQuery(file_, name, parts, kNow);
    queries_.insert(name);
  }
  void WriteRows(uint32_t table) {
    const TableDefinition definition = ReadDefinition(file_, table);
    TableWriter writer(file_, table);
    TableChanges changes;
    for (const auto& [pointer, row] : tables_[table].rows) {
      if (random_.OneIn(10)) {
        changes.deleted.push_back(pointer);
      } else if (random_.OneIn(10)) {
        changes.updated.emplace_back(pointer, random_.Row(definition));
      }
    }
    for (size_t i = random_.Below(8); i > 0; --i)
      changes.inserted.push_back(random_.Row(definition));
    writer.Apply(changes);
    writer.Finish();
    tables_[table].rows = ReadTable("", table).rows;
  }

  JetFile& file_;
  RandomValues random_;
  std::map<uint32_t, ModelTable> tables_;
  std::set<std::string> queries_;
  size_t done_ = 0;
};

class RandomSchemas : public testing::TestWithParam<Sample> {};

std::vector<Sample> FilesToChange() {
  std::vector<Sample> files = Samples();
  std::erase_if(files, [](const Sample& sample) { return !sample.jet4; });
  files.push_back({"new"});
  return files;
}

INSTANTIATE_TEST_SUITE_P(Files, RandomSchemas, testing::ValuesIn(FilesToChange()),
                         [](const auto& sample) { return TestName(sample.param); });

constexpr size_t kSchemaRounds = 5;
constexpr size_t kSteps = 16;

TEST_P(RandomSchemas, LeaveASoundFileThatHoldsWhatTheModelHolds) {
  const std::string name = GetParam().name;
  const Bytes bytes = name == "new" ? NewFile("", kNow) : SampleBytes(name);
  JetFile file = JetFile::FromBytes(bytes, GetParam().password);
  const std::string found = CheckText(file);
  RandomSchema schema(file, 4711);
  for (size_t round = 0; round < kSchemaRounds; ++round) {
    for (size_t step = 0; step < kSteps; ++step) {
      schema.Step();
      ASSERT_FALSE(HasFailure()) << "round " << round << ", step " << step;
    }
    ASSERT_EQ(CheckText(file), found);
    schema.ExpectModel();
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(schema.done(), kSchemaRounds * kSteps / 2);
  // What is on the disk is read again as it is.
  const JetFile again = JetFile::FromBytes(StoredBytes(file), GetParam().password);
  EXPECT_EQ(CheckText(again), found);
}

}  // namespace
}  // namespace ambrelio::jetfile
