#include "ambrelio/engine/jetfile/system_table_writer.h"

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/engine/jetfile/table_reader.h"

namespace ambrelio::jetfile {

std::vector<Variant> SystemTableWriter::Named(std::vector<Variant> row,
                                              const NamedValues& values) const {
  const TableDefinition& definition = writer_.definition();
  row.resize(definition.columns.size(), Variant::Null());
  for (const auto& [name, value] : values) {
    const ColumnDefinition* column = definition.FindColumn(name);
    if (column == nullptr) {
      throw Damage({definition.page(), 0}, "a system table has no column " + std::string(name));
    }
    row[static_cast<size_t>(column - definition.columns.data())] = value;
  }
  return row;
}

void SystemTableWriter::Update(RowPointer row, const NamedValues& values) {
  const TableDefinition& definition = writer_.definition();
  const DataPage head = ReadTablePage(file_, definition, row.page);
  const RowBody body = FollowRow(file_, definition, head, row.row);
  const Row stored(body.page.Row(body.at.row), definition, file_.format().jet4);
  std::vector<Variant> now;
  for (const ColumnDefinition& column : definition.columns) {
    now.push_back(ReadValue(file_, stored, column));
  }
  changes_.updated.emplace_back(row, Named(std::move(now), values));
}

void SystemTableWriter::Finish() {
  writer_.Apply(changes_);
  writer_.Finish();
}

}  // namespace ambrelio::jetfile
