// The automation objects that the system itself knows by programmatic identifier.
#pragma once

#include <memory>
#include <string_view>

#include "ambrelio/platform/automation_objects.h"

namespace ambrelio {

// A new object, its members called by name. Null on a system without automation; 429 where there is
// automation but nothing under that identifier.
std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view prog_id);

}  // namespace ambrelio
