#include "ambrelio/engine/jetfile/bytes.h"

#include <algorithm>
#include <bit>
#include <cstdio>

#include "ambrelio/engine/jetfile/damage.h"

namespace ambrelio::jetfile {

std::string PlaceText(Place place) {
  char text[48];
  std::snprintf(text, sizeof text, "page %u, offset 0x%zX", place.page, place.offset);
  return text;
}

void ByteView::Require(size_t at, size_t length) const {
  if (at <= size() && length <= size() - at) return;
  throw Damage(PlaceOf(at), std::to_string(length) + " bytes are expected where " +
                                std::to_string(at < size() ? size() - at : 0) + " are left");
}

uint64_t ByteView::Number(size_t at, size_t length) const {
  Require(at, length);
  uint64_t number = 0;
  for (size_t i = length; i-- > 0;) number = number << 8 | bytes_[at + i];
  return number;
}

uint8_t ByteView::U8(size_t at) const {
  Require(at, 1);
  return bytes_[at];
}

double ByteView::F64(size_t at) const { return std::bit_cast<double>(U64(at)); }

ByteView ByteView::Part(size_t at, size_t length) const {
  Require(at, length);
  return {bytes_.subspan(at, length), PlaceOf(at)};
}

ByteView ByteView::From(size_t at) const {
  Require(at, 0);
  return Part(at, size() - at);
}

void Append(Bytes& bytes, uint64_t number, size_t size) {
  for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(number >> (8 * i)));
}

void Append(Bytes& bytes, std::span<const uint8_t> more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

void Put(std::span<uint8_t> bytes, size_t at, uint64_t number, size_t size) {
  for (size_t i = 0; i < size; ++i) bytes[at + i] = static_cast<uint8_t>(number >> (8 * i));
}

}  // namespace ambrelio::jetfile
