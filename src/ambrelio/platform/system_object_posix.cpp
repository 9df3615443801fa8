#include "ambrelio/platform/system_object.h"

namespace ambrelio {

std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view) { return nullptr; }

}  // namespace ambrelio
