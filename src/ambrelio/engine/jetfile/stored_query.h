// Stored queries: the file keeps the parts of a statement, of which its text is made again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/catalogue.h"

namespace ambrelio::jetfile {

enum class QueryPart : uint8_t {
  kFirst = 0,
  kKind = 1,
  kParameter = 2,
  kOptions = 3,
  kSource = 4,
  kInput = 5,
  kOutput = 6,
  kJoin = 7,
  kWhere = 8,
  kGroupBy = 9,
  kHaving = 10,
  kOrderBy = 11,
  kLast = 255,
};

// A row of MSysQueries.
struct QueryRow {
  uint32_t query = 0;
  QueryPart part = QueryPart::kFirst;
  std::string order;  // bytes, which count up within a part
  std::string name1;
  std::string name2;
  std::string expression;
  int16_t flag = 0;
  RowPointer row;
};

// All rows of all queries, sorted by query, part and order. Raises Damage.
std::vector<QueryRow> ReadQueryRows(const JetFile& file, const Catalogue& catalogue);

// The statement of one query's rows, in their order: clauses on lines of their own that end with CR
// LF, a semicolon at the end. Texts that are not taken apart (data definition, another server's
// SQL) come as they are stored. Raises Damage when the rows make no statement.
std::string QuerySql(const std::vector<QueryRow>& rows);

// The same of the query of a catalogue's object. Raises Damage.
std::string ReadQuerySql(const JetFile& file, const Catalogue& catalogue,
                         const CatalogueObject& query);

}  // namespace ambrelio::jetfile
