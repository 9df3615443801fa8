// Values between automation's VARIANT and the library's Variant.
#pragma once

#include <ole2.h>

#include "ambrelio/com/owned.h"
#include "ambrelio/value/variant.h"

namespace ambrelio::com {

// How objects cross.
class ObjectBridge {
 public:
  virtual ~ObjectBridge() = default;

  // The automation object that stands for one of the library's; null for Nothing. Raises 13 when
  // there is none.
  virtual ComPtr<IDispatch> Outside(const Variant::ObjectPtr& object) const = 0;
  // The library's object behind an automation object, which is not null.
  virtual Variant::ObjectPtr Inside(IDispatch* object) const = 0;
};

// An automation object of somebody else, carried through the library untouched.
class ForeignObject final : public Object {
 public:
  explicit ForeignObject(IDispatch* object) : object_(object) {}
  const char* ClassName() const override { return "Object"; }
  const ComPtr<IDispatch>& get() const { return object_; }

 private:
  ComPtr<IDispatch> object_;
};

// Every object is foreign.
const ObjectBridge& ForeignObjects();

// The value, references followed. Numbers without a type of the library's own go to the next wider
// one, arrays of any type and number of dimensions to arrays (of arrays) of Variants. An omitted
// argument is Empty. Raises 13 for what has no meaning here (records, errors).
Variant FromCom(const VARIANT& value, const ObjectBridge& objects = ForeignObjects());

// Arrays become one-dimensional ones of VARIANTs, counted from 0.
OwnedVariant ToCom(const Variant& value, const ObjectBridge& objects = ForeignObjects());

// Whether the client left the argument out.
bool IsOmitted(const VARIANT& argument);

}  // namespace ambrelio::com
