// An automation object of the host's own, for scripts: its members are functions, found by name.
#pragma once

#include <ole2.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ambrelio/com/owned.h"

namespace ambrelio::script_host {

// The arguments of one call in their order, references followed.
using Arguments = std::span<const com::OwnedVariant>;
// What a member does, for a call, a reading or a setting alike; the value of a setting is the last
// argument. An AutomationError that it raises reaches the script with its number.
using Member = std::function<com::OwnedVariant(Arguments)>;

class ScriptObject final : public IDispatch {
 public:
  // Belongs to whoever adopts the reference.
  static com::ComPtr<ScriptObject> Make();

  // Names compare without regard to case.
  void Add(std::string name, Member member);
  // The same for the member that stands behind the object itself, as Item of a collection.
  void AddDefault(std::string name, Member member);

  STDMETHODIMP QueryInterface(REFIID interface_id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID locale, WORD flags, DISPPARAMS* arguments,
                      VARIANT* result, EXCEPINFO* error, UINT* wrong_argument) override;

 private:
  struct NamedMember {
    DISPID id;
    std::string name;
    Member action;
  };

  ScriptObject() = default;
  virtual ~ScriptObject() = default;
  const NamedMember* Find(DISPID id) const;

  ULONG references_ = 1;
  std::vector<NamedMember> members_;
};

com::OwnedVariant TextValue(std::string_view text);
com::OwnedVariant LongValue(LONG number);
com::OwnedVariant ObjectValue(com::ComPtr<IDispatch> object);

// The argument at `index`, converted as Visual Basic does; 450 when there is none, 13 when it does
// not convert.
std::string TextArgument(Arguments arguments, size_t index);
LONG LongArgument(Arguments arguments, size_t index);

}  // namespace ambrelio::script_host
