#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/host/create_database.h"
#include "ambrelio/host/csv.h"
#include "ambrelio/host/sql_literal.h"
#include "ambrelio/platform/atomic_file.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"
#include "ambrelio/value/locale.h"

namespace ambrelio::host {
namespace {

std::string ReadFile(const std::string& path) {
  auto bytes = ReadWholeFile(path);
  if (!bytes) Raise(RuntimeError::kPathFileAccess, path + ": the file cannot be read");
  return *std::move(bytes);
}

// Whether no row would have gone in.
bool IsOfTheDisk(const AutomationError& error) {
  return error.number() == static_cast<int>(dao::DaoError::kDiskFull) ||
         error.number() == static_cast<int>(dao::DaoError::kDiskError);
}

// Inserts the rows of one file into one table.
class MasterLoader {
 public:
  MasterLoader(dao::Database& database, const std::string& table, const std::string& path)
      : database_(database), table_(table), path_(path) {}

  int Load() {
    const std::vector<CsvRow> rows = ParseCsv(ReadFile(path_), path_);
    if (rows.empty()) Fail(1, "the line with the column names is missing");
    ReadHeader(rows.front());
    for (size_t i = 1; i < rows.size(); ++i) Insert(rows[i]);
    return static_cast<int>(rows.size()) - 1;
  }

 private:
  void ReadHeader(const CsvRow& header) {
    const auto definition = database_.TableDefs().Item(table_);
    auto& fields = definition->Fields();
    for (const std::string& name : header.fields) {
      try {
        const auto field = fields.Item(name);
        types_.push_back(field->Type());
        columns_ += (columns_.empty() ? "" : ", ") + field->Name();
      } catch (const AutomationError&) {
        Fail(header.line, "the table " + table_ + " has no column '" + name + "'");
      }
    }
  }

  void Insert(const CsvRow& row) {
    if (row.fields.size() != types_.size()) {
      Fail(row.line, std::to_string(types_.size()) + " values expected, " +
                         std::to_string(row.fields.size()) + " found");
    }
    std::string values;
    for (size_t i = 0; i < types_.size(); ++i) {
      values += (i == 0 ? "" : ", ") + Literal(row.fields[i], types_[i], row.line);
    }
    try {
      database_.Execute("insert into " + table_ + " (" + columns_ + ") values (" + values + ")",
                        dao::kFailOnError);
    } catch (const AutomationError& error) {
      if (IsOfTheDisk(error)) throw;
      Fail(row.line, error.description());
    }
  }

  std::string Literal(const std::string& text, dao::FieldType type, int line) {
    if (text.empty()) return "Null";
    if (type == dao::FieldType::kText || type == dao::FieldType::kMemo) return SqlLiteral(text);
    // The file is the same on every machine: a point is the decimal sign, whatever the locale.
    const ScopedLocale plain{Locale{}};
    const auto number = ParseNumber(text);
    if (!number) Fail(line, "'" + text + "' is not a number");
    return SqlLiteral(*number);
  }

  [[noreturn]] void Fail(int line, const std::string& what) {
    Raise(RuntimeError::kInvalidCall, path_ + ":" + std::to_string(line) + ": " + what);
  }

  dao::Database& database_;
  const std::string& table_;
  const std::string& path_;
  std::vector<dao::FieldType> types_;
  std::string columns_;
};

}  // namespace

int LoadMaster(dao::DBEngine& engine, dao::Database& database, const std::string& table,
               const std::string& csv_path) {
  dao::Workspace& workspace = engine.DefaultWorkspace();
  workspace.BeginTrans();
  try {
    const int rows = MasterLoader(database, table, csv_path).Load();
    workspace.CommitTrans();
    return rows;
  } catch (const AutomationError&) {
    workspace.Rollback();
    throw;
  }
}

}  // namespace ambrelio::host
