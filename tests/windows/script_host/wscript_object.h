// What scripts know as WScript: Echo, Quit, Sleep, Arguments, ScriptFullName, ScriptName,
// CreateObject.
#pragma once

#include <string>
#include <vector>

#include "script_object.h"

namespace ambrelio::script_host {

// Echo writes UTF-8 lines to standard output. Sleep delivers the window messages of its thread, as
// the host programs do whose timers and sockets the library lives by; where the library's clock was
// set, it moves that on instead of waiting. Quit ends the process.
com::ComPtr<ScriptObject> MakeWScript(const std::wstring& script_path,
                                      const std::vector<std::wstring>& arguments);

}  // namespace ambrelio::script_host
