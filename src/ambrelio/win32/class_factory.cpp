#include "ambrelio/win32/class_factory.h"

#include "ambrelio/com/errors.h"
#include "ambrelio/win32/guarded.h"

namespace ambrelio::win32 {

STDMETHODIMP ClassFactory::QueryInterface(REFIID iid, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
  AddRef();
  *to = static_cast<IClassFactory*>(this);
  return S_OK;
}

STDMETHODIMP_(ULONG) ClassFactory::AddRef() { return ++references_; }

STDMETHODIMP_(ULONG) ClassFactory::Release() {
  const ULONG rest = --references_;
  if (rest == 0) delete this;
  return rest;
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** to) {
  if (to == nullptr) return E_POINTER;
  *to = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  HRESULT found = S_OK;
  const HRESULT made = Guarded(
      IID_IClassFactory, [&] { found = class_.Wrap(class_.create())->QueryInterface(iid, to); });
  return FAILED(made) ? made : found;
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
  ModuleUse::Add(lock ? 1 : -1);
  return S_OK;
}

}  // namespace ambrelio::win32
