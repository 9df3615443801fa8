// What a change of rows does to the pages, case by case.
#include "ambrelio/engine/jetfile/table_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/jetfile/errors.h"
#include "engine/jetfile/table_writer_fixture.h"

namespace ambrelio::jetfile {
namespace {

constexpr int kTypeMismatch = 13;

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

TEST_F(TableWriterTest, HasAtMost255RowsOnAPage) {
  const uint32_t page = MakeTable(file_, "Flags", {{"Flag", ColumnType::kBoolean}}, {});
  TableWriter writer(file_, page);
  std::map<uint32_t, size_t> rows;
  for (int i = 0; i < 600; ++i) ++rows[writer.Insert({i % 2 == 0}).page];
  writer.Finish();
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows.begin()->second, 255U);
  EXPECT_EQ(ReadRows(file_, page).size(), 600U);
  EXPECT_EQ(CheckText(file_), "");
}

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

TEST_F(TableWriterTest, RemembersTheGreatestAutonumberEver) {
  const uint32_t page = MakeTable(
      file_, "Counted", {{.name = "Number", .type = ColumnType::kLong, .autonumber = true}}, {});
  TableWriter writer(file_, page);
  const RowPointer row = writer.Insert({int32_t{17}});
  writer.Insert({int32_t{-3}});
  writer.Delete(row);
  writer.Finish();
  EXPECT_EQ(ReadDefinition(file_, page).last_autonumber, 17U);
  EXPECT_EQ(CheckText(file_), "");
}

}  // namespace
}  // namespace ambrelio::jetfile
