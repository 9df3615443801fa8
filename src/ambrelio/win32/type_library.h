// The type library that the DLL carries.
#pragma once

#include <ole2.h>

#include "ambrelio/com/owned.h"

namespace ambrelio::win32 {

// Read from the DLL each time: a library kept open keeps its file mapped, and with it the DLL
// loaded. Calls do not need it. Raises what automation tells.
com::ComPtr<ITypeLib> OpenTypeLibrary();
// Of an interface or a class.
com::ComPtr<ITypeInfo> TypeInfoOf(REFGUID id);

}  // namespace ambrelio::win32
