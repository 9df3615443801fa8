#include "ambrelio/platform/automation_objects.h"

#include <utility>

#include "ambrelio/platform/characters.h"
#include "ambrelio/platform/system_object.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio {

void AutomationObjects::Register(std::string_view prog_id, Factory factory) {
  factories_[LowerCase(prog_id)] = std::move(factory);
}

std::shared_ptr<AutomationObject> AutomationObjects::Create(std::string_view prog_id) const {
  const auto found = factories_.find(LowerCase(prog_id));
  if (found != factories_.end()) {
    const Factory factory = found->second;  // it may register another in its own place
    if (auto object = factory()) return object;
  } else if (auto object = CreateSystemObject(prog_id)) {
    return object;
  }
  Raise(RuntimeError::kCannotCreateObject, std::string(prog_id));
}

}  // namespace ambrelio
