// A table for people: columns in line by what a terminal shows.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::cli {

class Table {
 public:
  // Where all headings are empty, none are printed.
  explicit Table(std::vector<std::string> headings);

  // A cell of numbers stands to the right; a column whose cells all do, with its heading.
  struct Cell {
    std::string text;
    bool right = false;
  };
  // As many cells as there are headings.
  void AddRow(std::vector<Cell> cells);

  std::string Text() const;

 private:
  std::vector<Cell> headings_;
  std::vector<std::vector<Cell>> rows_;
};

// A value as people read it, in Spanish; numbers with `decimals` decimals, or as many as they need
// when negative.
Table::Cell CellOf(const Variant& value, int decimals = -1);

// The columns that UTF-8 text takes on a terminal: combining marks take none, East Asian wide
// characters two.
size_t DisplayWidth(std::string_view text);

}  // namespace ambrelio::cli
