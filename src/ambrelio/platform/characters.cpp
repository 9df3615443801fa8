#include "ambrelio/platform/characters.h"

namespace ambrelio {

namespace {

// The number of bytes that a leading byte announces, and the least character that needs them all;
// a length of 0 for a byte that leads nothing.
struct Lead {
  size_t length;
  char32_t bits;
  char32_t least;
};

Lead LeadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {2, byte & 0x1Fu, 0x80};
  if (byte >= 0xE0 && byte <= 0xEF) return {3, byte & 0x0Fu, 0x800};
  if (byte >= 0xF0 && byte <= 0xF4) return {4, byte & 0x07u, 0x10000};
  return {0, 0, 0};
}

template <char32_t (*Change)(char32_t)>
std::string Changed(std::string_view text) {
  std::string changed;
  changed.reserve(text.size());
  for (size_t at = 0; at < text.size();) AppendCharacter(changed, Change(NextCharacter(text, at)));
  return changed;
}

}  // namespace

char32_t NextWideCharacter(std::string_view text, size_t& at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  const Lead lead = LeadOf(byte);
  char32_t character = lead.bits;
  size_t taken = 1;
  while (taken < lead.length && at + taken < text.size() && IsContinuation(text[at + taken])) {
    character = (character << 6) | (static_cast<unsigned char>(text[at + taken]) & 0x3Fu);
    ++taken;
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (taken != lead.length || character < lead.least || character > 0x10FFFF || surrogate) {
    ++at;
    return kStrayByte + byte;
  }
  at += taken;
  return character;
}

void AppendCharacter(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (character >= kStrayByte) {
    append(character - kStrayByte);
  } else if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | (character >> 6));
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | (character >> 12));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | (character >> 18));
    append(0x80 | ((character >> 12) & 0x3F));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

std::string LowerCase(std::string_view text) { return Changed<ToLower>(text); }
std::string UpperCase(std::string_view text) { return Changed<ToUpper>(text); }

bool SameText(std::string_view a, std::string_view b) { return UpperCase(a) == UpperCase(b); }

}  // namespace ambrelio
