#include "ambrelio/win32/server_object.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ambrelio/com/owned.h"
#include "ambrelio/win32/guarded.h"
#include "ambrelio/win32/invocation.h"
#include "ambrelio/win32/type_library.h"

namespace ambrelio::win32 {
namespace {

using automation::Member;
using automation::ValueType;

// Between the end of a thread and the last release of its objects on others.
SRWLOCK ends_of_threads = SRWLOCK_INIT;

class EndsLocked {
 public:
  EndsLocked() { ::AcquireSRWLockExclusive(&ends_of_threads); }
  ~EndsLocked() { ::ReleaseSRWLockExclusive(&ends_of_threads); }
  EndsLocked(const EndsLocked&) = delete;
  EndsLocked& operator=(const EndsLocked&) = delete;
};

VARTYPE TypeOf(ValueType type) {
  switch (type) {
    case ValueType::kBoolean:
      return VT_BOOL;
    case ValueType::kInteger:
      return VT_I2;
    case ValueType::kLong:
      return VT_I4;
    case ValueType::kDouble:
      return VT_R8;
    case ValueType::kDate:
      return VT_DATE;
    case ValueType::kText:
      return VT_BSTR;
    case ValueType::kObject:
      return VT_DISPATCH;
    case ValueType::kVariant:
      return VT_VARIANT;
    case ValueType::kNone:
      return VT_EMPTY;
  }
  return VT_EMPTY;
}

size_t SizeOf(ValueType type) {
  switch (type) {
    case ValueType::kBoolean:
    case ValueType::kInteger:
      return 2;
    case ValueType::kLong:
      return 4;
    case ValueType::kDouble:
    case ValueType::kDate:
      return 8;
    default:
      return sizeof(void*);
  }
}

// Puts `value`, which is of that type, where `result` points to.
void PutResult(ValueType type, com::OwnedVariant value, void* result) {
  const VARIANT given = value.Release();
  if (type == ValueType::kVariant) {
    *static_cast<VARIANT*>(result) = given;
  } else if (type != ValueType::kNone) {
    std::memcpy(result, &V_I8(&given), SizeOf(type));
  }
}

}  // namespace

ServerObject::ServerObject(const ServerClass& server_class, Variant::ObjectPtr object)
    : class_(server_class), object_(std::move(object)), thread_(&ThreadState::Current()) {
  thread_->Add(*this);
}

// The thread is told last: with its last object goes what that may need.
ServerObject::~ServerObject() {
  object_ = nullptr;
  if (thread_ != nullptr) thread_->Remove(*this);
}

void ServerObject::Disconnect() {
  object_ = nullptr;
  bool abandoned = false;
  {
    const EndsLocked lock;
    thread_ = nullptr;
    abandoned = references_ == 0;
  }
  if (abandoned) delete this;
}

void ServerObject::DestroyIfAbandoned() {
  if (references_ == 0) delete this;
}

ULONG ServerObject::LetGo() {
  if (::GetCurrentThreadId() == thread_id_) {
    const ULONG rest = --references_;
    if (rest == 0) delete this;
    return rest;
  }
  bool orphan = false;
  ULONG rest = 0;
  {
    const EndsLocked lock;
    rest = --references_;
    orphan = rest == 0 && thread_ == nullptr;
    if (rest == 0 && !orphan) thread_->Abandon();
  }
  if (orphan) delete this;
  return rest;
}

template <class Body>
HRESULT ServerObject::Enter(Body&& body) noexcept {
  if (::GetCurrentThreadId() != thread_id_) return RPC_E_WRONG_THREAD;
  const Variant::ObjectPtr object = object_;
  if (object == nullptr) return RPC_E_DISCONNECTED;
  return Guarded(class_.interface_id, [&] {
    const ThreadState::Call call(*thread_);
    body(*object);
  });
}

HRESULT ServerObject::TypeInfo(UINT index, ITypeInfo** info) const {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return Guarded(class_.interface_id, [&] { *info = TypeInfoOf(class_.interface_id).Release(); });
}

HRESULT ServerObject::ClassInfo(ITypeInfo** info) const {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return Guarded(class_.interface_id, [&] { *info = TypeInfoOf(class_.id).Release(); });
}

HRESULT ServerObject::Ids(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  const HRESULT result = Guarded(class_.interface_id, [&] {
    ids[0] = FindId(class_.model(), com::FromWide(names[0]));
    for (UINT i = 1; i < count; ++i) {
      ids[i] = FindArgumentId(class_.model(), ids[0], com::FromWide(names[i]));
    }
  });
  if (FAILED(result)) return result;
  return std::find(ids, ids + count, DISPID_UNKNOWN) == ids + count ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT ServerObject::InvokeById(DISPID id, REFIID reserved, WORD flags, DISPPARAMS* parameters,
                                 VARIANT* result, EXCEPINFO* error) {
  if (result != nullptr) ::VariantInit(result);
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_INVALIDARG;
  const Member* const member = FindMember(class_.model(), id, flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  bool told = false;  // by an error object, as everything that the call itself raises
  const HRESULT outcome = Enter([&](Object& object) {
    told = true;
    com::OwnedVariant value = InvokeMember(object, *member, *parameters);
    if (result != nullptr) *result = value.Release();
  });
  if (SUCCEEDED(outcome) || !told || error == nullptr) return outcome;
  TakeErrorInfo(outcome, *error);
  return DISP_E_EXCEPTION;
}

HRESULT ServerObject::CallByPointers(DISPID id, WORD flags, void* result,
                                     std::initializer_list<void*> arguments) {
  const Member* const member = FindMember(class_.model(), id, flags);
  if (member == nullptr || member->arguments.size() != arguments.size()) return E_UNEXPECTED;
  if (std::find(arguments.begin(), arguments.end(), nullptr) != arguments.end()) return E_POINTER;
  if (member->result != ValueType::kNone) {
    if (result == nullptr) return E_POINTER;
    const bool variant = member->result == ValueType::kVariant;
    std::memset(result, 0, variant ? sizeof(VARIANT) : SizeOf(member->result));
  }
  return Enter([&](Object& object) {
    std::vector<VARIANT> references(arguments.size());
    GivenArguments given;
    for (size_t i = 0; i < references.size(); ++i) {
      V_VT(&references[i]) = static_cast<VARTYPE>(VT_BYREF | TypeOf(member->arguments[i].type));
      V_BYREF(&references[i]) = arguments.begin()[i];
      given.push_back(&references[i]);
    }
    PutResult(member->result, CallMember(object, *member, given), result);
  });
}

}  // namespace ambrelio::win32
