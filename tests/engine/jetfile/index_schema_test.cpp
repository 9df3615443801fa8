#include "ambrelio/engine/jetfile/index_schema.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/general_order.h"
#include "ambrelio/engine/jetfile/table_schema.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/schema_test.h"

namespace ambrelio::jetfile {
namespace {

using enum ColumnType;

uint32_t TableOfRows(JetFile& file, int32_t rows) {
  const uint32_t table = CreateTable(
      file, "T", {Column("n", kLong), Column("t", kText, 100), Column("d", kDouble)}, {}, kNow);
  std::vector<std::vector<Variant>> values;
  for (int32_t i = 0; i < rows; ++i) {
    values.push_back(
        {i % 10 == 9 ? kNull : Variant(i), "Ñandú " + std::to_string(i % 13), i / 3.0});
  }
  AddRows(file, table, values);
  return table;
}

int Refused(JetFile& file, uint32_t table, const NewIndex& index) {
  return jetfile::Refused(file, [&] { CreateIndex(file, table, index, kNow); });
}

TEST(CreateIndex, OverTheRowsOfATable) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, 5000);
  NewIndex nulls = IndexOver("sin nulos", {"n"});
  nulls.ignore_nulls = true;
  NewIndex down = Unique(IndexOver("abajo", {"d", "t"}));
  down.columns[0].second = false;
  for (const NewIndex& index :
       {IndexOver("Texto-1", {"t"}), nulls, down, Primary(IndexOver("d", {"d"}))}) {
    CreateIndex(file, table, index, kNow);
    ASSERT_EQ(CheckText(file), "") << index.name;
  }
  const TableDefinition definition = ReadDefinition(file, table);
  EXPECT_EQ(definition.indexes[0].entries_at_compact, 5000U);
  EXPECT_EQ(definition.indexes[0].distinct_keys, 13U);
  EXPECT_EQ(definition.indexes[1].entries_at_compact, 4500U);
  EXPECT_GT(ReadUsageMap(file, definition.indexes[2].map).pages.size(), 10U);
  EXPECT_TRUE(definition.indexes[3].unique() && definition.indexes[3].required());
  AddRows(file, table, {{7, "otro", -1.0}});
  EXPECT_EQ(CheckText(file), "");
}

TEST(CreateIndex, RefusesRowsThatBreakIt) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, 50);
  EXPECT_EQ(Refused(file, table, Unique(IndexOver("i", {"t"}))), kDuplicateKey);
  EXPECT_EQ(Refused(file, table, Primary(IndexOver("i", {"n"}))), kNullInKey);
  NewIndex required = IndexOver("i", {"d", "n"});
  required.required = true;
  EXPECT_EQ(Refused(file, table, required), kNullInKey);
  // Nulls are no duplicates of each other.
  CreateIndex(file, table, Unique(IndexOver("i", {"n"})), kNow);
  EXPECT_EQ(Refused(file, table, IndexOver("I", {"t"})), kIndexExists);
  AddRows(file, table, {{1000, "русский", 0.0}});
  EXPECT_EQ(Refused(file, table, IndexOver("j", {"t"})), kNotSupported);
  EXPECT_EQ(CheckText(file), "");
}

// Case makes no difference to a key, accents do.
TEST(CreateIndex, ComparesTextsAsTheirKeysDo) {
  for (const auto& [other, error] : std::map<std::string, int>{
           {"ACEITUNA", kDuplicateKey}, {"aceitúna", 0}, {"aceituna ", kDuplicateKey}}) {
    JetFile file = NewJet();
    const uint32_t table = CreateTable(file, "T", {Column("t", kText, 20)}, {}, kNow);
    AddRows(file, table, {{"aceituna"}, {other}});
    EXPECT_EQ(test::ErrorOf([&] { CreateIndex(file, table, Unique(IndexOver("i", {"t"})), kNow); }),
              error);
    EXPECT_EQ(CheckText(file), "");
  }
}

TEST(CreateIndex, RefusesTextsOfAnUnknownLanguage) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, 0);
  Bytes page = *file.Read(table);
  const TableDefinition definition = ReadDefinition(file, table);
  const auto text = static_cast<size_t>(definition.FindColumn("t") - definition.columns.data());
  Put(page, 63 + 25 * text + 11, 0x0419, 2);
  file.Write(table, page);
  EXPECT_EQ(Refused(file, table, IndexOver("i", {"t"})), kNotSupported);
}

TEST(DropIndex, GivesItsPagesBack) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, 3000);
  CreateIndex(file, table, IndexOver("a", {"n"}), kNow);
  const auto free = [&] { return ReadUsageMap(file, file.header().free_map).pages.size(); };
  const size_t before = free();
  CreateIndex(file, table, IndexOver("b", {"t"}), kNow);
  CreateIndex(file, table, IndexOver("c", {"d"}), kNow);
  const Bytes last = Bytes(*file.Read(ReadDefinition(file, table).indexes[2].root));
  DropIndex(file, table, "B", kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_EQ(*file.Read(ReadDefinition(file, table).indexes[1].root), last);
  DropIndex(file, table, "c", kNow);
  DropIndex(file, table, "a", kNow);
  EXPECT_EQ(CheckText(file), "");
  EXPECT_GT(free(), before);
  EXPECT_TRUE(ReadDefinition(file, table).indexes.empty());
}

TEST(DropIndex, LeavesATreeThatAnotherNameUses) {
  JetFile file = CopyOf("indexTestV2000");
  for (const auto& table : UserTables(file)) {
    const uint32_t page = table.second;
    const TableDefinition before = ReadDefinition(file, page);
    for (const IndexName& index : before.index_names) {
      if (index.side != 0) {
        EXPECT_EQ(jetfile::Refused(file, [&] { DropIndex(file, page, index.name, kNow); }),
                  kInRelationship);
        continue;
      }
      const auto users =
          std::count_if(before.index_names.begin(), before.index_names.end(),
                        [&index](const IndexName& other) { return other.index == index.index; });
      JetFile copy = CopyOf("indexTestV2000");
      DropIndex(copy, page, index.name, kNow);
      const TableDefinition after = ReadDefinition(copy, page);
      EXPECT_EQ(after.indexes.size(), before.indexes.size() - (users == 1 ? 1 : 0));
      EXPECT_EQ(after.index_names.size(), before.index_names.size() - 1);
      ASSERT_EQ(CheckText(copy), "") << table.first << '.' << index.name;
    }
  }
}

TEST(DropIndex, RefusesOneThatIsNotThere) {
  JetFile file = NewJet();
  const uint32_t table = TableOfRows(file, 1);
  EXPECT_EQ(jetfile::Refused(file, [&] { DropIndex(file, table, "i", kNow); }), kNotInCollection);
}

// The order in which new names take their place is that of the original engine's files.
TEST(IndexNames, StandInTheOrderOfTexts) {
  for (const Sample& sample : Samples()) {
    if (!sample.jet4) continue;
    const JetFile file = OpenSample(sample);
    for (const CatalogueObject& object : ReadCatalogue(file).objects) {
      if (object.type != ObjectType::kTable) continue;
      Bytes before;
      for (const IndexName& name : ReadDefinition(file, object.definition_page()).index_names) {
        const auto key = GeneralOrderKey(name.name, TextOrder::kGeneral);
        ASSERT_TRUE(key.has_value());
        EXPECT_LE(before, *key) << sample << ": " << object.name << '.' << name.name;
        before = *key;
      }
    }
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
