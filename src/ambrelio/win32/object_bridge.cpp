#include "ambrelio/win32/object_bridge.h"

#include "ambrelio/value/automation_error.h"
#include "ambrelio/win32/server_classes.h"
#include "ambrelio/win32/thread_state.h"

namespace ambrelio::win32 {
namespace {

class ServerObjectBridge final : public com::ObjectBridge {
 public:
  com::ComPtr<IDispatch> Outside(const Variant::ObjectPtr& object) const override {
    if (object == nullptr) return {};
    const ServerClass* const found = FindServerClass(object->ClassName());
    return found != nullptr ? found->Wrap(object) : com::ForeignObjects().Outside(object);
  }

  Variant::ObjectPtr Inside(IDispatch* object) const override {
    const auto identity = com::ComPtr<IDispatch>(object).As<IUnknown>();
    Variant::ObjectPtr found = ThreadState::Current().Find(identity.get());
    return found != nullptr ? found : com::ForeignObjects().Inside(object);
  }
};

}  // namespace

const com::ObjectBridge& ServerObjects() {
  static const ServerObjectBridge bridge;
  return bridge;
}

}  // namespace ambrelio::win32
