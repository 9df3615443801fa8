#include "ambrelio/engine/embedded/execution/stepwise_update.h"

#include <optional>
#include <vector>

#include "ambrelio/engine/embedded/storage/transaction_level.h"

namespace ambrelio::embedded {

namespace {

// One id for each source, row after row; nothing where an optional side has no partner.
using RowIds = std::vector<std::optional<int64_t>>;

RowIds FindRows(Prepared& prepared) {
  RowIds ids;
  StorageStatement& rows = prepared.main;
  const int sources = static_cast<int>(prepared.stepwise->source_count);
  while (rows.Step()) {
    for (int i = 0; i < sources; ++i) {
      ids.push_back(rows.IsNull(i) ? std::nullopt : std::optional(rows.Integer(i)));
    }
  }
  rows.Reset();
  return ids;
}

void BindRow(StorageStatement& statement, int parameter, const std::optional<int64_t>& id) {
  if (id) {
    statement.Bind(parameter, *id);
  } else {
    sqlite3_bind_null(statement.raw(), parameter);
  }
}

// Writes one target's row; whether it was written.
bool WriteTarget(Storage& storage, const StorageStatement& values, Prepared::Target& target,
                 int64_t row_id) {
  StorageStatement& write = target.write;
  int parameter = 0;
  for (size_t i = 0; i < target.value_count; ++i) {
    sqlite3_bind_value(
        write.raw(), ++parameter,
        sqlite3_column_value(values.raw(), static_cast<int>(target.first_value + i)));
  }
  write.Bind(parameter + 1, row_id);
  write.Step();
  const bool written = storage.Changes() > 0;
  write.Reset();
  return written;
}

int32_t WriteRows(Storage& storage, Prepared& prepared, const RowIds& ids) {
  Prepared::Stepwise& step = *prepared.stepwise;
  int32_t written_rows = 0;
  for (size_t row = 0; row < ids.size(); row += step.source_count) {
    for (size_t i = 0; i < step.source_count; ++i) {
      BindRow(step.values, prepared.row_parameter + static_cast<int>(i), ids[row + i]);
    }
    step.values.Step();
    bool written = false;
    for (Prepared::Target& target : step.targets) {
      const auto& id = ids[row + target.source];
      if (id && WriteTarget(storage, step.values, target, *id)) written = true;
    }
    step.values.Reset();
    if (written) ++written_rows;
  }
  return written_rows;
}

}  // namespace

int32_t UpdateStepwise(Storage& storage, Prepared& prepared) {
  // Inside a transaction nobody else can change what was found, and a single write undoes itself.
  if (storage.level() > 0) {
    const RowIds ids = FindRows(prepared);
    const bool single_write =
        ids.size() == prepared.stepwise->source_count && prepared.stepwise->targets.size() == 1;
    if (ids.empty()) return 0;
    if (single_write) return WriteRows(storage, prepared, ids);
    TransactionLevel level(storage);
    const int32_t written = WriteRows(storage, prepared, ids);
    level.Complete();
    return written;
  }
  TransactionLevel level(storage);
  const int32_t written = WriteRows(storage, prepared, FindRows(prepared));
  level.Complete();
  return written;
}

}  // namespace ambrelio::embedded
