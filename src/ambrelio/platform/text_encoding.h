// Text inside the library is UTF-8; these conversions serve the files and doors that need others.
#pragma once

#include <string>
#include <string_view>

namespace ambrelio {

bool IsValidUtf8(std::string_view text);
// Bytes without a meaning in Windows-1252 become U+FFFD.
std::string Windows1252ToUtf8(std::string_view bytes);
// Characters that Windows-1252 does not have become '?'.
std::string Utf8ToWindows1252(std::string_view text);
// Unpaired surrogates become U+FFFD. Malformed UTF-8 likewise.
std::string Utf16ToUtf8(std::u16string_view text);
std::u16string Utf8ToUtf16(std::string_view text);

// Characters (code points) of UTF-8 text, and its first `count` of them.
size_t Utf8Length(std::string_view text);
std::string_view Utf8Prefix(std::string_view text, size_t count);

}  // namespace ambrelio
