// Rows read from the storage, kept compactly until their values are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/engine/embedded/binder/bound_tree.h"
#include "ambrelio/engine/embedded/storage/storage.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::embedded {

using Columns = std::vector<bound::Column>;

class RowBuffer {
 public:
  explicit RowBuffer(std::shared_ptr<const Columns> columns) : columns_(std::move(columns)) {}

  // Takes in the statement's current row, from its column `first` on.
  void Append(const StorageStatement& statement, int first = 0);
  void Clear();
  size_t Count() const { return columns_->empty() ? 0 : cells_.size() / columns_->size(); }

  // The value with its column's type. A whole number beyond the range of its type raises 6: the
  // storage computes with 64 bits, and only what is read has to fit.
  Variant Value(size_t row, size_t column) const;

 private:
  enum class Held : uint32_t { kNull, kInteger, kReal, kText };
  struct Cell {
    Held held = Held::kNull;
    uint32_t length = 0;  // of a text, in bytes
    union {
      int64_t integer = 0;
      double real;
      size_t offset;  // of a text, in texts_
    };
  };

  Variant Whole(const Cell& cell, ValueType type) const;

  std::shared_ptr<const Columns> columns_;
  std::vector<Cell> cells_;  // row by row
  std::string texts_;
};

}  // namespace ambrelio::embedded
