// What has become of a catalogue, brought into a Jet file.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "ambrelio/engine/embedded/storage/catalogue.h"
#include "ambrelio/engine/jetfile/jet_file.h"
#include "ambrelio/value/ole_date.h"

namespace ambrelio::embedded {

// The pages of the tables' definitions, by the ids of the tables.
using DefinitionPages = std::map<int64_t, uint32_t>;

class SchemaChanges {
 public:
  // All must outlive it. `now` becomes the date of what is changed.
  SchemaChanges(jetfile::JetFile& file, const Catalogue& before, const Catalogue& after,
                OleDate now)
      : file_(file), before_(before), after_(after), now_(now) {}

  // What comes before the rows: drops what is there no longer, renames, adds tables and columns;
  // `pages` follows. Raises what the file cannot hold.
  void BeforeRows(DefinitionPages& pages);
  // What comes after the rows: rules of columns, indexes, queries.
  void AfterRows(const DefinitionPages& pages);

 private:
  void DropParts(uint32_t page, const TableInfo& before, const TableInfo& after);
  void ChangeColumns(uint32_t page, const TableInfo& before, const TableInfo& after);
  void ChangeRules(uint32_t page, const TableInfo& before, const TableInfo& after);
  uint16_t NumberOf(uint32_t page, const std::string& column) const;

  jetfile::JetFile& file_;
  const Catalogue& before_;
  const Catalogue& after_;
  OleDate now_;
};

}  // namespace ambrelio::embedded
