// DAO's classes over the embedded engine.
#pragma once

#include <ole2.h>

#include "ambrelio/com/owned.h"

namespace ambrelio::stand_in {

// A new DBEngine object. All of them have the process's one engine, as DAO's have.
com::ComPtr<IDispatch> NewDbEngine();

}  // namespace ambrelio::stand_in
