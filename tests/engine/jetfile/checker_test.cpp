// Each rule of the checker, broken in a copy of a sound file.
#include "ambrelio/engine/jetfile/checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/stored_query.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;

// A copy of a sample, to break and to check. What it tells of the file is as the file was.
class Copy {
 public:
  explicit Copy(const std::string& name)
      : bytes_(SampleBytes(name)),
        file_(JetFile::FromBytes(bytes_, "")),
        catalogue_(ReadCatalogue(file_)) {}

  const JetFile& file() const { return file_; }
  const Catalogue& catalogue() const { return catalogue_; }
  Bytes& bytes() { return bytes_; }
  TableDefinition Table(const std::string& name) const {
    return ReadDefinition(file_, catalogue_.Find(ObjectType::kTable, name)->definition_page());
  }
  IndexPage IndexPageAt(uint32_t number) const { return ReadIndexPage(file_, number); }
  DataPage DataPageAt(uint32_t number) const {
    return DataPage(file_.Read(number), number, file_.format());
  }

  void Put(Place place, uint64_t number, size_t size) {
    jetfile::Put(bytes_, place.page * kJet4.page_size + place.offset, number, size);
  }
  void Flip(Place place, uint8_t bits) {
    bytes_[place.page * kJet4.page_size + place.offset] ^= bits;
  }
  // Turns the bit of a page in an inline map that starts at page 0.
  void FlipInMap(RowPointer map, uint32_t page) {
    const Place row = DataPageAt(map.page).Row(map.row).PlaceOf(5);
    Flip({row.page, row.offset + page / 8}, static_cast<uint8_t>(1U << (page % 8)));
  }

  // Puts another definition of the same length in the place of a table's, all on one page.
  void Replace(const TableDefinition& definition) {
    const Bytes bytes = SerialiseDefinition(file_, definition);
    std::copy(bytes.begin(), bytes.end(),
              bytes_.begin() + static_cast<std::ptrdiff_t>(definition.page() * kJet4.page_size));
  }

  std::vector<Finding> Findings() const { return Check(JetFile::FromBytes(bytes_, "")); }

 private:
  Bytes bytes_;
  JetFile file_;
  Catalogue catalogue_;
};

auto Finds(Rule rule, uint32_t page, const std::string& text) {
  return Contains(AllOf(Field(&Finding::rule, rule),
                        Field(&Finding::place, Field(&Place::page, page)),
                        Field(&Finding::text, HasSubstr(text))));
}

constexpr uint32_t kRightsPage = 3;  // the definition of MSysACEs in the new database
constexpr size_t kFirstColumn = 75;  // of its four, 25 bytes each

TEST(CheckFile, FindsAPieceOfAPage) {
  Copy copy("adox_jet4");
  copy.bytes().resize(copy.bytes().size() + 100);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kFile, 16, "100 bytes"));
}

TEST(CheckFile, FindsAUserInTheMiddleOfWriting) {
  Copy copy("adox_jet4");
  copy.Put({0, 0xE00 + 2 * 7}, 0, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kFile, 0, "user 7"));
}

TEST(CheckOwnership, FindsAUsedPageThatIsFree) {
  Copy copy("adox_jet4");
  copy.FlipInMap(copy.file().header().free_map, 14);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kOwnership, 14, "belongs to the free pages and to table MSysObjects"));
}

TEST(CheckOwnership, FindsAPageOfNobody) {
  Copy copy("indexTestV2000");
  const TableDefinition table = copy.Table("Table1");
  const uint32_t page = IndexTree(copy.file(), table.indexes[0]).Search({}).front().page;
  copy.FlipInMap(table.owned_map, page);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kOwnership, page, "belongs to nothing"));
}

TEST(CheckOwnership, FindsPagesBehindTheEnd) {
  Copy copy("adox_jet4");
  const RowPointer map = copy.Table("MSysObjects").owned_map;
  copy.FlipInMap(map, 100);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kOwnership, map.page, "behind the end of the file"));
}

TEST(CheckOwnership, FindsFreeSpaceOnAnothersPage) {
  Copy copy("adox_jet4");
  copy.FlipInMap(copy.Table("MSysObjects").free_space_map, 15);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kOwnership, 15, "does not own it"));
}

TEST(CheckDefinition, FindsAWrongType) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, 0}, 0x0108, 2);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kCatalogue, kRightsPage, "table definition is expected"));
}

TEST(CheckDefinition, FindsAWrongNumberOfFreeBytes) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, 2}, 5, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "5 bytes are free"));
}

TEST(CheckDefinition, FindsAWrongLength) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, 8}, 337, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "length"));
}

TEST(CheckDefinition, FindsAColumnBehindItsPlace) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, kFirstColumn + 9}, 8, 2);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kDefinition, kRightsPage, "FInheritable stands behind its place"));
}

TEST(CheckDefinition, FindsAnImpossibleNumber) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, kFirstColumn + 25 + 5}, 4, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "impossible number 4"));
}

TEST(CheckDefinition, FindsTwoColumnsOfOneNumber) {
  const auto found = Finds(Rule::kCatalogue, kRightsPage, "two columns have the number");
  int number_of_times = 0;
  for (const int number : {0, 1, 2, 3}) {  // of which one is the column's own
    Copy copy("adox_jet4");
    copy.Put({kRightsPage, kFirstColumn + 25 + 5}, number, 2);
    if (testing::Matches(found)(copy.Findings())) ++number_of_times;
  }
  EXPECT_EQ(number_of_times, 3);
}

TEST(CheckDefinition, FindsAnImpossibleVariableIndex) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, kFirstColumn + 3 * 25 + 7}, 1, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "variable index 1"));
}

TEST(CheckDefinition, FindsColumnsThatOverlap) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, kFirstColumn + 0x15}, 2, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "overlap"));
}

TEST(CheckDefinition, FindsTwoColumnsOfOneName) {
  Copy copy("indexTestV2000");
  const TableDefinition table = copy.Table("Table1");
  const DefinitionString string = ReadDefinitionString(copy.file(), table.page());
  const Bytes name = copy.file().PlainBytes("otherfk2");
  const auto found =
      std::search(string.bytes.begin(), string.bytes.end(), name.begin(), name.end());
  ASSERT_NE(found, string.bytes.end());
  copy.Put({table.page(), static_cast<size_t>(found - string.bytes.begin()) + 14}, '1', 1);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kDefinition, table.page(), "two columns are named otherfk1"));
}

TEST(CheckDefinition, FindsAnIndexOverNoColumn) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, 0xEB + 4}, 9, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "unknown column 9"));
}

TEST(CheckDefinition, FindsANameWithoutATree) {
  Copy copy("adox_jet4");
  copy.Put({kRightsPage, 0x11F + 8}, 1, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, kRightsPage, "ObjectId has no tree"));
}

TEST(CheckDefinition, FindsMapsOfAColumnWithoutLongValues) {
  Copy copy("adox_jet4");
  const TableDefinition table = copy.Table("MSysObjects");
  copy.Put({table.page(), table.length - 12}, 2, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, table.page(), "impossible column 2"));
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, table.page(), "no maps"));
}

TEST(CheckDataPage, FindsAWrongNumberOfFreeBytes) {
  Copy copy("adox_jet4");
  copy.Put({15, 2}, 5, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDataPage, 15, "5 free bytes"));
}

TEST(CheckDataPage, FindsAnotherOwner) {
  Copy copy("compIndexTestV2000");
  const TableDefinition table = copy.Table("Table1");
  TableReader reader(copy.file(), table);
  ASSERT_TRUE(reader.Next());
  copy.Put({reader.identity().page, 4}, 2, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDataPage, reader.identity().page, "is expected here"));
}

TEST(CheckDataPage, FindsARowOutsideItsPage) {
  Copy copy("compIndexTestV2000");
  const TableDefinition table = copy.Table("Table1");
  TableReader reader(copy.file(), table);
  ASSERT_TRUE(reader.Next());
  copy.Put({reader.identity().page, kJet4.slots_at}, 5, 2);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kDataPage, reader.identity().page, "does not lie within"));
}

class CheckMoves : public testing::Test {
 protected:
  CheckMoves() : table_(copy_.Table("Table1")), reader_(copy_.file(), table_) {
    while (reader_.Next() && reader_.identity() == reader_.body()) {
    }
  }
  Place HeadPlace() const {
    return copy_.DataPageAt(reader_.identity().page).Row(reader_.identity().row).PlaceOf(0);
  }

  Copy copy_{"overflowTestV2000"};
  TableDefinition table_;
  TableReader reader_;
};

TEST_F(CheckMoves, FindsARowThatMovedToNoMovedRow) {
  ASSERT_NE(reader_.identity(), reader_.body());
  const Place slot = copy_.DataPageAt(reader_.body().page).PlaceOfSlot(reader_.body().row);
  copy_.Flip({slot.page, slot.offset + 1}, 0x80);
  EXPECT_THAT(copy_.Findings(),
              Finds(Rule::kDataPage, reader_.identity().page, "which is no moved row"));
}

TEST_F(CheckMoves, FindsAMovedRowThatNothingPointsTo) {
  const Place slot = copy_.DataPageAt(reader_.identity().page).PlaceOfSlot(reader_.identity().row);
  copy_.Flip({slot.page, slot.offset + 1}, 0x80);  // the head is deleted
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kDataPage, reader_.body().page, "from nowhere"));
}

TEST(CheckRow, FindsOneThatIsTooShort) {
  Copy copy("adox_jet4");
  copy.Put(copy.DataPageAt(15).Row(0).PlaceOf(0), 900, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kCatalogue, 15, "shorter than the marks"));
}

TEST(CheckRow, FindsAVariableColumnOutsideIt) {
  Copy copy("pivot");
  const TableDefinition table = copy.Table("t_pivot");
  TableReader reader(copy.file(), table);
  ASSERT_TRUE(reader.Next());
  const ByteView row = copy.DataPageAt(reader.body().page).Row(reader.body().row);
  copy.Put(row.PlaceOf(row.size() - 1 - 4), 900, 2);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, row.PlaceOf(0).page, "variable column"));
}

// The first value of a kind in a table, and where its definition stands in the row.
struct FoundValue {
  LongValue value;
  Place definition;
};
FoundValue FindLongValue(const Copy& copy, const TableDefinition& table, LongValueKind kind) {
  TableReader reader(copy.file(), table);
  while (reader.Next()) {
    for (const ColumnDefinition& column : table.columns) {
      const auto bytes = column.long_value() ? reader.row().Value(column) : std::nullopt;
      if (!bytes || ParseLongValue(*bytes).kind != kind) continue;
      return {ReadLongValue(copy.file(), *bytes), bytes->PlaceOf(0)};
    }
  }
  ADD_FAILURE() << "there is no such value";
  return {};
}

TEST(CheckLongValue, FindsOneThatIsTooShort) {
  Copy copy("test2V2000");
  const auto found = FindLongValue(copy, copy.Table("MSP_PROJECTS"), LongValueKind::kOneRow);
  copy.Put(found.definition, 0x40000000 | (found.value.bytes.size() + 1), 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, found.value.rows.front().page, "a long value of"));
}

TEST(CheckLongValue, FindsAChainThatEnds) {
  Copy copy("test2V2000");
  const auto found = FindLongValue(copy, copy.Table("MSP_PROJECTS"), LongValueKind::kChain);
  const RowPointer first = found.value.rows.front();
  copy.Put(copy.DataPageAt(first.page).Row(first.row).PlaceOf(0), 0, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, first.page, "ends after"));
}

TEST(CheckLongValue, FindsAChainInACircle) {
  Copy copy("test2V2000");
  const auto found = FindLongValue(copy, copy.Table("MSP_PROJECTS"), LongValueKind::kChain);
  const RowPointer first = found.value.rows.front();
  copy.Put(copy.DataPageAt(first.page).Row(first.row).PlaceOf(0), RowPointerBits(first), 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, first.page, "in a circle"));
}

TEST(CheckLongValue, FindsAWrongStamp) {
  Copy copy("test2V2000");
  const auto found = FindLongValue(copy, copy.Table("MSP_PROJECTS"), LongValueKind::kChain);
  copy.Flip({found.definition.page, found.definition.offset + 8}, 1);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, found.definition.page, "stamp"));
}

TEST(CheckLongValue, FindsAPageThatIsNotItsColumns) {
  Copy copy("test2V2000");
  const TableDefinition table = copy.Table("MSP_PROJECTS");
  const auto found = FindLongValue(copy, table, LongValueKind::kOneRow);
  const uint32_t page = found.value.rows.front().page;
  for (const LongValueMaps& maps : table.long_values) {
    const auto pages = ReadUsageMap(copy.file(), maps.owned);
    if (pages.Contains(page)) copy.FlipInMap(maps.owned, page);
  }
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, found.definition.page, "its map does not have"));
}

TEST(CheckLongValue, FindsOneThatNobodyUses) {
  Copy copy("test2V2000");
  const auto found = FindLongValue(copy, copy.Table("MSP_PROJECTS"), LongValueKind::kOneRow);
  copy.Put(found.definition, 0x80000000, 4);  // inline, of no bytes
  EXPECT_THAT(copy.Findings(), Finds(Rule::kRow, found.value.rows.front().page, "used 0 times"));
}

TEST(CheckCount, FindsAWrongRowCount) {
  Copy copy("indexTestV2000");
  const uint32_t page = copy.Table("Table1").page();
  copy.Put({page, 0x10}, 99, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kCount, page, "has 4 rows and says 99"));
}

TEST(CheckCount, FindsAnAutonumberBehindItsColumn) {
  Copy copy("accessLike");
  const uint32_t page = copy.Table("t_like2").page();
  copy.Put({page, 0x14}, 0, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kCount, page, "says that the last is 0"));
}

// The index of a Long over two levels: a node, a full leaf, and one with two entries.
class CheckTree : public testing::Test {
 protected:
  static constexpr uint32_t kRoot = 29;
  static constexpr uint32_t kLeaf = 32;
  static constexpr uint32_t kLastLeaf = 33;

  Copy copy_{"compIndexTestV2000"};
};

TEST_F(CheckTree, FindsEntriesOutOfOrder) {
  copy_.Flip({kLastLeaf, kJet4.entries_at + 1}, 0xFF);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLastLeaf, "does not stand behind"));
}

TEST_F(CheckTree, FindsAKeyThatIsNotItsRows) {
  const TableDefinition table = copy_.Table("Table1");
  const IndexDefinition& index = *std::find_if(table.indexes.begin(), table.indexes.end(),
                                               [](const auto& i) { return i.root == kRoot; });
  TableReader reader(copy_.file(), table);
  ASSERT_TRUE(reader.Next());
  const auto value = reader.row().Value(*table.FindColumn(index.Columns()[0].column));
  copy_.Flip(value->PlaceOf(0), 0x01);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "the key is not that of row"));
}

TEST_F(CheckTree, FindsAnEntryOfNoRow) {
  const IndexPage page = copy_.IndexPageAt(kLastLeaf);
  copy_.Put({kLastLeaf, kJet4.entries_at + 2 * page.entries[0].size() - 1}, 0xFE, 1);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "has no entry"));
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "none of the table"));
}

TEST_F(CheckTree, FindsWrongLinks) {
  copy_.Put({kLeaf, 16}, 31, 4);
  copy_.Put({kLastLeaf, 12}, 31, 4);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLeaf, "wrong page behind"));
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLastLeaf, "wrong page before"));
}

TEST_F(CheckTree, FindsABoundThatIsNotTheLastEntry) {
  copy_.Flip({kRoot, kJet4.entries_at + 4}, 0x01);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "not the last one of page 32"));
}

TEST_F(CheckTree, FindsANodeWithoutATail) {
  copy_.Put({kRoot, 20}, 0, 4);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "no last child"));
}

TEST_F(CheckTree, FindsALeafMarkedAsANode) {
  copy_.Put({kLastLeaf, 26}, 1, 1);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLastLeaf, "marked as a node"));
}

TEST_F(CheckTree, FindsAWrongNumberOfFreeBytes) {
  copy_.Put({kLeaf, 2}, 4000, 2);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLeaf, "4000 free bytes"));
}

TEST_F(CheckTree, FindsAPageOfAnotherTable) {
  copy_.Put({kLeaf, 4}, 2, 4);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLeaf, "defined on page 2"));
}

TEST_F(CheckTree, FindsAMaskThatReachesTooFar) {
  copy_.Flip({kLastLeaf, kJet4.entries_at - 1}, 0x80);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLastLeaf, "are left"));
}

TEST_F(CheckTree, FindsACircle) {
  copy_.Put({kRoot, 20}, kRoot, 4);
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kRoot, "in a circle"));
}

TEST_F(CheckTree, FindsAPageThatItsMapHasNot) {
  for (const IndexDefinition& index : copy_.Table("Table1").indexes) {
    if (index.root == kRoot) copy_.FlipInMap(index.map, kLeaf);
  }
  EXPECT_THAT(copy_.Findings(), Finds(Rule::kIndex, kLeaf, "a page that the map has not"));
}

// A plain index that has equal keys says that it is unique.
TEST(CheckIndex, FindsAKeyThatIsThereTwice) {
  Copy copy("indexTestV2000");
  TableDefinition table = copy.Table("Table1");
  const uint16_t column = table.FindColumn("otherfk1")->number;
  uint32_t root = 0;
  for (IndexDefinition& index : table.indexes) {
    if (index.Columns()[0].column != column) continue;
    index.flags |= IndexDefinition::kUnique;
    root = index.root;
  }
  copy.Replace(table);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kIndex, root, "is there twice"));
}

TEST(CheckIndex, FindsANullThatIsRequired) {
  Copy copy("testIndexPropertiesV2000");
  TableDefinition table = copy.Table("TableIgnoreNulls1");
  const uint16_t column = table.FindColumn("data")->number;
  uint32_t root = 0;
  for (IndexDefinition& index : table.indexes) {
    if (index.Columns()[0].column != column) continue;
    index.flags |= IndexDefinition::kRequired;
    root = index.root;
  }
  copy.Replace(table);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kIndex, root, "a required value is Null"));
}

TEST(CheckCatalogue, FindsATableWithoutADefinition) {
  Copy copy("indexTestV2000");
  const CatalogueObject* object = copy.catalogue().Find(ObjectType::kTable, "Table1");
  const Place row = copy.DataPageAt(object->row.page).Row(object->row.row).PlaceOf(0);
  copy.Put({row.page, row.offset + 2}, 1, 4);
  EXPECT_THAT(copy.Findings(), Finds(Rule::kDefinition, 1, "table definition is expected here"));
}

TEST(CheckCatalogue, FindsTwoTablesOfOneDefinition) {
  Copy copy("indexTestV2000");
  const CatalogueObject* object = copy.catalogue().Find(ObjectType::kTable, "Table2");
  const Place row = copy.DataPageAt(object->row.page).Row(object->row.row).PlaceOf(0);
  copy.Put({row.page, row.offset + 2}, copy.Table("Table1").page(), 4);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kCatalogue, object->row.page, "has the definition of another"));
}

TEST(CheckCatalogue, FindsAnObjectWithoutRights) {
  Copy copy("adox_jet4");
  const DataPage page = copy.DataPageAt(15);
  for (size_t row = 0; row < page.slots().size(); ++row) {
    const ByteView bytes = page.Row(static_cast<uint8_t>(row));
    if (bytes.U32(2) == 5) copy.Put(bytes.PlaceOf(2), 4, 4);
  }
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kCatalogue, 14, "nobody has rights on MSysRelationships"));
}

TEST(CheckCatalogue, FindsAQueryWithoutItsLastRow) {
  Copy copy("queryTestV2000");
  const CatalogueObject* query = copy.catalogue().Find(ObjectType::kQuery, "DeleteQuery");
  for (const QueryRow& row : ReadQueryRows(copy.file(), copy.catalogue())) {
    if (row.query != query->id || row.part != QueryPart::kLast) continue;
    const TableDefinition table = copy.Table("MSysQueries");
    const Place place = copy.DataPageAt(row.row.page).Row(row.row.row).PlaceOf(0);
    const size_t at = 2U + table.FindColumn("Attribute")->fixed_offset;
    copy.Put({place.page, place.offset + at}, 8, 1);
  }
  EXPECT_THAT(copy.Findings(), Finds(Rule::kCatalogue, query->row.page,
                                     "DeleteQuery lacks its first row or its last"));
}

TEST(CheckCatalogue, FindsARelationshipWithOneSide) {
  Copy copy("indexTestV2000");
  ASSERT_FALSE(copy.catalogue().relationships.empty());
  const RelationshipColumn& relationship = copy.catalogue().relationships.front();
  const TableDefinition child = copy.Table(relationship.table);
  TableDefinition broken = child;
  for (IndexName& name : broken.index_names) {
    if (name.side == IndexName::kChild) name.other_number += 77;
  }
  copy.Replace(broken);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kCatalogue, relationship.row.page, "lacks an index on one of its sides"));
}

TEST(CheckCatalogue, FindsPropertiesThatCannotBeRead) {
  Copy copy("indexTestV2000");
  const TableDefinition table = copy.Table("MSysObjects");
  const auto found = FindLongValue(copy, table, LongValueKind::kOneRow);
  const RowPointer row = found.value.rows.front();
  copy.Put(copy.DataPageAt(row.page).Row(row.row).PlaceOf(0), 0, 4);
  EXPECT_THAT(copy.Findings(),
              Finds(Rule::kCatalogue, found.definition.page, "do not begin as they should"));
}

}  // namespace
}  // namespace ambrelio::jetfile
