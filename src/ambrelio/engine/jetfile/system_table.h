// A system table, read by the names of its columns.
#pragma once

#include <string>
#include <string_view>

#include "ambrelio/engine/jetfile/table_reader.h"

namespace ambrelio::jetfile {

class SystemTable {
 public:
  // The table whose definition starts on that page. Raises Damage.
  SystemTable(const JetFile& file, uint32_t page)
      : definition_(ReadDefinition(file, page)), reader_(file, definition_) {}

  bool Next() { return reader_.Next(); }
  RowPointer identity() const { return reader_.identity(); }

  // Of the current row; Null reads as nothing. Damage for a column that the table does not have, or
  // has with another type.
  int32_t Long(std::string_view column) const { return As<int32_t>(column); }
  int16_t Integer(std::string_view column) const { return As<int16_t>(column); }
  uint8_t Byte(std::string_view column) const { return As<uint8_t>(column); }
  bool Flag(std::string_view column) const { return As<bool>(column); }
  OleDate Date(std::string_view column) const { return As<OleDate>(column); }
  std::string Text(std::string_view column) const { return As<std::string>(column); }

 private:
  template <class T>
  T As(std::string_view column) const {
    const Variant value = Value(column);
    if (value.is_null()) return T();
    if (value.type() != Variant(T()).type()) FailType(column);
    return value.as<T>();
  }
  Variant Value(std::string_view column) const;
  [[noreturn]] void FailType(std::string_view column) const;

  TableDefinition definition_;
  TableReader reader_;
};

}  // namespace ambrelio::jetfile
