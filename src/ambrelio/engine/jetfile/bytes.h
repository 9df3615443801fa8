// Bytes of a file, read little-endian and never beyond their end.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ambrelio::jetfile {

using Bytes = std::vector<uint8_t>;

// Where in the file something stands: a page, and the offset in it.
struct Place {
  uint32_t page = 0;
  size_t offset = 0;

  friend bool operator==(Place, Place) = default;
};

// "page 14, offset 0x1F0".
std::string PlaceText(Place place);

// A stretch of the file that knows where it stands. It does not own the bytes. What would read
// beyond its end raises Damage.
class ByteView {
 public:
  ByteView() = default;
  ByteView(std::span<const uint8_t> bytes, Place place) : bytes_(bytes), place_(place) {}

  size_t size() const { return bytes_.size(); }
  bool empty() const { return bytes_.empty(); }
  std::span<const uint8_t> bytes() const { return bytes_; }
  Bytes Copy() const { return {bytes_.begin(), bytes_.end()}; }
  // The bytes as characters, whatever they mean.
  std::string Text() const { return {bytes_.begin(), bytes_.end()}; }
  Place PlaceOf(size_t at) const { return {place_.page, place_.offset + at}; }

  uint8_t U8(size_t at) const;
  uint16_t U16(size_t at) const { return static_cast<uint16_t>(Number(at, 2)); }
  uint32_t U24(size_t at) const { return static_cast<uint32_t>(Number(at, 3)); }
  uint32_t U32(size_t at) const { return static_cast<uint32_t>(Number(at, 4)); }
  uint64_t U64(size_t at) const { return Number(at, 8); }
  double F64(size_t at) const;
  // `length` bytes from `at`; without a length, all to the end.
  ByteView Part(size_t at, size_t length) const;
  ByteView From(size_t at) const;

 private:
  void Require(size_t at, size_t length) const;
  uint64_t Number(size_t at, size_t length) const;

  std::span<const uint8_t> bytes_;
  Place place_;
};

// Appends the low `size` bytes of a number, the least significant first.
void Append(Bytes& bytes, uint64_t number, size_t size);
void Append(Bytes& bytes, std::span<const uint8_t> more);
// Overwrites bytes at `at`, which must be there.
void Put(std::span<uint8_t> bytes, size_t at, uint64_t number, size_t size);

}  // namespace ambrelio::jetfile
