#include "ambrelio/engine/jetfile/checker.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/check_catalogue.h"
#include "ambrelio/engine/jetfile/check_definition.h"
#include "ambrelio/engine/jetfile/check_index.h"
#include "ambrelio/engine/jetfile/check_rows.h"
#include "ambrelio/engine/jetfile/page_owners.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint16_t kLeastCommit = 0x0100;

class Checker {
 public:
  explicit Checker(const JetFile& file) : file_(file), owners_(file, findings_) {}

  std::vector<Finding> Run() {
    CheckFile();
    owners_.ClaimFreePages(file_.header().free_map);
    owners_.ClaimMap(file_.header().released_map, "the released pages");
    Catalogue catalogue;
    const bool read = findings_.Try(Rule::kCatalogue, [&] { catalogue = ReadCatalogue(file_); });
    for (const CatalogueObject& object : catalogue.objects) {
      if (object.type == ObjectType::kTable) CheckTable(object);
    }
    // Without the catalogue nobody knows whose pages are whose.
    if (read) {
      CheckCatalogue(file_, catalogue, definitions_, findings_);
      owners_.Finish();
    }
    return findings_.Take();
  }

 private:
  void CheckFile() {
    if (file_.torn_bytes() > 0) {
      findings_.Add(
          Rule::kFile, {file_.page_count(), 0},
          "the file ends with " + std::to_string(file_.torn_bytes()) + " bytes of a page");
    }
    const auto& commits = file_.header().commits;
    for (size_t i = 0; i < commits.size(); ++i) {
      if (commits[i] >= kLeastCommit) continue;
      findings_.Add(Rule::kFile, {0, file_.format().commit_table_at + 2 * i},
                    "user " + std::to_string(i) + " was in the middle of writing");
    }
  }

  void CheckTable(const CatalogueObject& object) {
    const uint32_t page = object.definition_page();
    if (definitions_.contains(page)) {
      findings_.Add(Rule::kCatalogue, {object.row.page, 0},
                    "the table " + object.name + " has the definition of another");
      return;
    }
    TableDefinition definition;
    if (!findings_.Try(Rule::kDefinition, [&] { definition = ReadDefinition(file_, page); })) {
      return;
    }
    for (const uint32_t number : definition.pages) {
      owners_.Claim(number, "the definition of table " + object.name);
    }
    CheckDefinition(file_, object.name, definition, findings_);
    const auto rows = RowsCheck(file_, object.name, definition, owners_, findings_).Run();
    for (size_t i = 0; i < definition.indexes.size(); ++i) {
      const std::string name = IndexNameOf(definition, i) + " of table " + object.name;
      IndexCheck(file_, name, definition, definition.indexes[i], owners_, findings_)
          .Run(rows ? &(*rows)[i] : nullptr);
    }
    definitions_.emplace(page, std::move(definition));
  }

  static std::string IndexNameOf(const TableDefinition& definition, size_t index) {
    const auto& names = definition.index_names;
    const auto found = std::find_if(names.begin(), names.end(),
                                    [index](const IndexName& name) { return name.index == index; });
    return found == names.end() ? "without a name" : found->name;
  }

  const JetFile& file_;
  Findings findings_;
  PageOwners owners_;
  Definitions definitions_;
};

}  // namespace

std::vector<Finding> Check(const JetFile& file) { return Checker(file).Run(); }

}  // namespace ambrelio::jetfile
