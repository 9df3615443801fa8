#include "ambrelio/engine/jetfile/query_schema.h"

#include <algorithm>
#include <map>

#include "ambrelio/engine/jetfile/catalogue_writer.h"
#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/query_kinds.h"
#include "ambrelio/engine/jetfile/whole_change.h"

namespace ambrelio::jetfile {
namespace {

// What the catalogue says of a query of a kind.
uint32_t FlagsOf(QueryKind kind) {
  switch (kind) {
    case QueryKind::kSelect:
      return 0;
    case QueryKind::kCrosstab:
      return 16;
    case QueryKind::kDelete:
      return 32;
    case QueryKind::kUpdate:
      return 48;
    case QueryKind::kAppend:
      return 64;
    case QueryKind::kMakeTable:
      return 80;
    case QueryKind::kDataDefinition:
      return 96;
    case QueryKind::kPassThrough:
      return 112;
    case QueryKind::kUnion:
      return 128;
  }
  return 0;
}

QueryKind KindOf(const std::vector<QueryRow>& parts) {
  const auto kind = std::find_if(parts.begin(), parts.end(),
                                 [](const auto& row) { return row.part == QueryPart::kKind; });
  return kind == parts.end() ? QueryKind::kSelect : static_cast<QueryKind>(kind->flag);
}

Variant TextOrNull(const std::string& text) {
  return text.empty() ? Variant::Null() : Variant(text);
}

// Most parts have nothing there, and a zero is not nothing.
Variant FlagOrNull(const QueryRow& row) {
  switch (row.part) {
    case QueryPart::kFirst:
    case QueryPart::kKind:
    case QueryPart::kParameter:
    case QueryPart::kOptions:
    case QueryPart::kOutput:
    case QueryPart::kJoin:
      return row.flag;
    default:
      return row.flag == 0 ? Variant::Null() : Variant(row.flag);
  }
}

// The highest byte first, so that the order of bytes is that of numbers.
std::string OrderBytes(uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

// The first and the last row stand before the others, as the original engine writes them.
std::vector<QueryRow> WithEnds(const std::vector<QueryRow>& parts) {
  std::vector<QueryRow> rows(2);
  rows[0].part = QueryPart::kFirst;
  rows[1].part = QueryPart::kLast;
  std::copy_if(parts.begin(), parts.end(), std::back_inserter(rows), [](const QueryRow& row) {
    return row.part != QueryPart::kFirst && row.part != QueryPart::kLast;
  });
  return rows;
}

}  // namespace

void CreateQuery(JetFile& file, std::string_view name, const std::vector<QueryRow>& parts,
                 OleDate now) {
  const Catalogue catalogue = ReadCatalogue(file);
  RequireFreeName(catalogue, name);
  const uint32_t id = NextObjectId(catalogue);
  WholeOrNotAtAll(file, [&] {
    AddObject(file, catalogue, {id, std::string(name), ObjectType::kQuery, FlagsOf(KindOf(parts))},
              now);
    SystemTableWriter writer(file, file.header().queries_table());
    std::map<QueryPart, uint32_t> counters;
    for (const QueryRow& row : WithEnds(parts)) {
      writer.Insert({{"ObjectId", static_cast<int32_t>(id)},
                     {"Attribute", static_cast<uint8_t>(row.part)},
                     {"Order", OrderBytes(++counters[row.part])},
                     {"Name1", TextOrNull(row.name1)},
                     {"Name2", TextOrNull(row.name2)},
                     {"Expression", TextOrNull(row.expression)},
                     {"Flag", FlagOrNull(row)}});
    }
    writer.Finish();
  });
}

void DropQuery(JetFile& file, std::string_view name) {
  const Catalogue catalogue = ReadCatalogue(file);
  const CatalogueObject* query = catalogue.Find(ObjectType::kQuery, name);
  if (query == nullptr) {
    dao::Raise(dao::DaoError::kNotInCollection, dao::source::kQueryDefs, std::string(name));
  }
  WholeOrNotAtAll(file, [&] {
    SystemTableWriter writer(file, file.header().queries_table());
    for (const QueryRow& row : ReadQueryRows(file, catalogue)) {
      if (row.query == query->id) writer.Delete(row.row);
    }
    writer.Finish();
    RemoveObject(file, *query);
  });
}

}  // namespace ambrelio::jetfile
