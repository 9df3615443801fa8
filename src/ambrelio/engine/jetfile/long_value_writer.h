// Writing the memos and OLE objects of one column. For the changes of one commit.
#pragma once

#include "ambrelio/engine/jetfile/row_pages.h"
#include "ambrelio/engine/jetfile/table_definition.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::jetfile {

class LongValueWriter {
 public:
  // The file must outlive this.
  LongValueWriter(JetFile& file, const TableDefinition& definition, uint16_t column);

  // What a row will hold of a value, with a pointer to nowhere: as long as what Write gives.
  static Bytes Placeholder(std::span<const uint8_t> value);
  // Gives what the row is to hold. No value that is there has the same pointer.
  Bytes Write(std::span<const uint8_t> value);
  // Frees what a row held. Raises Damage.
  void Free(std::span<const uint8_t> definition);

 private:
  RowPointer WriteChain(std::span<const uint8_t> value);

  JetFile& file_;
  RowPages pages_;
};

// What is stored of a value of a column of long values, which is not Null. Raises 13 (type
// mismatch) for a value of another type.
Bytes EncodeLongValue(const ColumnDefinition& column, const Variant& value);

}  // namespace ambrelio::jetfile
