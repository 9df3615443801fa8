// A script on disk: its text, and the engine that its name asks for.
#pragma once

#include <stdexcept>
#include <string>

namespace ambrelio::script_host {

// Why a script was not even begun.
class CannotRun : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct ScriptFile {
  std::wstring path;  // full
  std::wstring text;
  const wchar_t* engine;  // the programmatic identifier, as VBScript
};

// Reads UTF-8 and UTF-16 (little endian) when a byte order mark says so, else Windows-1252. Throws
// CannotRun for a file that is not there and for an ending other than .vbs and .js.
ScriptFile ReadScript(const std::wstring& path);

}  // namespace ambrelio::script_host
