// An object that is called by name. Every call is reported to the control, which may make it fail.
#pragma once

#include <ole2.h>

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ambrelio/value/variant.h"
#include "arguments.h"

namespace ambrelio::stand_in {

// The members of a class. One's place is its DISPID less one; 0 stands for the default member.
struct ClassNames {
  struct Member {
    std::string name;
    size_t least = 0;
    size_t most = 0;
    bool writable = false;
  };
  std::string name;
  std::vector<Member> members;
  std::optional<size_t> default_member;
};

class DispatchObject : public IDispatch {
 public:
  // Counts as alive from the beginning to the end, but for the control's own objects.
  explicit DispatchObject(const ClassNames& names);
  virtual ~DispatchObject();
  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  const std::string& class_name() const { return names_.name; }
  // The object of this library behind a value; null for any other value.
  static DispatchObject* Own(const Variant& value);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override;
  ULONG STDMETHODCALLTYPE Release() noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception,
                                   UINT* argument) noexcept override;

 protected:
  // Carries out the member of that place.
  virtual Variant Perform(size_t member, bool put, const Arguments& arguments) = 0;
  // What For Each walks over, where it does.
  virtual std::optional<std::vector<Variant>> Elements() = 0;

 private:
  HRESULT Call(size_t place, WORD flags, const DISPPARAMS& parameters, VARIANT* result);
  HRESULT Walk(VARIANT* result);
  bool IsControl() const;

  const ClassNames& names_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace ambrelio::stand_in
