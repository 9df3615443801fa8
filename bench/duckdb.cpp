#include "duckdb.h"

#include <dlfcn.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::bench {

// The part of the C interface that is used here, as the library documents it.
struct DuckInterface {
  using Handle = void*;
  struct Result {
    uint64_t column_count, row_count, rows_changed;
    void* columns;
    char* error;
    void* data;
  };
  enum Type { kSmallInt = 3, kInteger = 4, kBigInt = 5, kDouble = 11, kVarchar = 17 };

  const char* (*library_version)();
  int (*open)(const char*, Handle*);
  void (*close)(Handle*);
  int (*connect)(Handle, Handle*);
  void (*disconnect)(Handle*);
  int (*query)(Handle, const char*, Result*);
  void (*destroy_result)(Result*);
  const char* (*result_error)(Result*);
  int (*prepare)(Handle, const char*, Handle*);
  const char* (*prepare_error)(Handle);
  void (*destroy_prepare)(Handle*);
  int (*bind_int32)(Handle, uint64_t, int32_t);
  int (*bind_double)(Handle, uint64_t, double);
  int (*execute_prepared)(Handle, Result*);
  Handle (*fetch_chunk)(Result);
  void (*destroy_data_chunk)(Handle*);
  uint64_t (*data_chunk_get_size)(Handle);
  Handle (*data_chunk_get_vector)(Handle, uint64_t);
  void* (*vector_get_data)(Handle);
  uint64_t* (*vector_get_validity)(Handle);
  uint64_t (*column_count)(Result*);
  int (*column_type)(Result*, uint64_t);
  int (*appender_create)(Handle, const char*, const char*, Handle*);
  int (*append_int32)(Handle, int32_t);
  int (*append_double)(Handle, double);
  int (*append_varchar_length)(Handle, const char*, uint64_t);
  int (*append_null)(Handle);
  int (*appender_end_row)(Handle);
  int (*appender_destroy)(Handle*);
};

namespace {

[[noreturn]] void Fail(const std::string& what, const char* why) {
  std::fprintf(stderr, "DuckDB: %s: %s\n", what.c_str(), why == nullptr ? "?" : why);
  std::exit(1);
}

template <class Function>
void Find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, (std::string("duckdb_") + name).c_str()));
  if (function == nullptr) Fail("the library has no function", name);
}

std::unique_ptr<DuckInterface> Load(const std::string& path) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) Fail("the library cannot be loaded", dlerror());
  auto duck = std::make_unique<DuckInterface>();
  Find(library, "library_version", duck->library_version);
  Find(library, "open", duck->open);
  Find(library, "close", duck->close);
  Find(library, "connect", duck->connect);
  Find(library, "disconnect", duck->disconnect);
  Find(library, "query", duck->query);
  Find(library, "destroy_result", duck->destroy_result);
  Find(library, "result_error", duck->result_error);
  Find(library, "prepare", duck->prepare);
  Find(library, "prepare_error", duck->prepare_error);
  Find(library, "destroy_prepare", duck->destroy_prepare);
  Find(library, "bind_int32", duck->bind_int32);
  Find(library, "bind_double", duck->bind_double);
  Find(library, "execute_prepared", duck->execute_prepared);
  Find(library, "fetch_chunk", duck->fetch_chunk);
  Find(library, "destroy_data_chunk", duck->destroy_data_chunk);
  Find(library, "data_chunk_get_size", duck->data_chunk_get_size);
  Find(library, "data_chunk_get_vector", duck->data_chunk_get_vector);
  Find(library, "vector_get_data", duck->vector_get_data);
  Find(library, "vector_get_validity", duck->vector_get_validity);
  Find(library, "column_count", duck->column_count);
  Find(library, "column_type", duck->column_type);
  Find(library, "appender_create", duck->appender_create);
  Find(library, "append_int32", duck->append_int32);
  Find(library, "append_double", duck->append_double);
  Find(library, "append_varchar_length", duck->append_varchar_length);
  Find(library, "append_null", duck->append_null);
  Find(library, "appender_end_row", duck->appender_end_row);
  Find(library, "appender_destroy", duck->appender_destroy);
  return duck;
}

// One value of a column of a chunk.
class Column {
 public:
  Column(const DuckInterface& duck, void* vector, int type)
      : data_(static_cast<const char*>(duck.vector_get_data(vector))),
        validity_(duck.vector_get_validity(vector)),
        type_(type) {}

  void Read(uint64_t row, Answer& answer) const {
    if (validity_ != nullptr && (validity_[row / 64] >> (row % 64) & 1) == 0) {
      return answer.AddNull();
    }
    switch (type_) {
      case DuckInterface::kSmallInt:
        return answer.Add(static_cast<double>(At<int16_t>(row)));
      case DuckInterface::kInteger:
        return answer.Add(static_cast<double>(At<int32_t>(row)));
      case DuckInterface::kBigInt:
        return answer.Add(static_cast<double>(At<int64_t>(row)));
      case DuckInterface::kDouble:
        return answer.Add(At<double>(row));
      case DuckInterface::kVarchar:
        return answer.Add(TextAt(row));
      default:
        Fail("a column has an unexpected type", std::to_string(type_).c_str());
    }
  }

 private:
  template <class T>
  T At(uint64_t row) const {
    T value;
    std::memcpy(&value, data_ + row * sizeof(T), sizeof(T));
    return value;
  }
  // A text is its length and up to 12 bytes, or 4 bytes and the place of all.
  std::string_view TextAt(uint64_t row) const {
    constexpr size_t kSize = 16, kInline = 12, kPlace = 8;
    const char* text = data_ + row * kSize;
    uint32_t length = 0;
    std::memcpy(&length, text, sizeof(length));
    if (length <= kInline) return {text + sizeof(length), length};
    const char* place = nullptr;
    std::memcpy(&place, text + kPlace, sizeof(place));
    return {place, length};
  }

  const char* data_;
  const uint64_t* validity_;
  int type_;
};

std::vector<std::string> Texts(sqlite3* db, const std::string& sql) {
  embedded::StorageStatement statement(db, sql);
  std::vector<std::string> texts;
  while (statement.Step()) texts.emplace_back(statement.Text(0));
  return texts;
}

}  // namespace

DuckDb::DuckDb(const std::string& library) : duck_(Load(library)) {
  if (duck_->open(nullptr, &database_) != 0 || duck_->connect(database_, &connection_) != 0) {
    Fail("open", "refused");
  }
}

DuckDb::~DuckDb() {
  duck_->disconnect(&connection_);
  duck_->close(&database_);
}

std::string DuckDb::Version() const { return duck_->library_version(); }

bool DuckDb::TryRun(const std::string& sql) {
  DuckInterface::Result result{};
  const bool done = duck_->query(connection_, sql.c_str(), &result) == 0;
  duck_->destroy_result(&result);
  return done;
}

void DuckDb::Run(const std::string& sql) {
  if (!TryRun(sql)) Fail(sql, "refused");
}

void DuckDb::CopyFrom(sqlite3* db) {
  for (const std::string& table :
       Texts(db,
             "select name from sqlite_master where type='table' and name not like '%.%' and "
             "name not like 'sqlite%'")) {
    CopyTable(db, table);
  }
  // It has no indexes on some of the rows.
  for (const std::string& index :
       Texts(db,
             "select sql from sqlite_master where type='index' and sql not like '% where %' and "
             "tbl_name not like '%.%' and "
             "name not like 'sqlite%'")) {
    Run(index);
  }
}

void DuckDb::CopyTable(sqlite3* db, const std::string& table) {
  embedded::StorageStatement columns(
      db, "select name, type from pragma_table_info('" + table + "') order by cid");
  std::string form;
  while (columns.Step()) {
    const std::string_view type = columns.Text(1);
    form += (form.empty() ? "" : ", ") + embedded::QuoteName(columns.Text(0)) +
            (type == "REAL"   ? " double"
             : type == "TEXT" ? " varchar"
                              : " integer");
  }
  Run("create table " + embedded::QuoteName(table) + " (" + form + ")");

  void* appender = nullptr;
  if (duck_->appender_create(connection_, nullptr, table.c_str(), &appender) != 0) {
    Fail(table, "no appender");
  }
  embedded::StorageStatement rows(db, "select * from " + embedded::QuoteName(table));
  const int count = rows.ColumnCount();
  while (rows.Step()) {
    for (int i = 0; i < count; ++i) {
      switch (sqlite3_column_type(rows.raw(), i)) {
        case SQLITE_INTEGER:
          duck_->append_int32(appender, static_cast<int32_t>(rows.Integer(i)));
          break;
        case SQLITE_FLOAT:
          duck_->append_double(appender, rows.Real(i));
          break;
        case SQLITE_TEXT:
          duck_->append_varchar_length(appender, rows.Text(i).data(), rows.Text(i).size());
          break;
        default:
          duck_->append_null(appender);
      }
    }
    if (duck_->appender_end_row(appender) != 0) Fail(table, "a row was refused");
  }
  if (duck_->appender_destroy(&appender) != 0) Fail(table, "the rows were refused");
}

DuckDb::Query::Query(DuckDb& duck, const std::string& sql) : duck_(duck) {
  if (duck.duck_->prepare(duck.connection_, sql.c_str(), &statement_) != 0) {
    Fail(sql, duck.duck_->prepare_error(statement_));
  }
}

DuckDb::Query::~Query() { duck_.duck_->destroy_prepare(&statement_); }

void DuckDb::Query::Ask(const std::vector<Variant>& parameters, Answer& answer) {
  const DuckInterface& duck = *duck_.duck_;
  for (size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i].type() == VariantType::kDouble) {
      duck.bind_double(statement_, i + 1, parameters[i].as<double>());
    } else {
      duck.bind_int32(statement_, i + 1, ToLong(parameters[i]));
    }
  }
  DuckInterface::Result result{};
  if (duck.execute_prepared(statement_, &result) != 0) Fail("a query", duck.result_error(&result));
  const uint64_t count = duck.column_count(&result);
  while (void* chunk = duck.fetch_chunk(result)) {
    std::vector<Column> columns;
    for (uint64_t i = 0; i < count; ++i) {
      columns.emplace_back(duck, duck.data_chunk_get_vector(chunk, i),
                           duck.column_type(&result, i));
    }
    const uint64_t size = duck.data_chunk_get_size(chunk);
    for (uint64_t row = 0; row < size; ++row) {
      for (const Column& column : columns) column.Read(row, answer);
      answer.EndRow();
    }
    duck.destroy_data_chunk(&chunk);
  }
  duck.destroy_result(&result);
}

}  // namespace ambrelio::bench
