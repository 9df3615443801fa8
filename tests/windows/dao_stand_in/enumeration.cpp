#include "enumeration.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "ambrelio/com/conversion.h"

namespace ambrelio::stand_in {

Enumeration::Enumeration(std::vector<Variant> elements, size_t next)
    : elements_(std::move(elements)), next_(next) {}

HRESULT Enumeration::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IEnumVARIANT) return E_NOINTERFACE;
  AddRef();
  *object = this;
  return S_OK;
}

ULONG Enumeration::AddRef() noexcept { return ++references_; }

ULONG Enumeration::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT Enumeration::Next(ULONG count, VARIANT* elements, ULONG* given) noexcept try {
  ULONG taken = 0;
  while (taken < count && next_ < elements_.size()) {
    elements[taken++] = com::ToCom(elements_[next_++]).Release();
  }
  if (given != nullptr) *given = taken;
  return taken == count ? S_OK : S_FALSE;
} catch (const std::exception&) {
  return E_FAIL;
}

HRESULT Enumeration::Skip(ULONG count) noexcept {
  const size_t left = elements_.size() - next_;
  next_ += std::min<size_t>(count, left);
  return count <= left ? S_OK : S_FALSE;
}

HRESULT Enumeration::Reset() noexcept {
  next_ = 0;
  return S_OK;
}

HRESULT Enumeration::Clone(IEnumVARIANT** copy) noexcept try {
  if (copy == nullptr) return E_POINTER;
  *copy = new Enumeration(elements_, next_);
  return S_OK;
} catch (const std::exception&) {
  return E_OUTOFMEMORY;
}

}  // namespace ambrelio::stand_in
