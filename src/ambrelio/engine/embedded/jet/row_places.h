// Which row of the file is which row of the storage.
//
// A row that was read from the file has its page and slot as its number in the storage. One that
// was inserted there first has the number that it got then, and keeps it: recordsets know it by
// that.
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

#include "ambrelio/engine/jetfile/row_pointer.h"

namespace ambrelio::embedded {

class RowPlaces {
 public:
  // The number of the row at a place. For a new one, that is if no row was placed there, it is a
  // number that no other row has.
  int64_t NumberOf(jetfile::RowPointer place);
  // Where the row with that number is; it must have a place.
  jetfile::RowPointer PlaceOf(int64_t number) const;

  void Place(int64_t number, jetfile::RowPointer place);
  void Remove(int64_t number);

  // The numbers that tell a place on the page, whether such rows are there or not...
  static int64_t FirstNumberOn(uint32_t page);
  static int64_t LastNumberOn(uint32_t page);
  // ...and the rows on it that have other numbers.
  std::vector<int64_t> OthersOn(uint32_t page) const;

 private:
  // The rows whose number does not tell their place.
  std::unordered_map<int64_t, jetfile::RowPointer> places_;
  std::map<jetfile::RowPointer, int64_t> numbers_;
  int64_t next_free_ = int64_t{1} << 40;  // behind all that stand for a place
};

}  // namespace ambrelio::embedded
