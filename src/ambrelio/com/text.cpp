#include "ambrelio/com/text.h"

#include <windows.h>

namespace ambrelio::com {

std::wstring ToWide(std::string_view utf8) {
  const auto size = static_cast<int>(utf8.size());
  std::wstring wide(
      static_cast<size_t>(::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string FromWide(std::wstring_view utf16) {
  const auto size = static_cast<int>(utf16.size());
  std::string text(static_cast<size_t>(::WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size,
                                                             nullptr, 0, nullptr, nullptr)),
                   '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, text.data(), static_cast<int>(text.size()),
                        nullptr, nullptr);
  return text;
}

}  // namespace ambrelio::com
