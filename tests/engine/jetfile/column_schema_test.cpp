#include "ambrelio/engine/jetfile/column_schema.h"

#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/column_rules.h"
#include "ambrelio/engine/jetfile/index_schema.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;

using Rows = std::vector<std::vector<Variant>>;

std::vector<std::string> NamesOf(const JetFile& file, uint32_t table) {
  std::vector<std::string> names;
  for (const auto& column : ReadDefinition(file, table).columns) names.push_back(column.name);
  return names;
}

uint16_t NumberOf(const JetFile& file, uint32_t table, const char* column) {
  return ReadDefinition(file, table).FindColumn(column)->number;
}

uint32_t TableOfTwoRows(JetFile& file) {
  const uint32_t table = CreateTable(
      file, "T", {Column("n", kLong), Column("t", kText, 20), Column("m", kMemo)}, {}, kNow);
  AddRows(file, table, {{1, "uno", "memo"}, {2, kNull, kNull}});
  return table;
}

TEST(AddColumn, OfEveryTypeLeavesTheRowsAsTheyAre) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  const UsageMap pages = ReadUsageMap(file, ReadDefinition(file, table).owned_map);
  const Bytes rows = *file.Read(pages.pages.front());
  uint16_t number = 3;
  for (const ColumnType type : {kBoolean, kByte, kInteger, kLong, kMoney, kSingle, kDouble, kDate,
                                kBinary, kText, kOle, kMemo, kGuid}) {
    const auto name = "columna " + std::to_string(number);
    const uint16_t length = type == kText || type == kBinary ? 50 : 0;
    EXPECT_EQ(AddColumn(file, table, Column(name, type, length), kNow), number++);
    ASSERT_EQ(CheckText(file), "") << name;
  }
  EXPECT_EQ(*file.Read(pages.pages.front()), rows);
  Rows expected = {{1, "uno", "memo"}, {2, kNull, kNull}};
  for (auto& row : expected) {
    row.resize(16, kNull);
    row[3] = false;
  }
  EXPECT_EQ(RowsOf(file, table), expected);
  RandomValues random(7);
  AddRows(file, table, {random.Row(ReadDefinition(file, table))});
  EXPECT_EQ(CheckText(file), "");
}

TEST(AddColumn, PutsItAtTheEndOrWhereItIsWished) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  NewColumn column = Column("b", kLong);
  column.ordinal = 1;
  AddColumn(file, table, column, kNow);
  AddColumn(file, table, Column("z", kLong), kNow);
  EXPECT_EQ(NamesOf(file, table), (std::vector<std::string>{"n", "b", "t", "m", "z"}));
}

// A row without a place for variable columns could not be told from one with it, once the first
// variable column has gone again.
TEST(AddColumn, GivesRowsAPlaceForTheirFirstVariableColumn) {
  JetFile file = NewJet();
  const uint32_t table =
      CreateTable(file, "T", {Column("n", kLong), Column("b", kBoolean)}, {}, kNow);
  Rows rows;
  for (int32_t i = 0; i < 600; ++i) rows.push_back({i % 7 == 0 ? kNull : Variant(i), i % 2 == 0});
  AddRows(file, table, rows);
  const uint16_t text = AddColumn(file, table, Column("t", kText, 10), kNow);
  ASSERT_EQ(CheckText(file), "");
  DropColumn(file, table, text, kNow);
  ASSERT_EQ(CheckText(file), "");
  EXPECT_EQ(RowsOf(file, table), rows);
}

TEST(AddColumn, CountsTheRowsInAnAutonumber) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  NewColumn counter = Column("id", kLong);
  counter.autonumber = true;
  AddColumn(file, table, counter, kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(RowsOf(file, table), (Rows{{1, "uno", "memo", 1}, {2, kNull, kNull, 2}}));
  EXPECT_EQ(ReadDefinition(file, table).last_autonumber, 2U);
  CreateIndex(file, table, Primary(IndexOver("id", {"id"})), kNow);
  EXPECT_EQ(CheckText(file), "");
}

// As does the language of the whole file, where keys can be made of it.
TEST(AddColumn, GivesTextsTheOrderOfTheFile) {
  for (const auto& [language, expected] : std::map<uint16_t, uint16_t>{
           {0x0409, 0x0409}, {0x0C0A, 0x0C0A}, {0x040A, 0x040A}, {0x0419, 0x0409}}) {
    JetFile file = NewJet();
    const uint32_t table = TableOfTwoRows(file);
    Bytes header = *file.Read(0);
    MaskHeader(header, kJet4);
    Put(header, 0x6E, language, 2);
    MaskHeader(header, kJet4);
    file.Write(0, header);
    AddColumn(file, table, Column("ñ", kText, 20), kNow);
    EXPECT_EQ(ReadDefinition(file, table).FindColumn("ñ")->collation, expected);
  }
}

TEST(AddColumn, RefusesWhatDoesNotGo) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  const auto refused = [&](const NewColumn& column) {
    return Refused(file, [&] { AddColumn(file, table, column, kNow); });
  };
  EXPECT_EQ(refused(Column("N", kLong)), kFieldExists);
  EXPECT_EQ(refused(Column("a.b", kLong)), kInvalidName);
  EXPECT_EQ(refused(Column("x", kText, 300)), kInvalidFieldType);
  for (int i = 3; i < 255; ++i) {
    AddColumn(file, table, Column("c" + std::to_string(i), i % 2 == 0 ? kByte : kMemo), kNow);
  }
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(refused(Column("x", kLong)), kTooManyFields);
  // Numbers of dropped columns are not used again.
  DropColumn(file, table, 100, kNow);
  EXPECT_EQ(refused(Column("x", kLong)), kTooManyFields);
  EXPECT_EQ(CheckText(file), "");
}

TEST(DropColumn, LeavesTheOthersAndGivesBackItsLongValues) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  AddRows(file, table, {{3, "tres", std::string(50000, 'x')}});
  const auto free = [&] { return ReadUsageMap(file, file.header().free_map).pages.size(); };
  const size_t before = free();
  DropColumn(file, table, NumberOf(file, table, "m"), kNow);
  EXPECT_GE(free(), before + 20);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(RowsOf(file, table), (Rows{{1, "uno"}, {2, kNull}, {3, "tres"}}));
  DropColumn(file, table, NumberOf(file, table, "n"), kNow);
  EXPECT_EQ(RowsOf(file, table), (Rows{{"uno"}, {kNull}, {"tres"}}));
  EXPECT_EQ(AddColumn(file, table, Column("n", kLong), kNow), 3);
  AddRows(file, table, {{"cuatro", 4}});
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(RowsOf(file, table),
            (Rows{{"uno", kNull}, {kNull, kNull}, {"tres", kNull}, {"cuatro", 4}}));
}

TEST(DropColumn, TakesItsPropertiesAlong) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  SetRules(file, table, {{"t", {true, true, "'x'"}}}, kNow);
  SetRules(file, table, {{"n", {true, false, ""}}}, kNow);
  DropColumn(file, table, NumberOf(file, table, "t"), kNow);
  AddColumn(file, table, Column("T", kText, 5), kNow);
  EXPECT_FALSE(ReadRules(file, table, "t").required);
  EXPECT_EQ(ReadRules(file, table, "t").default_value, "");
  EXPECT_TRUE(ReadRules(file, table, "n").required);
  EXPECT_EQ(CheckText(file), "");
}

TEST(DropColumn, RefusesOneThatIsNeeded) {
  JetFile file = NewJet();
  const uint32_t table = CreateTable(file, "T", {Column("n", kLong), Column("m", kLong)},
                                     {IndexOver("i", {"n"})}, kNow);
  const auto refused = [&](uint16_t number) {
    return Refused(file, [&] { DropColumn(file, table, number, kNow); });
  };
  EXPECT_EQ(refused(0), kFieldInIndex);
  EXPECT_EQ(refused(7), kNotInCollection);
  DropIndex(file, table, "i", kNow);
  DropColumn(file, table, 0, kNow);
  EXPECT_EQ(refused(1), kNothingDefined);
  EXPECT_EQ(CheckText(file), "");
}

TEST(DropColumn, RefusesOneInARelationship) {
  JetFile file = CopyOf("indexTestV2000");
  for (const RelationshipColumn& row : UserRelationships(file)) {
    const uint32_t table = PageOfTable(file, row.table);
    const uint16_t number = NumberOf(file, table, row.column.c_str());
    const int error = Refused(file, [&] { DropColumn(file, table, number, kNow); });
    EXPECT_TRUE(error == kInRelationship || error == kFieldInIndex) << error;
  }
}

TEST(ChangeColumn, RenamesAndMovesIt) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  const Rows rows = RowsOf(file, table);
  SetRules(file, table, {{"t", {true, false, "'á'"}}}, kNow);
  ChangeColumn(file, table, NumberOf(file, table, "t"), "Año-1", 1, kNow);
  EXPECT_EQ(NamesOf(file, table), (std::vector<std::string>{"n", "Año-1", "m"}));
  EXPECT_EQ(RowsOf(file, table), rows);
  EXPECT_TRUE(ReadRules(file, table, "año-1").required);
  EXPECT_EQ(ReadRules(file, table, "Año-1").default_value, "'á'");
  ChangeColumn(file, table, NumberOf(file, table, "n"), "N", 9, kNow);
  EXPECT_EQ(NamesOf(file, table), (std::vector<std::string>{"Año-1", "m", "N"}));
  EXPECT_EQ(RowsOf(file, table), (Rows{{"uno", "memo", 1}, {kNull, kNull, 2}}));
  EXPECT_EQ(CheckText(file), "");
}

TEST(ChangeColumn, TakesItsRelationshipsAlong) {
  JetFile file = CopyOf("indexTestV2000");
  const RelationshipColumn old = UserRelationships(file).front();
  const uint32_t table = PageOfTable(file, old.table);
  const auto* column = ReadDefinition(file, table).FindColumn(old.column);
  ASSERT_NE(column, nullptr);
  ChangeColumn(file, table, NumberOf(file, table, old.column.c_str()), "otro nombre", 0, kNow);
  EXPECT_EQ(UserRelationships(file).front().column, "otro nombre");
  EXPECT_EQ(CheckText(file), "");
}

TEST(ChangeColumn, RefusesANameThatIsTakenOrBad) {
  JetFile file = NewJet();
  const uint32_t table = TableOfTwoRows(file);
  const auto refused = [&](uint16_t number, const char* name) {
    return Refused(file, [&] { ChangeColumn(file, table, number, name, 0, kNow); });
  };
  EXPECT_EQ(refused(0, "T"), kFieldExists);
  EXPECT_EQ(refused(0, "a!"), kInvalidName);
  EXPECT_EQ(refused(9, "x"), kNotInCollection);
  const auto before = file.changes();
  ChangeColumn(file, table, 0, "n", 0, kNow);
  EXPECT_TRUE(file.changes() == before);
}

// A definition that all but fills its pages, or goes beyond them, byte by byte.
TEST(ChangeColumn, MovesADefinitionAcrossTheEndOfItsPage) {
  JetFile file = NewJet();
  std::vector<NewColumn> columns;
  for (int i = 0; i < 24; ++i)
    columns.push_back(Column(std::string(60, 'x') + std::to_string(i), kLong));
  for (int i = 0; i < 6; ++i) columns.push_back(Column("n" + std::to_string(i), kMemo));
  const uint32_t table = CreateTable(file, "T", columns, {}, kNow);
  std::set<size_t> pages;
  std::set<uint32_t> lengths;
  for (uint16_t number = 24; number < 27; ++number) {
    for (size_t size = 1; size <= 64; ++size) {
      const std::string name(size, static_cast<char>('a' + number - 24));
      ChangeColumn(file, table, number, name, number, kNow);
      const TableDefinition definition = ReadDefinition(file, table);
      pages.insert(definition.pages.size());
      lengths.insert(definition.length);
      ASSERT_EQ(CheckText(file), "") << definition.length;
    }
  }
  EXPECT_EQ(pages, (std::set<size_t>{1, 2}));
  EXPECT_TRUE(lengths.contains(4088) || lengths.contains(4087));
  EXPECT_TRUE(lengths.contains(4090) || lengths.contains(4091));
}

}  // namespace
}  // namespace ambrelio::jetfile
