// What a change of rows does to the pages, case by case.
#include "ambrelio/engine/jetfile/table_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/long_value.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/made_table.h"
#include "engine/jetfile/samples.h"
#include "engine/jetfile/table_model.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {
namespace {

constexpr int kTypeMismatch = 13;
constexpr int kDuplicateKey = 3022;
constexpr int kTooLarge = 3047;
constexpr int kNullInKey = 3058;
constexpr int kTextTooLong = 3163;
constexpr int kRecordDeleted = 3167;
constexpr int kNotSupported = 3251;

std::string Long(size_t size, char letter = 'x') { return std::string(size, letter); }

// A table in a new database: a number, a text with room for long ones, a memo, an object.
class TableWriterTest : public testing::Test {
 protected:
  static constexpr size_t kMemo = 2;
  static constexpr size_t kObject = 3;

  void Make(const std::vector<MadeIndex>& indexes) {
    page_ = MakeTable(file_, "Made",
                      {{"Number", ColumnType::kLong},
                       {"Text", ColumnType::kText, 510},
                       {"Memo", ColumnType::kMemo},
                       {"Object", ColumnType::kOle},
                       {"More", ColumnType::kBinary, 4000}},
                      indexes);
    writer_ = std::make_unique<TableWriter>(file_, page_);
  }
  void SetUp() override { Make({{{0}, 0}, {{1}, 0}}); }

  static std::vector<Variant> Values(int32_t number, size_t more = 0) {
    return {number, "Text " + std::to_string(number), Variant::Null(), Variant::Null(), Long(more)};
  }
  RowPointer Insert(int32_t number, size_t more = 0) {
    const auto values = Values(number, more);
    const RowPointer row = writer_->Insert(values);
    rows_[row] = values;
    return row;
  }
  void Update(RowPointer row, const std::vector<Variant>& values) {
    writer_->Update(row, values);
    rows_[row] = values;
  }
  void Delete(RowPointer row) {
    writer_->Delete(row);
    rows_.erase(row);
  }
  // That the table holds what it has to, and the file is sound.
  void ExpectSound() {
    writer_->Finish();
    EXPECT_EQ(ReadRows(file_, page_), rows_);
    EXPECT_EQ(CheckText(file_), "");
  }
  int ErrorOf(const TableChanges& changes) {
    const auto before = file_.changes();
    const int error = test::ErrorOf([&] { writer_->Apply(changes); });
    EXPECT_EQ(file_.changes(), before);
    return error;
  }

  Slot SlotOf(RowPointer row) const {
    return DataPage(file_.Read(row.page), row.page, kJet4).SlotAt(row.row);
  }
  RowPointer Body(RowPointer row) const { return FindRow(file_, writer_->definition(), row)->at; }
  std::vector<uint32_t> Pages() const {
    return ReadUsageMap(file_, writer_->definition().owned_map).pages;
  }
  LongValueDefinition LongValueAt(RowPointer row, size_t position) const {
    const RowBody body = *FindRow(file_, writer_->definition(), row);
    const Row bytes(body.page.Row(body.at.row), writer_->definition(), true);
    LongValueDefinition definition =
        ParseLongValue(*bytes.Value(writer_->definition().columns[position]));
    definition.inline_bytes = {};
    return definition;
  }

  JetFile file_ = JetFile::FromBytes(SampleBytes("adox_jet4"), "");
  uint32_t page_ = 0;
  std::unique_ptr<TableWriter> writer_;
  TableRowValues rows_;
};

TEST_F(TableWriterTest, GrowsARowWhereItIs) {
  const RowPointer first = Insert(1, 10);
  const RowPointer second = Insert(2, 20);
  Update(first, Values(1, 1000));
  Update(second, Values(2, 5));
  EXPECT_EQ(Body(first), first);
  EXPECT_EQ(Body(second), second);
  ExpectSound();
}

TEST_F(TableWriterTest, MovesARowThatDoesNotFitAndMovesItAgainAndHome) {
  const RowPointer row = Insert(1, 1000);
  const RowPointer other = Insert(2, 2500);
  Update(row, Values(1, 2000));
  const RowPointer away = Body(row);
  EXPECT_NE(away.page, row.page);
  EXPECT_TRUE(SlotOf(row).moved);
  EXPECT_TRUE(SlotOf(away).pointed_to);
  ExpectSound();

  Insert(3, 1700);
  Update(row, Values(1, 3000));
  const RowPointer farther = Body(row);
  EXPECT_NE(farther.page, away.page);
  EXPECT_NE(farther.page, row.page);
  EXPECT_TRUE(SlotOf(away).deleted());
  ExpectSound();

  Delete(other);
  Update(row, Values(1, 2900));
  EXPECT_EQ(Body(row), row);
  EXPECT_FALSE(SlotOf(row).moved);
  ExpectSound();
}

TEST_F(TableWriterTest, DeletesARowThatMoved) {
  const RowPointer row = Insert(1, 1000);
  Insert(2, 2500);
  Update(row, Values(1, 2000));
  const RowPointer away = Body(row);
  Delete(row);
  EXPECT_TRUE(SlotOf(row).deleted());
  EXPECT_THAT(Pages(), testing::Not(testing::Contains(away.page)));
  ExpectSound();
}

TEST_F(TableWriterTest, NeverGivesANumberAgainWhileThePageLives) {
  const RowPointer first = Insert(1);
  const RowPointer second = Insert(2);
  Delete(second);
  const RowPointer third = Insert(3);
  EXPECT_EQ(third.page, first.page);
  EXPECT_EQ(third.row, 2);
  ExpectSound();
}

TEST_F(TableWriterTest, GivesBackAPageWithoutRowsAndUsesItAgain) {
  const RowPointer row = Insert(1);
  ExpectSound();
  Delete(row);
  EXPECT_TRUE(Pages().empty());
  EXPECT_TRUE(ReadUsageMap(file_, file_.header().free_map).Contains(row.page));
  EXPECT_EQ((*file_.Read(row.page))[0], 9);
  ExpectSound();
  EXPECT_EQ(Insert(2), (RowPointer{row.page, 0}));
  ExpectSound();
}

TEST_F(TableWriterTest, HasAtMost255RowsOnAPage) { Make({}); }

TEST_F(TableWriterTest, RefusesWhatHasNoPlaceAndChangesNothing) {
  const RowPointer row = Insert(1);
  const RowPointer gone = Insert(2);
  Delete(gone);
  auto values = Values(1);
  values[0] = "one";
  EXPECT_EQ(ErrorOf({{}, {}, {values}}), kTypeMismatch);
  values = Values(1);
  values[1] = Long(256);
  EXPECT_EQ(ErrorOf({{}, {}, {values}}), kTextTooLong);
  EXPECT_EQ(ErrorOf({{}, {{row, Values(1, 4001)}}, {}}), kTextTooLong);
  values = Values(1, 3950);
  values[1] = Long(255);
  EXPECT_EQ(ErrorOf({{}, {{row, values}}, {}}), kTooLarge);
  EXPECT_EQ(ErrorOf({{row}, {{gone, Values(2)}}, {}}), kRecordDeleted);
  EXPECT_EQ(ErrorOf({{{row.page, 200}}, {}, {}}), kRecordDeleted);
  EXPECT_EQ(ErrorOf({{{page_, 0}}, {}, {}}), kRecordDeleted);
  EXPECT_EQ(ErrorOf({{{1000000, 0}}, {}, {}}), kRecordDeleted);
  values = Values(1);
  values[1] = "\u4E2D";
  EXPECT_EQ(ErrorOf({{}, {}, {Values(3), values}}), kNotSupported);
  ExpectSound();
}

TEST_F(TableWriterTest, NamesTheIndexThatAValueCannotBeIn) {
  auto values = Values(1);
  values[1] = "\u4E2D";
  try {
    writer_->Insert(values);
    FAIL();
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.description(), testing::HasSubstr("'index2' of the table 'Made'"));
  }
}

TEST_F(TableWriterTest, ChangesNothingForARowThatStaysTheSame) {
  auto values = Values(1, 100);
  values[kMemo] = Long(5000);
  const RowPointer row = writer_->Insert(values);
  const auto before = file_.changes();
  writer_->Update(row, values);
  EXPECT_EQ(file_.changes(), before);
}

TEST_F(TableWriterTest, LeavesIndexesAloneWhoseKeysStayTheSame) {
  const RowPointer row = Insert(1);
  const Page numbers = file_.Read(writer_->definition().indexes[0].root);
  const Page texts = file_.Read(writer_->definition().indexes[1].root);
  auto values = Values(2);
  values[1] = "TEXT 1";
  Update(row, values);
  EXPECT_NE(file_.Read(writer_->definition().indexes[0].root), numbers);
  EXPECT_EQ(file_.Read(writer_->definition().indexes[1].root), texts);
  ExpectSound();
}

TEST_F(TableWriterTest, CountsRowsAndKeepsTheDefinitionUntilItFinishes) {
  const Page definition = file_.Read(page_);
  Insert(1);
  Delete(Insert(2));
  Insert(3);
  EXPECT_EQ(file_.Read(page_), definition);
  writer_->Finish();
  EXPECT_EQ(ReadDefinition(file_, page_).row_count, 2U);
  const auto before = file_.changes();
  writer_->Finish();
  EXPECT_EQ(file_.changes(), before);
}

class LongValueLengths : public TableWriterTest, public testing::WithParamInterface<size_t> {};

INSTANTIATE_TEST_SUITE_P(Sizes, LongValueLengths,
                         testing::Values(0, 64, 65, 3816, 3817, 4072, 8144, 100'000));

TEST_P(LongValueLengths, AreWrittenChangedAndFreed) {
  auto values = Values(1);
  values[kObject] = Long(GetParam(), 'a');
  const RowPointer row = writer_->Insert(values);
  rows_[row] = values;
  ExpectSound();
  values[kObject] = Long(GetParam(), 'b');
  Update(row, values);
  ExpectSound();
  Delete(row);
  ExpectSound();
  for (const LongValueMaps& maps : writer_->definition().long_values) {
    EXPECT_TRUE(ReadUsageMap(file_, maps.owned).pages.empty());
  }
}

TEST_P(LongValueLengths, HaveANewPointerWhenTheyChange) {
  auto values = Values(1);
  values[kObject] = Long(GetParam(), 'a');
  const RowPointer row = writer_->Insert(values);
  const LongValueDefinition before = LongValueAt(row, kObject);
  EXPECT_EQ(before.kind, GetParam() <= 64     ? LongValueKind::kInline
                         : GetParam() <= 3816 ? LongValueKind::kOneRow
                                              : LongValueKind::kChain);
  values[kObject] = Long(GetParam(), 'b');
  writer_->Update(row, values);
  const LongValueDefinition after = LongValueAt(row, kObject);
  EXPECT_EQ(before.kind == LongValueKind::kInline, before.first == after.first);
}

TEST_F(TableWriterTest, LeavesLongValuesAloneThatStayTheSame) {
  auto values = Values(1);
  values[kMemo] = Long(1000);
  values[kObject] = Long(9000);
  const RowPointer row = writer_->Insert(values);
  std::map<uint32_t, Page> pages;
  for (const LongValueMaps& maps : writer_->definition().long_values) {
    for (const uint32_t page : ReadUsageMap(file_, maps.owned).pages)
      pages[page] = file_.Read(page);
  }
  EXPECT_EQ(pages.size(), 4U);
  values[0] = int32_t{7};
  Update(row, values);
  for (const auto& [page, bytes] : pages) EXPECT_EQ(file_.Read(page), bytes);
  ExpectSound();
}

// Several short values share a page, which lives until the last of them goes.
TEST_F(TableWriterTest, KeepsThePageOfLongValuesWhileOneOfThemIsThere) {
  auto values = Values(1);
  values[kObject] = Long(100, 'a');
  const RowPointer first = writer_->Insert(values);
  values[kObject] = Long(100, 'b');
  const RowPointer second = writer_->Insert(values);
  rows_[second] = values;
  const uint32_t page = LongValueAt(first, kObject).first.page;
  EXPECT_EQ(LongValueAt(second, kObject).first.page, page);
  writer_->Delete(first);
  ExpectSound();
  Delete(second);
  EXPECT_TRUE(ReadUsageMap(file_, file_.header().free_map).Contains(page));
  ExpectSound();
}

TEST_F(TableWriterTest, CompressesTextOnlyWhereTheColumnSaysSoAndNeverInChains) {
  const uint32_t page = MakeTable(file_, "Compressed",
                                  {{"Text", ColumnType::kText, 510, ColumnDefinition::kCompressed},
                                   {"Memo", ColumnType::kMemo, 0, ColumnDefinition::kCompressed}},
                                  {});
  const auto length = [&](size_t characters) {
    TableWriter writer(file_, page);
    const RowPointer row = writer.Insert({"four", Long(characters)});
    const RowBody body = *FindRow(file_, writer.definition(), row);
    const Row bytes(body.page.Row(body.at.row), writer.definition(), true);
    EXPECT_EQ(bytes.Value(writer.definition().columns[0])->size(), 6U);
    const size_t stored = ParseLongValue(*bytes.Value(writer.definition().columns[1])).length;
    writer.Finish();
    return stored;
  };
  EXPECT_EQ(length(62), 64U);
  EXPECT_EQ(length(3814), 3816U);
  EXPECT_EQ(length(3815), 7630U);
  EXPECT_EQ(CheckText(file_), "");
}

TEST_F(TableWriterTest, RefusesAKeyThatIsThereAlready) {
  Make({{{0}, IndexDefinition::kUnique}, {{1, 0}, IndexDefinition::kUnique}});
}

}  // namespace
}  // namespace ambrelio::jetfile
