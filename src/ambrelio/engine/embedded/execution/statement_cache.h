// Prepared statements, kept for the next text of the same shape.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ambrelio/engine/embedded/execution/row_buffer.h"
#include "ambrelio/engine/embedded/storage/storage.h"

namespace ambrelio::embedded {

// What a statement has become for the storage engine.
struct Prepared {
  explicit Prepared(StorageStatement statement) : main(std::move(statement)) {}

  // The rows of a query, the row ids of a dynaset or of a stepwise update, or a write.
  StorageStatement main;
  std::shared_ptr<const Columns> columns;  // of a query
  std::optional<StorageStatement> row;     // of a dynaset: one row by its id
  int row_parameter = 0;
  bool values_follow = false;  // of a dynaset: `main` gives the values behind the row id
  // Delivers the last row of `main` alone; "" where that takes the whole of it. Prepared when it is
  // first needed.
  std::string last_sql;
  std::optional<StorageStatement> last;

  // An update that goes row by row (see StepwiseUpdateSql).
  struct Target {
    size_t source = 0;
    size_t first_value = 0;
    size_t value_count = 0;
    StorageStatement write;
  };
  struct Stepwise {
    StorageStatement values;
    size_t source_count = 0;
    std::vector<Target> targets;
  };
  std::optional<Stepwise> stepwise;

  TablesTouched touched;

  std::string key;  // in the cache
  int64_t version = 0;
};

// Hands each statement to one user at a time. The least recently used go when there are too many;
// all go when the catalogue changes.
class StatementCache {
 public:
  static constexpr size_t kCapacity = 256;

  // Empties the cache unless it is of that version of the catalogue.
  void KeepVersion(int64_t version);

  // The statement kept under the key, or null. `by_text` becomes true for a shape whose statements
  // are kept by their whole text.
  std::unique_ptr<Prepared> Take(const std::string& key, bool& by_text);
  void Return(std::unique_ptr<Prepared> prepared);
  void MarkByText(const std::string& key);

  size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    std::string key;
    std::unique_ptr<Prepared> idle;  // null while it is in use
    bool by_text = false;
  };
  Entry& At(const std::string& key);

  int64_t version_ = 0;
  std::list<Entry> entries_;  // most recently used first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> places_;
};

// A statement in use. When the use ends it is reset and goes back to the cache, if there still is
// one.
class Lease {
 public:
  Lease(std::unique_ptr<Prepared> prepared, std::weak_ptr<StatementCache> cache)
      : prepared_(std::move(prepared)), cache_(std::move(cache)) {}
  Lease(Lease&&) noexcept = default;
  Lease& operator=(Lease&&) = delete;
  ~Lease();

  Prepared& operator*() const { return *prepared_; }
  Prepared* operator->() const { return prepared_.get(); }

 private:
  std::unique_ptr<Prepared> prepared_;
  std::weak_ptr<StatementCache> cache_;
};

}  // namespace ambrelio::embedded
