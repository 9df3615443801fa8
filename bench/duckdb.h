// A rival of another kind: DuckDB with its tables in memory, through the C interface of its shared
// library. Nothing of it is needed to build; who has the library names it when the benchmark runs.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "ambrelio/value/variant.h"
#include "answer.h"

namespace ambrelio::bench {

struct DuckInterface;

class DuckDb {
 public:
  // Ends the program with a message when the library cannot be loaded; so does whatever DuckDB
  // refuses later.
  explicit DuckDb(const std::string& library);
  ~DuckDb();
  DuckDb(const DuckDb&) = delete;
  DuckDb& operator=(const DuckDb&) = delete;

  std::string Version() const;
  // Copies all tables of a database file, and those of its indexes that DuckDB can have.
  void CopyFrom(sqlite3* db);

  // A query that is prepared once.
  class Query {
   public:
    Query(DuckDb& duck, const std::string& sql);
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    void Ask(const std::vector<Variant>& parameters, Answer& answer);

   private:
    DuckDb& duck_;
    void* statement_ = nullptr;
  };

 private:
  void Run(const std::string& sql);
  bool TryRun(const std::string& sql);
  void CopyTable(sqlite3* db, const std::string& table);

  std::unique_ptr<DuckInterface> duck_;
  void* database_ = nullptr;
  void* connection_ = nullptr;
};

}  // namespace ambrelio::bench
