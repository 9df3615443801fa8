// The definitions of a database, with the names and meanings of DAO: fields, indexes, tables and
// stored queries. Objects made by a Create... member live in memory until appended.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ambrelio/dao/collection.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::dao {

enum class FieldType : int16_t {
  kBoolean = 1,
  kByte = 2,
  kInteger = 3,  // 16 bits
  kLong = 4,     // 32 bits
  kCurrency = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kText = 10,
  kMemo = 12,
};

// Bits of Field::Attributes.
inline constexpr int32_t kDescending = 1;  // in an index field
inline constexpr int32_t kFixedField = 1;
inline constexpr int32_t kVariableField = 2;
inline constexpr int32_t kAutoIncrement = 16;
inline constexpr int32_t kUpdatable = 32;

// A column of a table, of an index or of a recordset. Only a recordset's field has a value.
class Field {
 public:
  virtual ~Field() = default;

  virtual std::string Name() const = 0;
  virtual void SetName(const std::string& name) = 0;
  virtual FieldType Type() const = 0;
  // Bytes of a number or date, characters of a Text, 0 for a Memo.
  virtual int32_t Size() const = 0;
  virtual int16_t OrdinalPosition() const = 0;
  virtual void SetOrdinalPosition(int16_t position) = 0;
  virtual int32_t Attributes() const = 0;
  virtual void SetAttributes(int32_t attributes) = 0;
  virtual bool Required() const = 0;
  virtual void SetRequired(bool required) = 0;
  virtual bool AllowZeroLength() const = 0;
  virtual void SetAllowZeroLength(bool allow) = 0;
  // An expression in SQL, "" for none.
  virtual std::string DefaultValue() const = 0;
  virtual void SetDefaultValue(const std::string& expression) = 0;
  // The value in the recordset's current row: 3021 without one, 3167 when it was deleted
  // meanwhile, 3219 when the field is not a recordset's.
  virtual Variant Value() const = 0;
};

class Index {
 public:
  virtual ~Index() = default;

  virtual std::string Name() const = 0;
  virtual void SetName(const std::string& name) = 0;
  // These four are fixed once the index is stored (3268).
  virtual bool Primary() const = 0;
  virtual void SetPrimary(bool primary) = 0;  // sets Unique and Required too
  virtual bool Unique() const = 0;
  virtual void SetUnique(bool unique) = 0;
  virtual bool IgnoreNulls() const = 0;
  virtual void SetIgnoreNulls(bool ignore) = 0;
  virtual bool Required() const = 0;
  virtual void SetRequired(bool required) = 0;
  virtual Collection<Field>& Fields() = 0;
  virtual std::shared_ptr<Field> CreateField(const std::string& name) = 0;
};

class TableDef {
 public:
  virtual ~TableDef() = default;

  virtual std::string Name() const = 0;
  virtual void SetName(const std::string& name) = 0;
  virtual Collection<Field>& Fields() = 0;
  virtual Collection<Index>& Indexes() = 0;
  // `size` counts for Text only (characters, 1 to 255; 0 means 50).
  virtual std::shared_ptr<Field> CreateField(const std::string& name, FieldType type,
                                             int32_t size = 0) = 0;
  virtual std::shared_ptr<Index> CreateIndex(const std::string& name) = 0;
};

class QueryDef {
 public:
  virtual ~QueryDef() = default;

  virtual std::string Name() const = 0;
  virtual std::string Sql() const = 0;
  // Stored at once when the query is; the text is parsed, its tables need not exist.
  virtual void SetSql(const std::string& sql) = 0;
};

}  // namespace ambrelio::dao
