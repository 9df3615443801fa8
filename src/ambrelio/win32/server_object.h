// What the automation objects of all classes have in common, whatever their interface.
//
// An object belongs to the thread that made it. A call from another one fails with
// RPC_E_WRONG_THREAD, and one after the end of that thread with RPC_E_DISCONNECTED. References may
// be counted on any thread.
#pragma once

#include <ole2.h>

#include <atomic>
#include <initializer_list>
#include <memory>

#include "ambrelio/value/variant.h"
#include "ambrelio/win32/module.h"
#include "ambrelio/win32/server_classes.h"
#include "ambrelio/win32/thread_state.h"

namespace ambrelio::win32 {

class ServerObject {
 public:
  ServerObject(const ServerClass& server_class, Variant::ObjectPtr object);
  ServerObject(const ServerObject&) = delete;
  ServerObject& operator=(const ServerObject&) = delete;

  // The pointer that automation tells objects apart by.
  virtual const IUnknown* Identity() const = 0;
  const Variant::ObjectPtr& object() const { return object_; }

  // The thread ends.
  void Disconnect();
  // On its thread: destroys itself when it lost its last reference elsewhere.
  void DestroyIfAbandoned();

 protected:
  virtual ~ServerObject();

  ULONG Hold() { return ++references_; }
  ULONG LetGo();

  HRESULT TypeInfo(UINT index, ITypeInfo** info) const;
  HRESULT ClassInfo(ITypeInfo** info) const;
  HRESULT Ids(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids);
  HRESULT InvokeById(DISPID id, REFIID reserved, WORD flags, DISPPARAMS* parameters,
                     VARIANT* result, EXCEPINFO* error);
  // A method of the dual interface. `arguments` point to variables of the types that the table
  // tells, and so does `result`, where what comes out is put.
  HRESULT CallByPointers(DISPID id, WORD flags, void* result,
                         std::initializer_list<void*> arguments);

 private:
  template <class Body>
  HRESULT Enter(Body&& body) noexcept;

  const ServerClass& class_;
  Variant::ObjectPtr object_;  // null once its thread has ended
  const DWORD thread_id_ = ::GetCurrentThreadId();
  ThreadState* thread_;  // null once its thread has ended
  std::atomic<ULONG> references_ = 0;
  ModuleUse use_;
};

}  // namespace ambrelio::win32
