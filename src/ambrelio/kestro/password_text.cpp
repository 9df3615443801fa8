// The stored form of a database password.
//
//   stored   := the bytes below, each as two hexadecimal digits "0".."9", "A".."F"
//   bytes    := (password checksum) XOR keystream
//   password := UTF-8, any length
//   checksum := 32-bit FNV-1a of the password, high byte first
//
// The keystream is the same for everyone, so this hides a password from a glance at the file and
// from nothing else. The checksum tells text that was stored by this scheme from any other.
#include <array>

#include "ambrelio/kestro/tools.h"

namespace ambrelio::kestro {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr size_t kChecksumSize = 4;

std::array<char, kChecksumSize> Checksum(std::string_view text) {
  uint32_t hash = 2166136261;
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
  return {static_cast<char>(hash >> 24), static_cast<char>(hash >> 16 & 0xFF),
          static_cast<char>(hash >> 8 & 0xFF), static_cast<char>(hash & 0xFF)};
}

// Exclusive-or with the keystream: applied twice, it gives the text back.
std::string Mask(std::string text) {
  uint32_t state = 0x0A11BE12;
  for (char& c : text) {
    state = state * 1664525 + 1013904223;
    c = static_cast<char>(static_cast<unsigned char>(c) ^ state >> 24);
  }
  return text;
}

}  // namespace

std::string Tools::Encode(std::string_view password) {
  auto checksum = Checksum(password);
  std::string plain(password);
  plain.append(checksum.data(), checksum.size());
  std::string stored;
  for (char c : Mask(std::move(plain))) {
    auto byte = static_cast<unsigned char>(c);
    stored += kHexDigits[byte >> 4];
    stored += kHexDigits[byte & 15];
  }
  return stored;
}

std::optional<std::string> Tools::Decode(std::string_view encoded) {
  if (encoded.size() % 2 != 0 || encoded.size() < 2 * kChecksumSize) return std::nullopt;
  std::string masked;
  for (size_t i = 0; i < encoded.size(); i += 2) {
    size_t high = kHexDigits.find(encoded[i]);
    size_t low = kHexDigits.find(encoded[i + 1]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    masked += static_cast<char>(high << 4 | low);
  }
  std::string plain = Mask(std::move(masked));
  std::string password = plain.substr(0, plain.size() - kChecksumSize);
  auto checksum = Checksum(password);
  if (!plain.ends_with(std::string_view(checksum.data(), checksum.size()))) return std::nullopt;
  return password;
}

}  // namespace ambrelio::kestro
