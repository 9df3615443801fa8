#include "ambrelio/com/apartment.h"
#include "ambrelio/com/late_bound.h"
#include "ambrelio/platform/system_object.h"

namespace ambrelio {
namespace {

class SystemObject final : public AutomationObject {
 public:
  explicit SystemObject(std::string_view prog_id) : object_(com::CreateObject(prog_id)) {}

  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override {
    return object_.Call(method, arguments);
  }

 private:
  com::Apartment apartment_;  // outlives the object
  com::LateBound object_;
};

}  // namespace

std::shared_ptr<AutomationObject> CreateSystemObject(std::string_view prog_id) {
  return std::make_shared<SystemObject>(prog_id);
}

}  // namespace ambrelio
