#include "ambrelio/engine/jetfile/text.h"

#include <algorithm>

#include "ambrelio/engine/jetfile/damage.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::jetfile {
namespace {

constexpr uint16_t kCompressionMark = 0xFEFF;  // as the bytes FF FE
constexpr size_t kMarkBytes = 2;

std::u16string WideUnits(ByteView bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    units += static_cast<char16_t>(bytes.U16(at));
  }
  return units;
}

// Segments of one byte a character and of plain UTF-16 take turns, a zero byte between them.
std::u16string Expand(ByteView segments) {
  std::u16string units;
  units.reserve(segments.size());
  bool compressed = true;
  for (size_t at = 0; at < segments.size();) {
    if (segments.U8(at) == 0) {
      compressed = !compressed;
      ++at;
    } else if (compressed) {
      units += static_cast<char16_t>(segments.U8(at++));
    } else {
      units += static_cast<char16_t>(segments.U16(at));
      at += 2;
    }
  }
  return units;
}

Bytes BytesOf(std::u16string_view units) {
  Bytes bytes;
  bytes.reserve(2 * units.size());
  for (const char16_t unit : units) Append(bytes, unit, 2);
  return bytes;
}

}  // namespace

std::string WideText(ByteView bytes) { return Utf16ToUtf8(WideUnits(bytes)); }

Bytes WideBytes(std::string_view utf8) { return BytesOf(Utf8ToUtf16(utf8)); }

std::string ColumnText(ByteView bytes) {
  if (bytes.size() >= kMarkBytes && bytes.U16(0) == kCompressionMark) {
    return Utf16ToUtf8(Expand(bytes.From(kMarkBytes)));
  }
  if (bytes.size() % 2 != 0) {
    throw Damage(bytes.PlaceOf(bytes.size() - 1), "a text ends inside a character");
  }
  return WideText(bytes);
}

Bytes ColumnBytes(std::string_view utf8, bool compress) {
  std::u16string units = Utf8ToUtf16(utf8);
  units.erase(0, std::min(units.find_first_not_of(kCompressionMark), units.size()));
  const bool narrow = std::all_of(units.begin(), units.end(),
                                  [](char16_t unit) { return unit >= 1 && unit <= 0xFF; });
  if (!compress || !narrow || units.size() <= kMarkBytes) return BytesOf(units);
  Bytes bytes;
  bytes.reserve(kMarkBytes + units.size());
  Append(bytes, kCompressionMark, kMarkBytes);
  for (const char16_t unit : units) bytes.push_back(static_cast<uint8_t>(unit));
  return bytes;
}

}  // namespace ambrelio::jetfile
