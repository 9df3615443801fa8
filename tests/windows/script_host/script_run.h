// One script, carried out from its beginning to its end.
#pragma once

#include <string>
#include <vector>

#include "script_file.h"
#include "script_object.h"

namespace ambrelio::script_host {

// An object that the script finds under a name of its own.
struct NamedItem {
  std::wstring name;
  com::ComPtr<IDispatch> object;
};

enum class ExitCode { kDone = 0, kScriptFailed = 1, kNotRun = 2 };

// Runs the script in its engine on this thread, which has to be an apartment of automation. An
// error that the script does not handle is told on standard error: number, source, place, text.
// Throws CannotRun when the engine is not there.
ExitCode Run(const ScriptFile& script, std::vector<NamedItem> items);

}  // namespace ambrelio::script_host
