// A table in a new database beside what it has to hold.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "ambrelio/engine/jetfile/table_reader.h"
#include "ambrelio/engine/jetfile/usage_map.h"
#include "engine/jetfile/made_table.h"
#include "engine/jetfile/samples.h"
#include "engine/jetfile/table_model.h"
#include "support/error_of.h"

namespace ambrelio::jetfile {

inline std::string Long(size_t size, char letter = 'x') { return std::string(size, letter); }

// A number, a text with room for long ones, a memo, an object.
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

  JetFile file_ = JetFile::FromBytes(SampleBytes("adox_jet4"), "");
  uint32_t page_ = 0;
  std::unique_ptr<TableWriter> writer_;
  TableRowValues rows_;
};

}  // namespace ambrelio::jetfile
