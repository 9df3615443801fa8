#include "script_object.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/text.h"

namespace ambrelio::script_host {
namespace {

std::vector<com::OwnedVariant> InOrder(const DISPPARAMS& parameters) {
  std::vector<com::OwnedVariant> arguments(parameters.cArgs);
  for (UINT i = 0; i < parameters.cArgs; ++i) {
    com::Check(::VariantCopyInd(&arguments[i].get(), &parameters.rgvarg[parameters.cArgs - 1 - i]),
               "VariantCopyInd");
  }
  return arguments;
}

HRESULT Tell(const AutomationError& failure, EXCEPINFO* error) {
  if (error != nullptr) {
    *error = {};
    error->scode = com::ResultOf(failure);
    error->bstrSource = com::BStr(failure.source()).Release();
    error->bstrDescription = com::BStr(failure.description()).Release();
  }
  return DISP_E_EXCEPTION;
}

com::OwnedVariant Converted(Arguments arguments, size_t index, VARTYPE type) {
  if (index >= arguments.size()) Raise(RuntimeError::kWrongArgumentCount);
  com::OwnedVariant converted;
  com::Check(::VariantChangeType(&converted.get(), const_cast<VARIANT*>(&arguments[index].get()),
                                 VARIANT_ALPHABOOL, type),
             "VariantChangeType");
  return converted;
}

}  // namespace

com::ComPtr<ScriptObject> ScriptObject::Make() {
  return com::ComPtr<ScriptObject>::Adopt(new ScriptObject);
}

void ScriptObject::Add(std::string name, Member member) {
  members_.push_back(
      {static_cast<DISPID>(members_.size()) + 1, std::move(name), std::move(member)});
}

void ScriptObject::AddDefault(std::string name, Member member) {
  members_.push_back({DISPID_VALUE, std::move(name), std::move(member)});
}

STDMETHODIMP ScriptObject::QueryInterface(REFIID interface_id, void** object) {
  if (interface_id != IID_IUnknown && interface_id != IID_IDispatch) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  *object = static_cast<IDispatch*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) ScriptObject::AddRef() { return ++references_; }

STDMETHODIMP_(ULONG) ScriptObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP ScriptObject::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP ScriptObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP ScriptObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  std::fill_n(ids, count, DISPID_UNKNOWN);
  const auto found = std::find_if(members_.begin(), members_.end(), [&](const NamedMember& member) {
    return ::lstrcmpiW(com::ToWide(member.name).c_str(), names[0]) == 0;
  });
  if (found == members_.end() || count != 1) return DISP_E_UNKNOWNNAME;
  ids[0] = found->id;
  return S_OK;
}

STDMETHODIMP ScriptObject::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                  VARIANT* result, EXCEPINFO* error, UINT*) {
  const NamedMember* member = Find(id);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  try {
    com::OwnedVariant given = member->action(InOrder(*parameters));
    if (result != nullptr) *result = given.Release();
    return S_OK;
  } catch (const AutomationError& failure) {
    return Tell(failure, error);
  } catch (const std::exception& failure) {
    return Tell(AutomationError(E_UNEXPECTED, "script_host", failure.what()), error);
  }
}

const ScriptObject::NamedMember* ScriptObject::Find(DISPID id) const {
  const auto found = std::find_if(members_.begin(), members_.end(),
                                  [id](const NamedMember& member) { return member.id == id; });
  return found == members_.end() ? nullptr : &*found;
}

com::OwnedVariant TextValue(std::string_view text) {
  VARIANT value{};
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = com::BStr(text).Release();
  return com::OwnedVariant(value);
}

com::OwnedVariant LongValue(LONG number) {
  VARIANT value{};
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  return com::OwnedVariant(value);
}

com::OwnedVariant ObjectValue(com::ComPtr<IDispatch> object) {
  VARIANT value{};
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = object.Release();
  return com::OwnedVariant(value);
}

std::string TextArgument(Arguments arguments, size_t index) {
  return com::TextOf(V_BSTR(&Converted(arguments, index, VT_BSTR).get()));
}

LONG LongArgument(Arguments arguments, size_t index) {
  return V_I4(&Converted(arguments, index, VT_I4).get());
}

}  // namespace ambrelio::script_host
