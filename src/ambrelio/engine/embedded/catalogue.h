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

struct FieldInfo {
  std::string name;
  dao::FieldType type = dao::FieldType::kText;
  int32_t size = 0;  // characters of a Text
  int16_t position = 0;
  int32_t attributes = 0;
  bool required = false;
  bool allow_zero_length = false;
  std::string default_value;  // an SQL expression, "" for none
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
};

struct TableInfo {
  std::string name;
  // In the order they are delivered: by position, equal positions by name.
  std::vector<FieldInfo> fields;
  std::vector<IndexInfo> indexes;

  const FieldInfo* FindField(std::string_view field_name) const;  // null when there is none
  const IndexInfo* FindIndex(std::string_view index_name) const;
  const IndexInfo* PrimaryKey() const;
  void SortFields();
};

struct QueryInfo {
  std::string name;
  std::string sql;
};

struct Catalogue {
  std::vector<TableInfo> tables;   // by name
  std::vector<QueryInfo> queries;  // by name

  const TableInfo* FindTable(std::string_view name) const;
  const QueryInfo* FindQuery(std::string_view name) const;
};

}  // namespace ambrelio::embedded
