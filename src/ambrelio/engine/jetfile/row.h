// One row: where the bytes of each column's value lie in it, and the way back.
#pragma once

#include <optional>
#include <vector>

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

class Row {
 public:
  // Raises Damage when the row's own tables do not lie within it. The row knows of columns up to
  // those that the table had when it was written.
  Row(ByteView bytes, const TableDefinition& definition, bool jet4);

  // The stored bytes of a column; nothing for Null. Not for a Boolean, whose value is a flag.
  // A Text without characters is no bytes, which is not nothing. Raises Damage.
  std::optional<ByteView> Value(const ColumnDefinition& column) const;
  bool Flag(const ColumnDefinition& column) const { return Bit(column.number); }

  uint16_t column_count() const { return column_count_; }

 private:
  bool Bit(uint16_t number) const;
  bool HasVariablePart(const TableDefinition& definition) const;
  void ReadJet4Offsets();
  void ReadJet3Offsets();
  void CheckOffsets(size_t table_start) const;

  ByteView bytes_;
  uint16_t column_count_ = 0;
  size_t fixed_start_ = 0;  // where fixed offsets count from
  size_t mask_at_ = 0;
  std::vector<size_t> offsets_;  // the start of each variable column, and the end of the last
};

// What a row is made of when it is written: the stored bytes of each column in the order of
// TableDefinition::columns, nothing for Null; of a Boolean, any bytes for True.
using RowValues = std::vector<std::optional<Bytes>>;

// The bytes of a row of Jet 4. Values of fixed columns must have their column's length. The
// numbers of dropped columns keep their places. Raises 3047 when the row is longer than
// kLongestRow.
Bytes EncodeRow(const TableDefinition& definition, const RowValues& values);

// A longer row fits a page of Jet 4, but not its original engine.
inline constexpr size_t kLongestRow = 4060;

}  // namespace ambrelio::jetfile
