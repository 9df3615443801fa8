// The entries by which Windows finds the server.
#pragma once

#include <ole2.h>

namespace ambrelio::win32 {

// Of every user of the machine, which takes an administrator's rights, or of the present user.
enum class RegistrationScope { kMachine, kUser };

// Writes the entries of the classes that clients can create, and of the type library. Raises what
// Windows tells, with what was written before left.
void RegisterServer(RegistrationScope scope);
// Takes the entries away; those that are not there are no error.
void UnregisterServer(RegistrationScope scope);

}  // namespace ambrelio::win32
