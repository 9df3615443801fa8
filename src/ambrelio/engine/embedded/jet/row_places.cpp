#include "ambrelio/engine/embedded/jet/row_places.h"

#include <algorithm>

namespace ambrelio::embedded {
namespace {

using jetfile::RowPointer;

constexpr int kRowBits = 8;

int64_t UsualNumber(RowPointer place) { return int64_t{place.page} << kRowBits | place.row; }

}  // namespace

int64_t RowPlaces::NumberOf(RowPointer place) {
  if (const auto known = numbers_.find(place); known != numbers_.end()) return known->second;
  const int64_t usual = UsualNumber(place);
  if (!places_.contains(usual)) return usual;
  const int64_t number = next_free_++;
  Place(number, place);
  return number;
}

RowPointer RowPlaces::PlaceOf(int64_t number) const {
  if (const auto known = places_.find(number); known != places_.end()) return known->second;
  return {static_cast<uint32_t>(number >> kRowBits), static_cast<uint8_t>(number)};
}

void RowPlaces::Place(int64_t number, RowPointer place) {
  if (number == UsualNumber(place)) return;
  // The storage counts on from the highest number that there is.
  next_free_ = std::max(next_free_, number + 1);
  places_[number] = place;
  numbers_[place] = number;
}

void RowPlaces::Remove(int64_t number) {
  const auto known = places_.find(number);
  if (known == places_.end()) return;
  numbers_.erase(known->second);
  places_.erase(known);
}

int64_t RowPlaces::FirstNumberOn(uint32_t page) { return UsualNumber({page, 0}); }

int64_t RowPlaces::LastNumberOn(uint32_t page) { return UsualNumber({page, UINT8_MAX}); }

std::vector<int64_t> RowPlaces::OthersOn(uint32_t page) const {
  std::vector<int64_t> others;
  for (auto row = numbers_.lower_bound({page, 0}); row != numbers_.end() && row->first.page == page;
       ++row) {
    others.push_back(row->second);
  }
  return others;
}

}  // namespace ambrelio::embedded
