#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/functions/functions.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {
namespace {

// What SQLite sets behind the colon: the columns of a broken key, the name of a broken check.
std::string Detail(std::string_view message) {
  const size_t colon = message.find(": ");
  return colon == std::string_view::npos ? "" : std::string(message.substr(colon + 2));
}

[[noreturn]] void RaiseBrokenConstraint(int code, const std::string& detail) {
  using dao::DaoError;
  switch (code) {
    case SQLITE_CONSTRAINT_COMMITHOOK:
      dao::Raise(DaoError::kNoTransaction, dao::source::kDatabase);
    case SQLITE_CONSTRAINT_NOTNULL:
      dao::Raise(DaoError::kNullInPrimaryKey, dao::source::kDatabase, detail);
    case SQLITE_CONSTRAINT_CHECK: {
      const size_t colon = detail.find(':');
      const std::string field = colon == std::string::npos ? detail : detail.substr(colon + 1);
      dao::Raise(detail.substr(0, colon) == kZeroLengthRule ? DaoError::kZeroLengthText
                                                            : DaoError::kNullInRequiredField,
                 dao::source::kDatabase, field);
    }
    default:
      dao::Raise(DaoError::kDuplicateKey, dao::source::kDatabase, detail);
  }
}

}  // namespace

void RaiseStorageError(sqlite3* db, int code) {
  using dao::DaoError;
  const char* const text = sqlite3_errmsg(db);
  if (const auto raised = DecodeFunctionError(text)) throw *raised;
  const std::string message = text == nullptr ? "" : text;
  switch (code & 0xFF) {
    case SQLITE_CONSTRAINT:
      RaiseBrokenConstraint(code, Detail(message));
    case SQLITE_BUSY:
      dao::Raise(DaoError::kRecordLocked, dao::source::kDatabase);
    case SQLITE_LOCKED:
      dao::Raise(DaoError::kTableLocked, dao::source::kDatabase, Detail(message));
    case SQLITE_READONLY:
      dao::Raise(DaoError::kReadOnly, dao::source::kDatabase);
    case SQLITE_FULL:
      dao::Raise(DaoError::kDiskFull, dao::source::kDatabase);
    case SQLITE_IOERR:
      // The log's index, for one, finds no room without saying so.
      dao::Raise(sqlite3_system_errno(db) == ENOSPC ? DaoError::kDiskFull : DaoError::kDiskError,
                 dao::source::kDatabase);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: {
      const char* const file = sqlite3_db_filename(db, nullptr);
      dao::Raise(DaoError::kNotADatabaseOrDamaged, dao::source::kDatabase,
                 file == nullptr ? "" : file);
    }
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH: {
      const char* const file = sqlite3_db_filename(db, nullptr);
      dao::Raise(DaoError::kAccessDenied, dao::source::kDatabase, file == nullptr ? "" : file);
    }
    case SQLITE_NOMEM:
      throw std::bad_alloc();
    case SQLITE_TOOBIG:
      dao::Raise(DaoError::kConditionOverflow, dao::source::kDatabase);
    default:
      dao::Raise(DaoError::kReserved, dao::source::kDatabase, message);
  }
}

StorageStatement::StorageStatement(sqlite3* db, const std::string& sql) : db_(db) {
  const int code = sqlite3_prepare_v3(db, sql.c_str(), static_cast<int>(sql.size()) + 1,
                                      SQLITE_PREPARE_PERSISTENT, &statement_, nullptr);
  if (code != SQLITE_OK) RaiseStorageError(db, code);
}

StorageStatement::StorageStatement(StorageStatement&& other) noexcept
    : db_(other.db_),
      statement_(std::exchange(other.statement_, nullptr)),
      bound_(std::move(other.bound_)) {}

StorageStatement& StorageStatement::operator=(StorageStatement&& other) noexcept {
  std::swap(db_, other.db_);
  std::swap(statement_, other.statement_);
  std::swap(bound_, other.bound_);
  return *this;
}

StorageStatement::~StorageStatement() { sqlite3_finalize(statement_); }

void StorageStatement::Bind(int parameter, const Variant& value) {
  const auto text = [&](const std::string& bytes) {
    return sqlite3_bind_text(statement_, parameter, bytes.data(), static_cast<int>(bytes.size()),
                             SQLITE_TRANSIENT);  // NOLINT(performance-no-int-to-ptr)
  };
  int code = SQLITE_OK;
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      code = sqlite3_bind_null(statement_, parameter);
      break;
    case VariantType::kBoolean:
      return Bind(parameter, int64_t{value.as<bool>() ? -1 : 0});
    case VariantType::kByte:
      return Bind(parameter, int64_t{value.as<uint8_t>()});
    case VariantType::kInteger:
      return Bind(parameter, int64_t{value.as<int16_t>()});
    case VariantType::kLong:
      return Bind(parameter, int64_t{value.as<int32_t>()});
    case VariantType::kSingle:
      code = sqlite3_bind_double(statement_, parameter, value.as<float>());
      break;
    case VariantType::kDouble:
      code = sqlite3_bind_double(statement_, parameter, value.as<double>());
      break;
    case VariantType::kCurrency:
      code = sqlite3_bind_double(statement_, parameter,
                                 static_cast<double>(value.as<Currency>().ten_thousandths) / 10000);
      break;
    case VariantType::kDate:
      code = sqlite3_bind_double(statement_, parameter, value.as<OleDate>().days());
      break;
    case VariantType::kText:
      code = text(value.as<std::string>());
      break;
    case VariantType::kArray:
    case VariantType::kObject:
      Raise(RuntimeError::kTypeMismatch);
  }
  if (code != SQLITE_OK) RaiseStorageError(db_, code);
}

void StorageStatement::Bind(int parameter, int64_t value) {
  const int code = sqlite3_bind_int64(statement_, parameter, value);
  if (code != SQLITE_OK) RaiseStorageError(db_, code);
}

void StorageStatement::BindAll(const std::vector<Variant>& values) {
  const auto wanted = static_cast<size_t>(sqlite3_bind_parameter_count(statement_));
  const size_t count = std::min(wanted, values.size());
  bound_.resize(std::max(bound_.size(), count));
  for (size_t i = 0; i < count; ++i) {
    if (bound_[i] == values[i]) continue;
    bound_[i] = Variant();  // which no literal is, should the binding fail
    Bind(static_cast<int>(i) + 1, values[i]);
    bound_[i] = values[i];
  }
}

bool StorageStatement::Step() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  sqlite3_reset(statement_);  // lets go of the locks; the message stays
  RaiseStorageError(db_, code);
}

void StorageStatement::Reset() { sqlite3_reset(statement_); }

int StorageStatement::ColumnCount() const { return sqlite3_column_count(statement_); }

bool StorageStatement::IsNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

int64_t StorageStatement::Integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

double StorageStatement::Real(int column) const {
  return sqlite3_column_double(statement_, column);
}

std::string_view StorageStatement::Text(int column) const {
  const auto* const bytes = sqlite3_column_text(statement_, column);
  if (bytes == nullptr) return {};
  return {reinterpret_cast<const char*>(bytes),
          static_cast<size_t>(sqlite3_column_bytes(statement_, column))};
}

}  // namespace ambrelio::embedded
