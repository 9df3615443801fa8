// The classes of the object model as automation knows them.
#pragma once

#include <ole2.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "ambrelio/automation/model.h"
#include "ambrelio/com/owned.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::win32 {

struct ServerClass {
  const char* name;  // in the object model
  CLSID id;
  IID interface_id;
  com::ComPtr<IDispatch> (*make)(const ServerClass& server_class, Variant::ObjectPtr object);
  Variant::ObjectPtr (*create)();  // null for a class that clients cannot create

  // The class in the object model.
  const automation::Class& model() const { return *automation::FindClass(name); }
  // The name that clients create it by, as "Ambrelio.Trazabilidad".
  std::string ProgId() const { return std::string("Ambrelio.") + name; }
  // An automation object of the calling thread that stands for `object`.
  com::ComPtr<IDispatch> Wrap(const Variant::ObjectPtr& object) const {
    return make(*this, object);
  }
};

std::span<const ServerClass> ServerClasses();

// Null when there is none.
const ServerClass* FindServerClass(std::string_view name);
const ServerClass* FindServerClass(REFCLSID id);

}  // namespace ambrelio::win32
