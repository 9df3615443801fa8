#include "ambrelio/platform/system_objects.h"

namespace ambrelio {

std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view) { return nullptr; }

}  // namespace ambrelio
