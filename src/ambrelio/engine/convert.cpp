#include "ambrelio/engine/convert.h"

#include "ambrelio/engine/embedded/database_file.h"
#include "ambrelio/engine/embedded/jet/jet_catalogue.h"
#include "ambrelio/engine/embedded/storage/catalogue_store.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/engine/embedded/storage/transaction_level.h"
#include "ambrelio/engine/jetfile/shared_file.h"

namespace ambrelio::engine {
namespace {

using embedded::CatalogueStore;
using embedded::FieldInfo;
using embedded::QueryInfo;
using embedded::QuoteName;
using embedded::Storage;
using embedded::StorageStatement;
using embedded::TableInfo;

// In the order in which the old file delivers them.
void CopyRows(Storage& from, Storage& to, const TableInfo& table) {
  std::string columns;
  std::string places;
  for (const FieldInfo& field : table.fields) {
    columns += (columns.empty() ? "" : ", ") + QuoteName(field.name);
    places += places.empty() ? "?" : ", ?";
  }
  const std::string name = QuoteName(table.name);
  from.Need({.read = {table.name}, .written = {}});
  StorageStatement rows(from.raw(), "select " + columns + " from " + name + " order by " +
                                        std::string(embedded::RowIdName(table)));
  StorageStatement insert(to.raw(),
                          "insert into " + name + "(" + columns + ") values(" + places + ")");
  while (rows.Step()) {
    for (int i = 0; i < rows.ColumnCount(); ++i) {
      sqlite3_bind_value(insert.raw(), i + 1, sqlite3_column_value(rows.raw(), i));
    }
    insert.Step();
    insert.Reset();
  }
}

void CopyAll(Storage& from, Storage& to) {
  CatalogueStore source(from);
  CatalogueStore target(to);
  embedded::TransactionLevel level(to);
  for (const TableInfo& table : source.Current().tables) {
    target.CreateTable(table);
    CopyRows(from, to, table);
  }
  for (const QueryInfo& query : source.Current().queries) {
    target.CreateQuery({query.name, query.sql});
  }
  level.Complete();
}

}  // namespace

std::vector<std::string> Convert(const std::string& from, const std::string& to,
                                 const std::string& password) {
  const auto source = embedded::OpenFile(from, password, Storage::Access::kReadOnly);
  embedded::CreateWhole(to, [&](const std::string& unfinished) {
    CopyAll(*source, *embedded::CreateFile(unfinished, password, embedded::FormByName(to)));
  });
  if (!source->backed()) return {};
  const auto file =
      jetfile::SharedFile::Open(from, password, jetfile::SharedFile::Access::kReadOnly);
  const auto moment = file->Read();
  return embedded::NotShown(file->file());
}

}  // namespace ambrelio::engine
