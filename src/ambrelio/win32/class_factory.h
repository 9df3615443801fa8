// What makes the objects that clients create.
#pragma once

#include <unknwn.h>

#include <atomic>

#include "ambrelio/win32/module.h"
#include "ambrelio/win32/server_classes.h"

namespace ambrelio::win32 {

class ClassFactory final : public IClassFactory {
 public:
  // For a class that clients can create.
  explicit ClassFactory(const ServerClass& server_class) : class_(server_class) {}
  virtual ~ClassFactory() = default;

  STDMETHODIMP QueryInterface(REFIID iid, void** to) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** to) override;
  STDMETHODIMP LockServer(BOOL lock) override;

 private:
  const ServerClass& class_;
  std::atomic<ULONG> references_ = 0;
  ModuleUse use_;
};

}  // namespace ambrelio::win32
