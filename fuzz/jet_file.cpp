// Jet database files of any content: read and checked to the end, or refused with an error of
// DAO's.
#include <set>
#include <string>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/stored_query.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "fuzz.h"

namespace {

using namespace ambrelio::jetfile;  // NOLINT(google-build-using-namespace)
using ambrelio::fuzz::Require;

template <class Action>
void Try(Action action) {
  try {
    action();
  } catch (const ambrelio::AutomationError& error) {
    Require(error.number() >= 3000, "a refusal has a number of DAO's");
    Require(!error.description().empty(), "a refusal says why");
  }
}

void ReadTable(const JetFile& file, const TableDefinition& definition) {
  TableReader reader(file, definition);
  while (reader.Next()) {
    for (const ColumnDefinition& column : definition.columns) reader.Value(column);
  }
}

void ReadIndexes(const JetFile& file, const TableDefinition& definition) {
  for (const IndexDefinition& index : definition.indexes) {
    Try([&] { IndexTree(file, index).Walk([](const IndexEntry&) {}); });
  }
}

void ReadEverything(const JetFile& file) {
  const Catalogue catalogue = ReadCatalogue(file);
  std::set<uint32_t> seen;  // what a thousand objects point to takes no longer than once
  for (const CatalogueObject& object : catalogue.objects) {
    if (!seen.insert(object.id).second) continue;
    if (object.type == ObjectType::kTable) {
      Try([&] {
        const TableDefinition definition = ReadDefinition(file, object.definition_page());
        Try([&] { ReadIndexes(file, definition); });
        ReadTable(file, definition);
      });
    } else if (object.type == ObjectType::kQuery) {
      Try([&] { ReadQuerySql(file, catalogue, object); });
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> bytes(data, size);
  Try([bytes] {
    const std::string password = ParseHeader({bytes, {}}).password;
    const JetFile file = JetFile::FromBytes(bytes, password);
    Try([&file] { ReadEverything(file); });
    const auto findings = Check(file);
    for (const Finding& finding : findings) Require(!finding.text.empty(), "a finding says what");
  });
  return 0;
}
