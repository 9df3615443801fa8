// Tables changed at random, beside a model of them: what the tests of the writers share.
#pragma once

#include <map>
#include <random>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/table_writer.h"

namespace ambrelio::jetfile {

using TableRowValues = std::map<RowPointer, std::vector<Variant>>;

// All rows of the table whose definition starts on a page, by their pointers.
TableRowValues ReadRows(const JetFile& file, uint32_t definition_page);

// The definition's page of a table by its name, also of a system table.
uint32_t PageOfTable(const JetFile& file, const std::string& name);
// The tables that people made, by name.
std::map<std::string, uint32_t> UserTables(const JetFile& file);

// What the checker says against a file, a line each; "" for a sound one.
std::string CheckText(const JetFile& file);

// The file as it would be on a disk.
Bytes StoredBytes(const JetFile& file);

// Values of any kind, many of them Null, some of them long; the texts are such as an index can
// have.
class RandomValues {
 public:
  explicit RandomValues(uint32_t seed) : random_(seed) {}

  size_t Below(size_t limit) {
    return std::uniform_int_distribution<size_t>(0, limit - 1)(random_);
  }
  bool OneIn(size_t times) { return Below(times) == 0; }
  std::vector<Variant> Row(const TableDefinition& definition);
  Variant Value(const ColumnDefinition& column);

 private:
  std::string Text(size_t characters);
  size_t LongLength();

  std::mt19937 random_;
};

}  // namespace ambrelio::jetfile
