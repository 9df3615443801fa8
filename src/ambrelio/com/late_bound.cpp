#include "ambrelio/com/late_bound.h"

#include <dispex.h>

#include "ambrelio/com/errors.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::com {
namespace {

LateBound ObjectIn(const OwnedVariant& value) {
  const Variant result = FromCom(value.get());
  if (!result.is_object()) Raise(RuntimeError::kObjectRequired);
  return LateBound(ForeignObjects().Outside(result.object()));
}

}  // namespace

ComPtr<IDispatch> CreateObject(std::string_view prog_id) {
  CLSID clsid{};
  ComPtr<IDispatch> object;
  HRESULT result = ::CLSIDFromProgID(ToWide(prog_id).c_str(), &clsid);
  if (SUCCEEDED(result)) {
    result = ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                __uuidof(IDispatch), object.ReceiveVoid());
  }
  if (FAILED(result)) {
    Raise(RuntimeError::kCannotCreateObject, std::string(prog_id) + ": " + SentenceOf(result));
  }
  return object;
}

Variant LateBound::Call(std::string_view member, std::vector<Variant> arguments) const {
  return FromCom(
      Invoke(IdOf(member), member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments).get());
}

void LateBound::Put(std::string_view property, const Variant& value) const {
  Invoke(IdOf(property), property, DISPATCH_PROPERTYPUT, {value});
}

LateBound LateBound::ObjectFrom(std::string_view member, std::vector<Variant> arguments) const {
  return ObjectIn(Invoke(IdOf(member), member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments));
}

LateBound LateBound::Item(const Variant& key) const {
  if (!object_) Raise(RuntimeError::kObjectNotSet);
  return ObjectIn(Invoke(DISPID_VALUE, "Item", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {key}));
}

Variant LateBound::AsArgument() const {
  if (!object_) return Variant::Nothing();
  return Variant::ObjectPtr(std::make_shared<ForeignObject>(object_.get()));
}

DISPID LateBound::IdOf(std::string_view member) const {
  if (!object_) Raise(RuntimeError::kObjectNotSet);
  for (const auto& [known, id] : ids_) {
    if (known == member) return id;
  }
  std::wstring name = ToWide(member);
  wchar_t* names[] = {name.data()};
  DISPID id = DISPID_UNKNOWN;
  HRESULT result = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  // Objects written in a script know their members through the extended interface only.
  if (result == E_NOTIMPL) {
    if (const auto extended = object_.As<IDispatchEx>()) {
      result = extended->GetDispID(BStr(member).get(), fdexNameCaseInsensitive, &id);
    }
  }
  if (FAILED(result)) Raise(RuntimeError::kMemberNotFound, std::string(member));
  return ids_.emplace_back(member, id).second;
}

OwnedVariant LateBound::Invoke(DISPID member, std::string_view name, WORD flags,
                               const std::vector<Variant>& arguments) const {
  std::vector<OwnedVariant> owned;
  owned.reserve(arguments.size());
  for (const Variant& argument : arguments) owned.push_back(ToCom(argument));
  // The last argument comes first. The values stay owned by `owned`.
  std::vector<VARIANT> reversed;
  reversed.reserve(arguments.size());
  for (auto value = owned.rbegin(); value != owned.rend(); ++value) {
    reversed.push_back(value->get());
  }

  const bool put = (flags & DISPATCH_PROPERTYPUT) != 0;
  DISPID put_id = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{};
  parameters.rgvarg = reversed.data();
  parameters.cArgs = static_cast<UINT>(reversed.size());
  if (put) {
    parameters.rgdispidNamedArgs = &put_id;
    parameters.cNamedArgs = 1;
  }

  OwnedVariant value;
  EXCEPINFO info{};
  VARIANT* const to = put ? nullptr : &value.get();
  HRESULT result = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, to,
                                   &info, nullptr);
  if (result == E_NOTIMPL) {
    if (const auto extended = object_.As<IDispatchEx>()) {
      result =
          extended->InvokeEx(member, LOCALE_USER_DEFAULT, flags, &parameters, to, &info, nullptr);
    }
  }
  if (FAILED(result)) throw ErrorOf(result, info, std::string(name));
  return value;
}

}  // namespace ambrelio::com
