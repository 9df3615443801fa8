#include "ambrelio/engine/jetfile/check_definition.h"

#include <algorithm>
#include <set>

#include "ambrelio/platform/characters.h"

namespace ambrelio::jetfile {
namespace {

class DefinitionCheck {
 public:
  DefinitionCheck(const JetFile& file, const std::string& name, const TableDefinition& definition,
                  Findings& findings)
      : file_(file), name_(name), definition_(definition), findings_(findings) {}

  void Run() {
    CheckBytes();
    CheckOrder();
    CheckNumbers();
    CheckFixedColumns();
    CheckIndexes();
    CheckLongValues();
  }

 private:
  void Say(size_t offset, const std::string& text) {
    findings_.Add(Rule::kDefinition, {definition_.page(), offset}, text + " in table " + name_);
  }
  void Say(const std::string& text) { Say(0, text); }

  void CheckBytes() {
    const DefinitionString string = ReadDefinitionString(file_, definition_.page());
    if (SerialiseDefinition(file_, definition_) != string.bytes) {
      Say(8, "the length of the definition is not that of its parts");
    }
    const size_t page_size = file_.format().page_size;
    const size_t taken = definition_.length + DefinitionLayout::kPageHeaderBytes;
    const size_t free = taken < page_size ? page_size - taken : 0;
    if (file_.format().jet4 && string.pages.size() == 1 && definition_.free_bytes != free) {
      Say(DefinitionLayout::kFreeBytesAt, "the definition says that " +
                                              std::to_string(definition_.free_bytes) +
                                              " bytes are free instead of " + std::to_string(free));
    }
  }

  void CheckOrder() {
    std::set<std::string> names;
    std::pair<uint16_t, std::string> before;
    for (const ColumnDefinition& column : definition_.columns) {
      std::pair<uint16_t, std::string> now{column.ordinal, UpperCase(column.name)};
      if (!names.insert(now.second).second) Say("two columns are named " + column.name);
      if (now.first < before.first) Say("the column " + column.name + " stands behind its place");
      before = std::move(now);
    }
  }

  void CheckNumbers() {
    std::set<uint16_t> variable;
    for (const ColumnDefinition& column : definition_.columns) {
      if (column.number >= definition_.column_mark) {
        Say("the column " + column.name + " has the impossible number " +
            std::to_string(column.number));
      }
      if (column.fixed() || column.type == ColumnType::kBoolean) continue;
      if (column.variable_index >= definition_.variable_mark ||
          !variable.insert(column.variable_index).second) {
        Say("the column " + column.name + " has the impossible variable index " +
            std::to_string(column.variable_index));
      }
    }
  }

  void CheckFixedColumns() {
    std::vector<const ColumnDefinition*> fixed;
    for (const ColumnDefinition& column : definition_.columns) {
      if (column.fixed() && column.type != ColumnType::kBoolean) fixed.push_back(&column);
    }
    std::sort(fixed.begin(), fixed.end(),
              [](const auto* a, const auto* b) { return a->fixed_offset < b->fixed_offset; });
    for (size_t i = 1; i < fixed.size(); ++i) {
      if (fixed[i - 1]->fixed_offset + fixed[i - 1]->length <= fixed[i]->fixed_offset) continue;
      Say("the columns " + fixed[i - 1]->name + " and " + fixed[i]->name + " overlap");
    }
  }

  void CheckIndexes() {
    for (const IndexDefinition& index : definition_.indexes) {
      const auto columns = index.Columns();
      if (columns.empty()) Say("an index has no columns");
      for (const KeyColumn& key : columns) {
        if (definition_.FindColumn(key.column) != nullptr) continue;
        Say("an index is over the unknown column " + std::to_string(key.column));
      }
    }
    std::set<uint32_t> numbers;
    for (const IndexName& name : definition_.index_names) {
      if (name.index >= definition_.indexes.size()) {
        Say("the index " + name.name + " has no tree");
      }
      if (!numbers.insert(name.number).second) {
        Say("the number of index " + name.name + " is taken");
      }
    }
  }

  // Columns of the oldest engines have no maps, but a map is always a column's.
  void CheckLongValues() {
    std::set<uint16_t> seen;
    for (const LongValueMaps& maps : definition_.long_values) {
      const ColumnDefinition* column = definition_.FindColumn(maps.column);
      if (column == nullptr || !column->long_value() || !seen.insert(maps.column).second) {
        Say("there are maps of long values for the impossible column " +
            std::to_string(maps.column));
      }
    }
    for (const ColumnDefinition& column : definition_.columns) {
      if (file_.format().jet4 && column.long_value() && !seen.contains(column.number)) {
        Say("the column " + column.name + " has no maps of its long values");
      }
    }
  }

  const JetFile& file_;
  const std::string& name_;
  const TableDefinition& definition_;
  Findings& findings_;
};

}  // namespace

void CheckDefinition(const JetFile& file, const std::string& name,
                     const TableDefinition& definition, Findings& findings) {
  DefinitionCheck(file, name, definition, findings).Run();
}

}  // namespace ambrelio::jetfile
