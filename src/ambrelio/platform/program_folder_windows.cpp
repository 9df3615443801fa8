#include <windows.h>

#include <string>

#include "ambrelio/platform/program_folder.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio {

std::string ProgramFolder() {
  static const char anchor = 0;  // lies in the file that is asked for
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&anchor), &module);
  std::wstring file(MAX_PATH, L'\0');
  // A path that fills the buffer may have been cut.
  for (DWORD length = 0;; file.resize(file.size() * 2)) {
    length = ::GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
    if (length < file.size()) {
      file.resize(length);
      break;
    }
  }
  file.resize(file.find_last_of(L'\\'));
  return Utf16ToUtf8(std::u16string(file.begin(), file.end()));
}

}  // namespace ambrelio
