// An automation object of one class: the interface that the type library describes, each of its
// methods a line that names the member of the object model.
#pragma once

#include <ole2.h>
// After it.
#include <ocidl.h>

#include "ambrelio/win32/server_object.h"

namespace ambrelio::win32 {

template <class Interface>
class Dual : public Interface,
             public ISupportErrorInfo,
             public IProvideClassInfo,
             public ServerObject {
 public:
  using ServerObject::ServerObject;

  STDMETHODIMP QueryInterface(REFIID iid, void** to) final {
    if (to == nullptr) return E_POINTER;
    *to = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(Interface)) {
      *to = static_cast<Interface*>(this);
    } else if (iid == IID_ISupportErrorInfo) {
      *to = static_cast<ISupportErrorInfo*>(this);
    } else if (iid == IID_IProvideClassInfo) {
      *to = static_cast<IProvideClassInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() final { return Hold(); }
  STDMETHODIMP_(ULONG) Release() final { return LetGo(); }

  STDMETHODIMP GetTypeInfoCount(UINT* count) final {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) final {
    return TypeInfo(index, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                             DISPID* ids) final {
    return Ids(reserved, names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* error, UINT*) final {
    return InvokeById(id, reserved, flags, parameters, result, error);
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) final {
    return iid == __uuidof(Interface) || iid == IID_IDispatch ? S_OK : S_FALSE;
  }
  STDMETHODIMP GetClassInfo(ITypeInfo** info) final { return ClassInfo(info); }

  const IUnknown* Identity() const final { return static_cast<const Interface*>(this); }

 protected:
  static constexpr void* kNoResult = nullptr;

  // A method or the reading of a property; `result` points to where it is put.
  template <class... Pointers>
  HRESULT Call(DISPID id, void* result, Pointers*... arguments) {
    return CallByPointers(id, DISPATCH_METHOD, result, {arguments...});
  }
  template <class... Pointers>
  HRESULT Let(DISPID id, Pointers*... arguments) {
    return CallByPointers(id, DISPATCH_PROPERTYPUT, nullptr, {arguments...});
  }
};

}  // namespace ambrelio::win32
