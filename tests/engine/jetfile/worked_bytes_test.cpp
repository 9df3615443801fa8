// Structures that were taken apart by hand, byte by byte.
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/hex.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint32_t kAcesPage = 3;

class WorkedBytes : public testing::Test {
 protected:
  JetFile file_ = ReadFromDisk(SamplePath("adox_jet4"));
};

TEST_F(WorkedBytes, DefinitionOfMSysACEs) {
  const TableDefinition table = ReadDefinition(file_, kAcesPage);
  EXPECT_EQ(table.length, 335);
  EXPECT_EQ(table.free_bytes, 0x0EA9);
  EXPECT_EQ(table.marker, 1625);
  EXPECT_EQ(table.row_count, 16);
  EXPECT_EQ(table.increment, 1);
  EXPECT_EQ(table.kind, TableDefinition::kSystemTable);
  EXPECT_EQ(table.column_mark, 4);
  EXPECT_EQ(table.variable_mark, 1);
  EXPECT_EQ(table.owned_map, (RowPointer{6, 0x12}));
  EXPECT_EQ(table.free_space_map, (RowPointer{6, 0x13}));
  ASSERT_EQ(table.columns.size(), 4);
  EXPECT_EQ(table.columns[0].name, "ACM");
  EXPECT_EQ(table.columns[0].number, 2);
  EXPECT_EQ(table.columns[0].fixed_offset, 4);
  EXPECT_EQ(table.columns[1].name, "FInheritable");
  EXPECT_EQ(table.columns[1].type, ColumnType::kBoolean);
  EXPECT_EQ(table.columns[2].name, "ObjectId");
  EXPECT_EQ(table.columns[2].flags, 0x13);
  EXPECT_EQ(table.columns[3].name, "SID");
  EXPECT_EQ(table.columns[3].flags, 0x32);
  EXPECT_EQ(table.columns[3].length, 510);
  ASSERT_EQ(table.indexes.size(), 1);
  EXPECT_EQ(table.indexes[0].distinct_keys, 8);
  EXPECT_EQ(table.indexes[0].map, (RowPointer{6, 0x14}));
  EXPECT_EQ(table.indexes[0].root, 9);
  EXPECT_EQ(table.indexes[0].flags, 0x88);
  ASSERT_EQ(table.indexes[0].Columns().size(), 1);
  EXPECT_TRUE(table.indexes[0].Columns()[0].ascending());
  ASSERT_EQ(table.index_names.size(), 1);
  EXPECT_EQ(table.index_names[0].name, "ObjectId");
  EXPECT_EQ(table.index_names[0].other_number, 0xFFFFFFFF);
  EXPECT_EQ(table.index_names[0].on_update, 4);
  EXPECT_TRUE(table.long_values.empty());
}

TEST_F(WorkedBytes, FirstRowOfMSysACEs) {
  const DataPage page(file_.Read(15), 15, file_.format());
  EXPECT_EQ(ToHex(page.Row(0).bytes()), "04 00 02 00 00 00 00 00 06 00 64 8B 0C 00 0A 00 01 00 07");
  const TableDefinition table = ReadDefinition(file_, kAcesPage);
  TableReader reader(file_, table);
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.identity(), (RowPointer{15, 0}));
  EXPECT_EQ(reader.Value(*table.FindColumn("ObjectId")), Variant(int32_t{2}));
  EXPECT_EQ(reader.Value(*table.FindColumn("ACM")), Variant(int32_t{0x60000}));
  EXPECT_EQ(reader.Value(*table.FindColumn("SID")), Variant("\x64\x8B"));
  EXPECT_EQ(reader.Value(*table.FindColumn("FInheritable")), Variant(false));
}

TEST_F(WorkedBytes, FirstRowOfMSysObjects) {
  const TableDefinition table = ReadDefinition(file_, kObjectsPage);
  TableReader reader(file_, table);
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Value(*table.FindColumn("Id")), Variant(int32_t{0x0F000001}));
  EXPECT_EQ(reader.Value(*table.FindColumn("Name")), Variant("Tables"));
  EXPECT_EQ(reader.Value(*table.FindColumn("Type")), Variant(int16_t{3}));
  EXPECT_EQ(reader.Value(*table.FindColumn("Owner")), Variant("\x65\x89"));
  for (const char* column : {"Database", "Connect", "Lv", "LvProp", "LvExtra"}) {
    EXPECT_TRUE(reader.Value(*table.FindColumn(column)).is_null()) << column;
  }
}

TEST_F(WorkedBytes, LeafOfTheIndexOfMSysACEs) {
  const IndexPage page = ReadIndexPage(file_, 9);
  EXPECT_TRUE(page.leaf);
  EXPECT_EQ(page.free_bytes, 0x0D90);
  EXPECT_EQ(page.table, kAcesPage);
  ASSERT_EQ(page.entries.size(), 16);
  EXPECT_EQ(ToHex(page.entries[0]), "7F 80 00 00 02 00 00 0F 00");
  EXPECT_EQ(page.EntryAt(0).row, (RowPointer{15, 0}));
}

TEST_F(WorkedBytes, PagesOfANewDatabase) {
  EXPECT_EQ(file_.page_count(), 16);
  EXPECT_EQ(file_.header().system_tables, (std::array<uint32_t, 4>{2, 3, 4, 5}));
  EXPECT_EQ(file_.header().code_page, 1252);
  EXPECT_EQ(file_.header().language, 0x0409);
  const TableDefinition objects = ReadDefinition(file_, kObjectsPage);
  EXPECT_EQ(ReadUsageMap(file_, objects.owned_map).pages, std::vector<uint32_t>{14});
  const UsageMap free = ReadUsageMap(file_, file_.header().free_map);
  EXPECT_TRUE(free.pages.empty());
  EXPECT_EQ(free.beyond_end, 512 - 16);
}

TEST(WorkedTree, OfTwoLevels) {
  const JetFile file = ReadFromDisk(SamplePath("compIndexTestV2000"));
  const IndexPage root = ReadIndexPage(file, 29);
  EXPECT_FALSE(root.leaf);
  EXPECT_EQ(root.Children(), (std::vector<uint32_t>{32, 33}));
  const IndexPage first = ReadIndexPage(file, 32);
  EXPECT_EQ(first.entries.size(), 510);
  EXPECT_EQ(first.prefix, 3);
  EXPECT_EQ(first.next, 33);
  const IndexPage last = ReadIndexPage(file, 33);
  EXPECT_EQ(last.entries.size(), 2);
  EXPECT_EQ(last.previous, 32);
  EXPECT_EQ(ToHex(root.BoundAt(0)), ToHex(first.entries.back()));
}

}  // namespace
}  // namespace ambrelio::jetfile
