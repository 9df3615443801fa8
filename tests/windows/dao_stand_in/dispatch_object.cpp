#include "dispatch_object.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "ambrelio/com/conversion.h"
#include "ambrelio/com/errors.h"
#include "ambrelio/value/ascii.h"
#include "ambrelio/value/automation_error.h"
#include "control.h"
#include "enumeration.h"

namespace ambrelio::stand_in {
namespace {

// What only objects of this library answer to.
constexpr IID kOwnObject = {
    0x5d6c2f7a, 0x3f0e, 0x4d0b, {0x9c, 0x52, 0x1e, 0x77, 0xa8, 0x0b, 0x64, 0xd3}};
constexpr ULONG kHelpContext = 5000000;

void Describe(const AutomationError& error, EXCEPINFO* exception) {
  if (exception == nullptr) return;
  *exception = {};
  exception->scode = com::ResultOf(error);
  exception->bstrSource = com::BStr(error.source()).Release();
  exception->bstrDescription = com::BStr(error.description()).Release();
  exception->dwHelpContext = kHelpContext + static_cast<ULONG>(error.number());
}

std::vector<Variant> Given(const DISPPARAMS& parameters) {
  std::vector<Variant> given;
  for (UINT i = parameters.cArgs; i > 0; --i) {
    given.push_back(com::FromCom(parameters.rgvarg[i - 1]));
  }
  return given;
}

}  // namespace

Variant Result(const com::ComPtr<IDispatch>& object) {
  return Variant::ObjectPtr(std::make_shared<com::ForeignObject>(object.get()));
}

DispatchObject::DispatchObject(const ClassNames& names) : names_(names) {
  if (!IsControl()) Control::Instance().Born();
}

DispatchObject::~DispatchObject() {
  if (!IsControl()) Control::Instance().Died();
}

bool DispatchObject::IsControl() const { return names_.name == Control::kClassName; }

DispatchObject* DispatchObject::Own(const Variant& value) {
  if (!value.is_object()) return nullptr;
  const auto foreign = std::dynamic_pointer_cast<com::ForeignObject>(value.object());
  void* own = nullptr;
  if (foreign == nullptr || FAILED(foreign->get()->QueryInterface(kOwnObject, &own))) {
    return nullptr;
  }
  auto* const object = static_cast<DispatchObject*>(own);
  object->Release();  // `value` holds it
  return object;
}

HRESULT DispatchObject::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IDispatch && iid != kOwnObject) return E_NOINTERFACE;
  AddRef();
  *object = this;
  return S_OK;
}

ULONG DispatchObject::AddRef() noexcept { return ++references_; }

ULONG DispatchObject::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT DispatchObject::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT DispatchObject::GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept { return E_NOTIMPL; }

HRESULT DispatchObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                      DISPID* ids) noexcept try {
  if (count == 0) return S_OK;
  if (!IsControl()) Control::Instance().LookedUp();
  // No argument is known by name.
  std::fill(ids, ids + count, DISPID_UNKNOWN);
  const std::string name = com::FromWide(names[0]);
  for (size_t place = 0; place < names_.members.size(); ++place) {
    if (EqualsIgnoringAsciiCase(names_.members[place].name, name)) {
      ids[0] = static_cast<DISPID>(place + 1);
      return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
  }
  return DISP_E_UNKNOWNNAME;
} catch (const std::exception&) {
  return E_FAIL;
}

HRESULT DispatchObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                               VARIANT* result, EXCEPINFO* exception, UINT*) noexcept try {
  if (result != nullptr) ::VariantInit(result);
  if (id == DISPID_VALUE) {
    if (!names_.default_member) return DISP_E_MEMBERNOTFOUND;
    return Call(*names_.default_member, flags, *parameters, result);
  }
  if (id == DISPID_NEWENUM) return Walk(result);
  if (id < 1 || static_cast<size_t>(id) > names_.members.size()) return DISP_E_MEMBERNOTFOUND;
  return Call(static_cast<size_t>(id) - 1, flags, *parameters, result);
} catch (const AutomationError& error) {
  Describe(error, exception);
  return DISP_E_EXCEPTION;
} catch (const std::exception& error) {
  Describe({ERROR_INTERNAL_ERROR, names_.name, error.what()}, exception);
  return DISP_E_EXCEPTION;
}

HRESULT DispatchObject::Call(size_t place, WORD flags, const DISPPARAMS& parameters,
                             VARIANT* result) {
  const ClassNames::Member& member = names_.members[place];
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  if (parameters.cNamedArgs > (put ? 1U : 0U)) return DISP_E_NONAMEDARGS;
  if (put && parameters.cArgs == 0) return DISP_E_BADPARAMCOUNT;
  std::vector<Variant> given = Given(parameters);
  const size_t before = given.size() - (put ? 1 : 0);  // the value of a put stands last
  // Arguments behind a property that takes none are for the default member of what it gives, as in
  // Workspaces(0); so is a value for what takes none, as in rows("Tolva") = 1.
  const bool all_behind = member.most == 0 && before > 0;
  const bool pass_on = all_behind || (put && !member.writable);
  if (!all_behind && (before < member.least || before > member.most)) return DISP_E_BADPARAMCOUNT;
  if (pass_on) given.resize(all_behind ? 0 : before);
  const Arguments taken(std::move(given));
  if (!IsControl()) Control::Instance().Meet(names_.name, member.name, put && !pass_on, taken);
  const Variant value = Perform(place, put && !pass_on, taken);
  if (pass_on) {
    DispatchObject* const object = Own(value);
    if (object == nullptr || !object->names_.default_member) return DISP_E_MEMBERNOTFOUND;
    DISPPARAMS rest = parameters;
    if (!all_behind) rest.cArgs = 1;
    return object->Call(*object->names_.default_member, flags, rest, result);
  }
  if (result != nullptr) *result = com::ToCom(value).Release();
  return S_OK;
}

HRESULT DispatchObject::Walk(VARIANT* result) {
  std::optional<std::vector<Variant>> elements = Elements();
  if (!elements) return DISP_E_MEMBERNOTFOUND;
  Control::Instance().Meet(names_.name, "_NewEnum", false, Arguments({}));
  if (result == nullptr) return E_POINTER;
  V_VT(result) = VT_UNKNOWN;
  V_UNKNOWN(result) = new Enumeration(*std::move(elements));
  return S_OK;
}

}  // namespace ambrelio::stand_in
