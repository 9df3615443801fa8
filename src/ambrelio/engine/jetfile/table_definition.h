// The definition of a table: what its rows look like, which indexes it has, and where their pages
// are listed. Everything that is stored is kept, what has no known meaning too, so that a
// definition that is read and written again is the same bytes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"

namespace ambrelio::jetfile {

// Where the first page of a definition has what is not read with the rest, and how much stands
// before what each page holds of it.
struct DefinitionLayout {
  static constexpr size_t kFreeBytesAt = 2;
  static constexpr size_t kPageHeaderBytes = 8;
  static constexpr size_t kRowCountAt = 0x10;    // of Jet 4
  static constexpr size_t kAutonumberAt = 0x14;  // of Jet 4
};

enum class ColumnType : uint8_t {
  kBoolean = 1,
  kByte = 2,
  kInteger = 3,
  kLong = 4,
  kMoney = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kBinary = 9,
  kText = 10,
  kOle = 11,
  kMemo = 12,
  kGuid = 15,
  kNumeric = 16,
  kLongBinary = 17,
};

struct ColumnDefinition {
  static constexpr uint8_t kFixed = 0x01;
  static constexpr uint8_t kAutonumber = 0x04;
  static constexpr uint8_t kCompressed = 0x01;  // of the extra flags

  std::string name;
  ColumnType type = ColumnType::kText;
  uint32_t marker = 0;
  uint16_t number = 0;          // its bit in the null mask; never used again when it is dropped
  uint16_t variable_index = 0;  // its place among the variable columns
  uint16_t ordinal = 0;         // the position that people see
  uint16_t collation = 0;       // a language; of a Numeric the precision, and above it the scale
  uint8_t sort_id = 0;
  uint8_t collation_version = 0;
  uint8_t flags = 0;
  uint8_t extra_flags = 0;
  uint32_t reserved = 0;
  uint16_t fixed_offset = 0;
  uint16_t length = 0;     // bytes
  uint16_t unused = 0;     // Jet 3
  uint16_t code_page = 0;  // Jet 3

  bool fixed() const { return (flags & kFixed) != 0; }
  bool autonumber() const { return (flags & kAutonumber) != 0; }
  bool long_value() const { return type == ColumnType::kMemo || type == ColumnType::kOle; }
  bool compressed() const { return (extra_flags & kCompressed) != 0; }
  uint8_t scale() const { return static_cast<uint8_t>(collation >> 8); }
  uint8_t precision() const { return static_cast<uint8_t>(collation); }
};

struct KeyColumn {
  static constexpr uint16_t kNone = 0xFFFF;

  uint16_t column = kNone;
  uint8_t order = 0;

  bool ascending() const { return order != 0; }
};

// A tree of keys.
struct IndexDefinition {
  static constexpr uint8_t kUnique = 0x01;
  static constexpr uint8_t kIgnoreNulls = 0x02;
  static constexpr uint8_t kRequired = 0x08;

  uint32_t entries_at_compact = 0;
  uint32_t distinct_keys = 0;
  uint32_t counter_reserved = 0;
  uint32_t marker = 0;
  std::array<KeyColumn, 10> slots{};
  RowPointer map;
  uint32_t root = 0;
  uint32_t unused = 0;
  uint8_t flags = 0;
  Bytes reserved;

  bool unique() const { return (flags & kUnique) != 0; }
  bool ignores_nulls() const { return (flags & kIgnoreNulls) != 0; }
  bool required() const { return (flags & kRequired) != 0; }
  // The slots in use.
  std::vector<KeyColumn> Columns() const;
};

// A name for an index: what people see, and what a relationship refers to. Several may share a
// tree.
struct IndexName {
  static constexpr uint8_t kParent = 1;  // sides
  static constexpr uint8_t kChild = 2;
  static constexpr uint8_t kPrimary = 1;  // kinds
  static constexpr uint8_t kForeign = 2;

  std::string name;
  uint32_t marker = 0;
  uint32_t number = 0;
  uint32_t index = 0;  // the position of its IndexDefinition
  uint8_t side = 0;    // of a relationship; 0 for none
  uint32_t other_number = 0;
  uint32_t other_table = 0;
  uint8_t on_update = 0;
  uint8_t on_delete = 0;
  uint8_t kind = 0;
  uint32_t reserved = 0;
};

// Where the pages of a column of long values are listed.
struct LongValueMaps {
  uint16_t column = 0;
  RowPointer owned;
  RowPointer free_space;
};

struct TableDefinition {
  static constexpr uint8_t kUserTable = 'N';
  static constexpr uint8_t kSystemTable = 'S';

  std::vector<uint32_t> pages;  // where it stands, in order; the first is the table's identity

  uint16_t page_type = 0;
  uint16_t free_bytes = 0;
  uint32_t next_page = 0;
  uint32_t length = 0;
  uint32_t marker = 0;
  uint32_t row_count = 0;
  uint32_t last_autonumber = 0;
  uint32_t increment = 0;
  uint32_t last_complex_autonumber = 0;
  uint64_t unused = 0;
  uint8_t kind = kUserTable;
  uint16_t column_mark = 0;    // column numbers ever used
  uint16_t variable_mark = 0;  // variable columns ever used
  RowPointer owned_map;
  RowPointer free_space_map;
  std::vector<ColumnDefinition> columns;  // as people see them: by ordinal, then by name
  std::vector<IndexDefinition> indexes;
  std::vector<IndexName> index_names;  // by name
  std::vector<LongValueMaps> long_values;

  uint32_t page() const { return pages.front(); }
  // All look-ups give null when there is none. Names are compared without case.
  const ColumnDefinition* FindColumn(std::string_view name) const;
  const ColumnDefinition* FindColumn(uint16_t number) const;
};

// The definition that starts on a page. Raises Damage.
TableDefinition ReadDefinition(const JetFile& file, uint32_t page);

// The one string of bytes that a definition is: its pages one behind the other, but for the headers
// of all after the first.
struct DefinitionString {
  Bytes bytes;
  std::vector<uint32_t> pages;
};
DefinitionString ReadDefinitionString(const JetFile& file, uint32_t page);

TableDefinition ParseDefinition(const JetFile& file, const DefinitionString& string);
// What ParseDefinition read; the length is that of the definition as it is now.
Bytes SerialiseDefinition(const JetFile& file, const TableDefinition& definition);

}  // namespace ambrelio::jetfile
