#include "ambrelio/engine/jetfile/long_value_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/long_value.h"
#include "engine/jetfile/table_writer_fixture.h"

namespace ambrelio::jetfile {
namespace {

class LongValuesTest : public TableWriterTest {
 protected:
  LongValueDefinition LongValueAt(RowPointer row, size_t position) const {
    const RowBody body = *FindRow(file_, writer_->definition(), row);
    const Row bytes(body.page.Row(body.at.row), writer_->definition(), true);
    LongValueDefinition definition =
        ParseLongValue(*bytes.Value(writer_->definition().columns[position]));
    definition.inline_bytes = {};
    return definition;
  }
};

class LongValueLengths : public LongValuesTest, public testing::WithParamInterface<size_t> {};

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

TEST_F(LongValuesTest, LeavesLongValuesAloneThatStayTheSame) {
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
TEST_F(LongValuesTest, KeepsThePageOfLongValuesWhileOneOfThemIsThere) {
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

TEST_F(LongValuesTest, CompressesTextOnlyWhereTheColumnSaysSoAndNeverInChains) {
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

}  // namespace
}  // namespace ambrelio::jetfile
