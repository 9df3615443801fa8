// What a database holds, as its DAO side sees it: tables with their fields and indexes, and stored
// queries. Plain data with look-ups; how it is stored is catalogue_store's business.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/dao/definitions.h"

namespace ambrelio::embedded {

// Whether two names are one name: without regard to case, in the General order's alphabet.
bool SameName(std::string_view a, std::string_view b);

// The position of a field that is put behind all others when it is stored.
inline constexpr int16_t kNextPosition = -1;

struct FieldInfo {
  std::string name;
  dao::FieldType type = dao::FieldType::kText;
  int32_t size = 0;  // characters of a Text
  int16_t position = kNextPosition;
  int32_t attributes = 0;  // kAutoIncrement or nothing
  bool required = false;
  bool allow_zero_length = false;
  std::string default_value;  // an SQL expression, "" for none
  int64_t id = 0;             // once stored; never changes
};

struct IndexColumn {
  std::string name;
  bool descending = false;
};

struct IndexInfo {
  std::string name;
  bool primary = false;
  bool unique = false;
  bool ignore_nulls = false;
  bool required = false;
  std::vector<IndexColumn> columns;
  int64_t id = 0;
};

struct TableInfo {
  std::string name;
  // In the order they are delivered: by position, equal positions by name.
  std::vector<FieldInfo> fields;
  std::vector<IndexInfo> indexes;
  int64_t id = 0;

  // All look-ups give null when there is none.
  const FieldInfo* FindField(std::string_view field_name) const;
  const FieldInfo* FindField(int64_t field_id) const;
  const IndexInfo* FindIndex(std::string_view index_name) const;
  const IndexInfo* FindIndex(int64_t index_id) const;
  const IndexInfo* PrimaryKey() const;
  void SortFields();
};

// The name by which the storage's hidden row number of a table is reached: the one of SQLite's
// names for it that no field has taken. (The catalogue refuses a field that takes the last one.)
std::string_view RowIdName(const TableInfo& table);

struct QueryInfo {
  std::string name;
  std::string sql;
  int64_t id = 0;
};

struct Catalogue {
  std::vector<TableInfo> tables;   // by name
  std::vector<QueryInfo> queries;  // by name

  const TableInfo* FindTable(std::string_view name) const;
  const QueryInfo* FindQuery(std::string_view name) const;
  const TableInfo* FindTable(int64_t id) const;
  const QueryInfo* FindQuery(int64_t id) const;
};

}  // namespace ambrelio::embedded
