#include "script_file.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "ambrelio/com/text.h"

namespace ambrelio::script_host {
namespace {

const wchar_t* EngineOf(const std::filesystem::path& path) {
  const std::wstring ending = path.extension().wstring();
  if (::lstrcmpiW(ending.c_str(), L".vbs") == 0) return L"VBScript";
  if (::lstrcmpiW(ending.c_str(), L".js") == 0) return L"JScript";
  throw CannotRun(com::FromWide(path.wstring()) +
                  ": there is no engine for scripts of this ending");
}

std::wstring FromLatin(std::string_view bytes) {
  constexpr UINT kWindows1252 = 1252;
  std::wstring text(bytes.size(), L'\0');
  ::MultiByteToWideChar(kWindows1252, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                        static_cast<int>(text.size()));
  return text;
}

std::wstring FromUtf16(std::string_view bytes) {
  std::wstring text;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    text += static_cast<wchar_t>(low | high << 8);
  }
  return text;
}

std::wstring Decode(std::string_view bytes) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  constexpr std::string_view kUtf16Mark = "\xFF\xFE";
  if (bytes.starts_with(kUtf8Mark)) return com::ToWide(bytes.substr(kUtf8Mark.size()));
  if (bytes.starts_with(kUtf16Mark)) return FromUtf16(bytes.substr(kUtf16Mark.size()));
  return FromLatin(bytes);
}

}  // namespace

ScriptFile ReadScript(const std::wstring& path) {
  const std::filesystem::path file = std::filesystem::absolute(path);
  const wchar_t* engine = EngineOf(file);
  std::ifstream input(file, std::ios::binary);
  if (!input) throw CannotRun(com::FromWide(file.wstring()) + ": there is no such file");
  const std::string bytes((std::istreambuf_iterator<char>(input)),
                          std::istreambuf_iterator<char>());
  return {file.wstring(), Decode(bytes), engine};
}

}  // namespace ambrelio::script_host
