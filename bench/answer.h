// What a side of a comparison answers: the values of its rows, one after the other. Kept while the
// answers are compared; while time is taken only added up, so that every value is read.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ambrelio/value/convert.h"

namespace ambrelio::bench {

class Answer {
 public:
  explicit Answer(bool kept = false) : kept_(kept) {}

  bool kept() const { return kept_; }
  int64_t rows() const { return rows_; }
  int64_t values() const { return values_; }

  void EndRow() { ++rows_; }
  void AddNull() { Keep(std::monostate()); }
  void Add(double number) {
    sum_ += number;
    Keep(number);
  }
  void Add(std::string_view text) {
    for (const char c : text) sum_ += c;
    Keep(text);
  }
  void Add(const Variant& value) {
    if (value.is_null() || value.is_empty()) return AddNull();
    if (value.is_text()) return Add(std::string_view(value.as<std::string>()));
    if (value.is_date()) return Add(value.as<OleDate>().days());
    Add(ToDouble(value));
  }

  // Puts the rows in the order of their values, for whom any order is right. All must have as many
  // values.
  void SortRows() {
    if (rows_ == 0) return;
    const size_t width = cells_.size() / static_cast<size_t>(rows_);
    std::vector<std::vector<Cell>> rows;
    for (auto cell = cells_.begin(); cell != cells_.end(); cell += static_cast<ptrdiff_t>(width)) {
      rows.emplace_back(cell, cell + static_cast<ptrdiff_t>(width));
    }
    std::sort(rows.begin(), rows.end());
    cells_.clear();
    for (const std::vector<Cell>& row : rows) cells_.insert(cells_.end(), row.begin(), row.end());
  }

  // Whether both are kept and the same, sums up to their last digits.
  friend bool Equal(const Answer& a, const Answer& b) { return Difference(a, b).empty(); }
  // Where they differ; "" when they do not.
  friend std::string Difference(const Answer& a, const Answer& b) {
    const auto count = [](const Answer& of) {
      return std::to_string(of.rows_) + " rows of " + std::to_string(of.cells_.size()) + " values";
    };
    if (count(a) != count(b)) return count(a) + " against " + count(b);
    for (size_t i = 0; i < a.cells_.size(); ++i) {
      if (Same(a.cells_[i], b.cells_[i])) continue;
      return Show(a.cells_[i]) + " against " + Show(b.cells_[i]) + " as value " +
             std::to_string(i + 1) + " of " + std::to_string(a.cells_.size());
    }
    return "";
  }

 private:
  using Cell = std::variant<std::monostate, double, std::string>;

  static bool Same(const Cell& a, const Cell& b) {
    const auto* x = std::get_if<double>(&a);
    const auto* y = std::get_if<double>(&b);
    if (x == nullptr || y == nullptr) return a == b;
    return std::abs(*x - *y) <= 1e-9 * std::max(std::abs(*x), std::abs(*y));
  }
  static std::string Show(const Cell& cell) {
    if (const auto* number = std::get_if<double>(&cell)) return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&cell)) return "'" + *text + "'";
    return "Null";
  }

  template <class T>
  void Keep(const T& value) {
    ++values_;
    if (!kept_) return;
    if constexpr (std::is_same_v<T, std::string_view>) {
      cells_.emplace_back(std::string(value));
    } else {
      cells_.emplace_back(value);
    }
  }

  bool kept_;
  int64_t rows_ = 0;
  int64_t values_ = 0;
  double sum_ = 0;
  std::vector<Cell> cells_;
};

}  // namespace ambrelio::bench
