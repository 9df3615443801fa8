// The library's objects and the automation objects that stand for them.
#pragma once

#include "ambrelio/com/conversion.h"

namespace ambrelio::win32 {

// Outside, an object of the model is one of the server's, a new one each time. Inside, one of the
// server's on the same thread is the object it stands for, any other one a ForeignObject.
const com::ObjectBridge& ServerObjects();

}  // namespace ambrelio::win32
