// What automation hands out and wants back, each owned by a small type: interface pointers, texts,
// VARIANTs.
#pragma once

#include <ole2.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "ambrelio/com/text.h"

namespace ambrelio::com {

// A counted reference to an interface, or null.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Adds a reference of its own.
  explicit ComPtr(T* pointer) : pointer_(pointer) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  // Takes over the reference that the caller holds.
  static ComPtr Adopt(T* pointer) {
    ComPtr owner;
    owner.pointer_ = pointer;
    return owner;
  }
  ComPtr(const ComPtr& other) : ComPtr(other.pointer_) {}
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() {
    if (pointer_ != nullptr) pointer_->Release();
  }

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  // Gives the reference away.
  T* Release() { return std::exchange(pointer_, nullptr); }
  // Where a function puts a new reference; what was held is let go.
  T** Receive() {
    *this = ComPtr();
    return &pointer_;
  }
  void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }
  // Null when the object lacks that interface.
  template <class Other>
  ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (pointer_ != nullptr) pointer_->QueryInterface(__uuidof(Other), other.ReceiveVoid());
    return other;
  }

 private:
  T* pointer_ = nullptr;
};

// The text of a BSTR that somebody else owns; a null one is "".
inline std::string TextOf(BSTR text) {
  return text == nullptr ? std::string() : FromWide({text, ::SysStringLen(text)});
}

// A text of automation's own kind.
class BStr {
 public:
  BStr() = default;
  explicit BStr(std::string_view utf8) {
    const std::wstring wide = ToWide(utf8);
    text_ = ::SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (text_ == nullptr) throw std::bad_alloc();
  }
  // Takes over the text that the caller owns.
  static BStr Adopt(BSTR text) {
    BStr owner;
    owner.text_ = text;
    return owner;
  }
  BStr(const BStr&) = delete;
  BStr& operator=(const BStr&) = delete;
  BStr(BStr&& other) noexcept : text_(other.Release()) {}
  BStr& operator=(BStr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~BStr() { ::SysFreeString(text_); }

  BSTR get() const { return text_; }
  BSTR Release() { return std::exchange(text_, nullptr); }
  BSTR* Receive() {
    *this = BStr();
    return &text_;
  }
  std::string Text() const { return TextOf(text_); }

 private:
  BSTR text_ = nullptr;
};

// A VARIANT with what it holds.
class OwnedVariant {
 public:
  OwnedVariant() { ::VariantInit(&value_); }
  // Takes over what `value` holds.
  explicit OwnedVariant(const VARIANT& value) : value_(value) {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  OwnedVariant(OwnedVariant&& other) noexcept : value_(other.Release()) {}
  OwnedVariant& operator=(OwnedVariant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~OwnedVariant() { ::VariantClear(&value_); }

  const VARIANT& get() const { return value_; }
  VARIANT& get() { return value_; }
  VARIANT Release() {
    const VARIANT value = value_;
    ::VariantInit(&value_);
    return value;
  }
  VARIANT* Receive() {
    *this = OwnedVariant();
    return &value_;
  }

 private:
  VARIANT value_;
};

}  // namespace ambrelio::com
