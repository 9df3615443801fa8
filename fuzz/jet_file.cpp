// Jet database files of any content: read and checked to the end, or refused with an error of
// DAO's.
#include <algorithm>
#include <cstring>
#include <random>
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

// Changes a few bytes where they stand: one more or less would move every page behind it. Half of
// the changes go to the beginning of a page, where its structure is.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t, unsigned int seed) {
  constexpr size_t kPage = 2048;
  constexpr size_t kStructure = 512;
  if (size < kPage) return size;
  std::minstd_rand random(seed);
  const auto below = [&random](size_t limit) { return random() % limit; };
  for (size_t change = 1 + below(6); change > 0; --change) {
    const bool structure = below(2) == 0;
    const size_t page = kPage * below(size / kPage);
    const size_t at = std::min(page + below(structure ? kStructure : kPage), size - 4);
    switch (below(4)) {
      case 0:
        data[at] ^= static_cast<uint8_t>(1U << below(8));
        break;
      case 1:
        data[at] = static_cast<uint8_t>(below(256));
        break;
      case 2:
        data[at] = static_cast<uint8_t>(below(2) == 0 ? 0x00 : 0xFF);
        break;
      default:
        std::memmove(data + at, data + below(size - 4), 4);
        break;
    }
  }
  return size;
}

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
