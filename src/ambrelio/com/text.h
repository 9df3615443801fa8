// Text as Windows takes it: UTF-16 outside, UTF-8 inside the library.
#pragma once

#include <string>
#include <string_view>

namespace ambrelio::com {

// What is no valid text becomes the replacement character, either way.
std::wstring ToWide(std::string_view utf8);
std::string FromWide(std::wstring_view utf16);

}  // namespace ambrelio::com
