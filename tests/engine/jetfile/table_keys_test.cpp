#include "ambrelio/engine/jetfile/table_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/index_tree.h"
#include "engine/jetfile/errors.h"
#include "engine/jetfile/table_writer_fixture.h"

namespace ambrelio::jetfile {
namespace {

// The number of each row, and a text beside it.
class KeysTest : public TableWriterTest {
 protected:
  void SetUp() override {}
  static std::vector<Variant> Keyed(Variant number, Variant text) {
    return {std::move(number), std::move(text), Variant::Null(), Variant::Null(), Variant::Null()};
  }
  RowPointer Add(const Variant& number, const Variant& text) {
    const auto values = Keyed(number, text);
    const RowPointer row = writer_->Insert(values);
    rows_[row] = values;
    return row;
  }
  size_t EntriesOf(size_t index) const {
    size_t count = 0;
    IndexTree(file_, writer_->definition().indexes[index]).Walk([&count](const auto&) { ++count; });
    return count;
  }
};

TEST_F(KeysTest, AreUniqueWhateverTheirCase) {
  Make({{{0}, IndexDefinition::kUnique}, {{1, 0}, IndexDefinition::kUnique}});
  const RowPointer one = Add(int32_t{1}, "one");
  Add(int32_t{2}, "ONE");
  EXPECT_EQ(ErrorOf({{}, {}, {Keyed(int32_t{1}, "other")}}), kDuplicateKey);
  EXPECT_EQ(ErrorOf({{}, {{one, Keyed(int32_t{2}, "one")}}, {}}), kDuplicateKey);
  EXPECT_EQ(ErrorOf({{}, {}, {Keyed(int32_t{3}, "a"), Keyed(int32_t{3}, "b")}}), kDuplicateKey);
  ExpectSound();
}

TEST_F(KeysTest, PassFromRowToRow) {
  Make({{{0}, IndexDefinition::kUnique}});
  const RowPointer one = Add(int32_t{1}, "a");
  const RowPointer two = Add(int32_t{2}, "b");
  const RowPointer three = Add(int32_t{3}, "c");
  const auto inserted =
      writer_->Apply({{three},
                      {{one, Keyed(int32_t{2}, "a")}, {two, Keyed(int32_t{1}, "b")}},
                      {Keyed(int32_t{3}, "d")}});
  rows_ = {{one, Keyed(int32_t{2}, "a")},
           {two, Keyed(int32_t{1}, "b")},
           {inserted.at(0), Keyed(int32_t{3}, "d")}};
  ExpectSound();
}

TEST_F(KeysTest, OfNullsAreNeverTwice) {
  Make({{{0, 1}, IndexDefinition::kUnique}});
  Add(Variant::Null(), "a");
  Add(Variant::Null(), "a");
  Add(int32_t{1}, Variant::Null());
  Add(int32_t{1}, Variant::Null());
  EXPECT_EQ(EntriesOf(0), 4U);
  ExpectSound();
}

TEST_F(KeysTest, OfNothingButNullsMayBeLeftOut) {
  Make({{{0, 1}, IndexDefinition::kIgnoreNulls}, {{1}, 0}});
  const RowPointer row = Add(Variant::Null(), Variant::Null());
  Add(Variant::Null(), "a");
  EXPECT_EQ(EntriesOf(0), 1U);
  EXPECT_EQ(EntriesOf(1), 2U);
  Update(row, Keyed(int32_t{1}, Variant::Null()));
  EXPECT_EQ(EntriesOf(0), 2U);
  ExpectSound();
  Update(row, Keyed(Variant::Null(), Variant::Null()));
  EXPECT_EQ(EntriesOf(0), 1U);
  ExpectSound();
}

TEST_F(KeysTest, MayNeedValues) {
  Make({{{0, 1}, IndexDefinition::kRequired}});
  const RowPointer row = Add(int32_t{1}, "a");
  EXPECT_EQ(ErrorOf({{}, {}, {Keyed(Variant::Null(), "a")}}), kNullInKey);
  EXPECT_EQ(ErrorOf({{}, {{row, Keyed(int32_t{1}, Variant::Null())}}, {}}), kNullInKey);
  ExpectSound();
}

TEST_F(KeysTest, OfAnUnknownOrderAreNotWritten) {
  Make({{{1}, 0}});
  TableDefinition definition = writer_->definition();
  definition.columns[1].collation = 0x0419;
  Bytes bytes = SerialiseDefinition(file_, definition);
  bytes.resize(kJet4.page_size);
  file_.Write(page_, bytes);
  const TableWriter writer(file_, page_);
  try {
    writer.CheckWritable();
    FAIL();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), kNotSupported);
    EXPECT_THAT(error.description(), testing::HasSubstr("'index1' of the table 'Made'"));
    EXPECT_THAT(error.description(), testing::HasSubstr("0x0419"));
  }
}

}  // namespace
}  // namespace ambrelio::jetfile
