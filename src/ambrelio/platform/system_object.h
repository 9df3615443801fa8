// Automation objects that the system itself offers.
#pragma once

#include <memory>
#include <string_view>

#include "ambrelio/platform/automation_objects.h"

namespace ambrelio {

// A new object of the class that is registered under a programmatic identifier. Null on systems
// without automation; elsewhere raises 429 (cannot create object) with the cause.
std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view prog_id);

}  // namespace ambrelio
