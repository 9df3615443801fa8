// The order of the fields of a table definition, described once for reading and for writing: a
// Cursor is either of the two below.
#pragma once

#include "ambrelio/engine/jetfile/table_definition.h"

namespace ambrelio::jetfile {

class FieldReader {
 public:
  FieldReader(const JetFile& file, ByteView bytes) : file_(file), bytes_(bytes) {}

  size_t at() const { return at_; }
  size_t left() const { return bytes_.size() - at_; }
  ByteView Ahead() const { return bytes_.From(at_); }

  template <class T>
  void Number(T& number, size_t size = sizeof(T)) {
    const ByteView field = Take(size);
    uint64_t read = 0;
    for (size_t i = size; i-- > 0;) read = read << 8 | field.U8(i);
    number = static_cast<T>(read);
  }
  void Pointer(RowPointer& pointer) { pointer = ReadRowPointer(Take(4), 0); }
  void Raw(Bytes& bytes, size_t size) { bytes = Take(size).Copy(); }
  void Name(std::string& name) {
    size_t size = 0;
    Number(size, file_.format().jet4 ? 2 : 1);
    name = file_.PlainText(Take(size));
  }

 private:
  ByteView Take(size_t size) {
    const ByteView field = bytes_.Part(at_, size);
    at_ += size;
    return field;
  }

  const JetFile& file_;
  ByteView bytes_;
  size_t at_ = 0;
};

class FieldWriter {
 public:
  explicit FieldWriter(const JetFile& file) : file_(file) {}

  Bytes& bytes() { return bytes_; }

  template <class T>
  void Number(const T& number, size_t size = sizeof(T)) {
    Append(bytes_, static_cast<uint64_t>(number), size);
  }
  void Pointer(const RowPointer& pointer) { Append(bytes_, RowPointerBits(pointer), 4); }
  void Raw(const Bytes& bytes, size_t) { Append(bytes_, bytes); }
  void Name(const std::string& name) {
    const Bytes text = file_.PlainBytes(name);
    Append(bytes_, text.size(), file_.format().jet4 ? 2 : 1);
    Append(bytes_, text);
  }

 private:
  const JetFile& file_;
  Bytes bytes_;
};

// How many there are of each, which the definition's own lists say once it is read.
struct DefinitionCounts {
  uint16_t columns = 0;
  uint32_t index_names = 0;
  uint32_t indexes = 0;
};

template <class Cursor, class Definition>
void HeaderFields(Cursor& cursor, Definition& definition, DefinitionCounts& counts, bool jet4) {
  cursor.Number(definition.page_type);
  cursor.Number(definition.free_bytes);
  cursor.Number(definition.next_page);
  cursor.Number(definition.length);
  if (jet4) cursor.Number(definition.marker);
  cursor.Number(definition.row_count);
  cursor.Number(definition.last_autonumber);
  if (jet4) {
    cursor.Number(definition.increment);
    cursor.Number(definition.last_complex_autonumber);
    cursor.Number(definition.unused);
  }
  cursor.Number(definition.kind);
  cursor.Number(definition.column_mark);
  cursor.Number(definition.variable_mark);
  cursor.Number(counts.columns);
  cursor.Number(counts.index_names);
  cursor.Number(counts.indexes);
  cursor.Pointer(definition.owned_map);
  cursor.Pointer(definition.free_space_map);
}

template <class Cursor, class Index>
void CounterFields(Cursor& cursor, Index& index, bool jet4) {
  cursor.Number(index.entries_at_compact);
  cursor.Number(index.distinct_keys);
  if (jet4) cursor.Number(index.counter_reserved);
}

template <class Cursor, class Column>
void ColumnFields(Cursor& cursor, Column& column, bool jet4) {
  cursor.Number(column.type);
  if (jet4) cursor.Number(column.marker);
  cursor.Number(column.number);
  cursor.Number(column.variable_index);
  cursor.Number(column.ordinal);
  if (!jet4) cursor.Number(column.unused);
  cursor.Number(column.collation);
  if (jet4) {
    cursor.Number(column.sort_id);
    cursor.Number(column.collation_version);
    cursor.Number(column.flags);
    cursor.Number(column.extra_flags);
    cursor.Number(column.reserved);
  } else {
    cursor.Number(column.code_page);
    cursor.Number(column.flags);
  }
  cursor.Number(column.fixed_offset);
  cursor.Number(column.length);
}

template <class Cursor, class Index>
void IndexFields(Cursor& cursor, Index& index, bool jet4) {
  constexpr size_t kReservedBytes = 5;
  if (jet4) cursor.Number(index.marker);
  for (auto& slot : index.slots) {
    cursor.Number(slot.column);
    cursor.Number(slot.order);
  }
  cursor.Pointer(index.map);
  cursor.Number(index.root);
  if (jet4) cursor.Number(index.unused);
  cursor.Number(index.flags);
  if (jet4) cursor.Raw(index.reserved, kReservedBytes);
}

template <class Cursor, class Name>
void IndexNameFields(Cursor& cursor, Name& name, bool jet4) {
  if (jet4) cursor.Number(name.marker);
  cursor.Number(name.number);
  cursor.Number(name.index);
  cursor.Number(name.side);
  cursor.Number(name.other_number);
  cursor.Number(name.other_table);
  cursor.Number(name.on_update);
  cursor.Number(name.on_delete);
  cursor.Number(name.kind);
  if (jet4) cursor.Number(name.reserved);
}

template <class Cursor, class Maps>
void LongValueFields(Cursor& cursor, Maps& maps) {
  cursor.Number(maps.column);
  cursor.Pointer(maps.owned);
  cursor.Pointer(maps.free_space);
}

// The smallest that one of each can be, names included: what counts are held against before
// anything is made room for.
inline constexpr size_t kLeastColumnBytes = 18 + 1;
inline constexpr size_t kLeastIndexBytes = 39 + 8;
inline constexpr size_t kLeastIndexNameBytes = 20 + 1;

}  // namespace ambrelio::jetfile
