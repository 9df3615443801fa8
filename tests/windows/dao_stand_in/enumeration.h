// What For Each walks over.
#pragma once

#include <ole2.h>

#include <atomic>
#include <cstddef>
#include <vector>

#include "ambrelio/value/variant.h"

namespace ambrelio::stand_in {

// The elements that a collection had when it was asked for them.
class Enumeration final : public IEnumVARIANT {
 public:
  // `next` is the place of the element that comes first.
  explicit Enumeration(std::vector<Variant> elements, size_t next = 0);
  virtual ~Enumeration() = default;
  Enumeration(const Enumeration&) = delete;
  Enumeration& operator=(const Enumeration&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override;
  ULONG STDMETHODCALLTYPE Release() noexcept override;
  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* elements, ULONG* given) noexcept override;
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override;
  HRESULT STDMETHODCALLTYPE Reset() noexcept override;
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) noexcept override;

 private:
  const std::vector<Variant> elements_;
  size_t next_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace ambrelio::stand_in
