// The rival: SQLite used directly, without this project's engine.
#pragma once

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::bench {

inline void Check(sqlite3* db, bool good, const std::string& what) {
  if (good) return;
  std::fprintf(stderr, "raw SQLite: %s: %s\n", what.c_str(), sqlite3_errmsg(db));
  std::exit(1);
}

// A connection with the same journal and the same synchronisation as the engine's.
class RawDatabase {
 public:
  explicit RawDatabase(const std::string& path) {
    Check(db_, sqlite3_open(path.c_str(), &db_) == SQLITE_OK, "open");
    Run("pragma journal_mode=wal");
    Run("pragma synchronous=full");
  }
  ~RawDatabase() {
    for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
    sqlite3_close(db_);
  }
  RawDatabase(const RawDatabase&) = delete;
  RawDatabase& operator=(const RawDatabase&) = delete;

  sqlite3* db() { return db_; }

  void Run(const std::string& sql) {
    Check(db_, sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }

  // Prepared once for each text.
  sqlite3_stmt* Prepare(const std::string& sql) {
    auto [at, fresh] = statements_.try_emplace(sql, nullptr);
    if (fresh) {
      const int code =
          sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &at->second, nullptr);
      Check(db_, code == SQLITE_OK, sql);
    }
    return at->second;
  }

  static void Bind(sqlite3_stmt* statement, int place, const Variant& value) {
    switch (value.type()) {
      case VariantType::kLong:
        sqlite3_bind_int(statement, place, value.as<int32_t>());
        break;
      case VariantType::kDouble:
        sqlite3_bind_double(statement, place, value.as<double>());
        break;
      case VariantType::kDate:
        sqlite3_bind_double(statement, place, value.as<OleDate>().days());
        break;
      default: {
        const auto& text = value.as<std::string>();
        sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()),
                          SQLITE_STATIC);
      }
    }
  }

 private:
  sqlite3* db_ = nullptr;
  std::map<std::string, sqlite3_stmt*> statements_;
};

// The tables of a database with their keys and indexes, as plain SQLite tables.
inline void CopySchema(dao::Database& from, RawDatabase& to) {
  const auto columns_of = [](dao::Index& index) {
    std::string columns;
    for (int i = 0; i < index.Fields().Count(); ++i) {
      columns += (i == 0 ? "" : ", ") + index.Fields().Item(i)->Name();
    }
    return columns;
  };
  for (int t = 0; t < from.TableDefs().Count(); ++t) {
    const auto table = from.TableDefs().Item(t);
    std::string columns;
    for (int i = 0; i < table->Fields().Count(); ++i) {
      const auto field = table->Fields().Item(i);
      const dao::FieldType type = field->Type();
      const char* form = type == dao::FieldType::kText ? "text"
                         : type == dao::FieldType::kDouble || type == dao::FieldType::kDate
                             ? "real"
                             : "integer";
      columns += (i == 0 ? "" : ", ") + field->Name() + " " + form;
      if (!field->DefaultValue().empty()) columns += " default " + field->DefaultValue();
    }
    to.Run("create table " + table->Name() + " (" + columns + ")");
    for (int i = 0; i < table->Indexes().Count(); ++i) {
      const auto index = table->Indexes().Item(i);
      to.Run(std::string("create ") + (index->Unique() ? "unique " : "") + "index " +
             table->Name() + "_" + index->Name() + " on " + table->Name() + " (" +
             columns_of(*index) + ")");
    }
  }
}

}  // namespace ambrelio::bench
