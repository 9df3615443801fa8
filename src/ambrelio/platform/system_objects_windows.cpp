#include "ambrelio/com/late_bound.h"
#include "ambrelio/platform/system_objects.h"

namespace ambrelio {
namespace {

class SystemObject final : public AutomationObject {
 public:
  explicit SystemObject(com::LateBound object) : object_(std::move(object)) {}

  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override {
    return object_.Call(method, arguments);
  }

 private:
  com::LateBound object_;
};

}  // namespace

std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view prog_id) {
  return std::make_shared<SystemObject>(com::LateBound(com::CreateObject(prog_id)));
}

}  // namespace ambrelio
