// A type library as text, for people and for comparing.
#pragma once

#include <ole2.h>

#include <string>
#include <vector>

#include "ambrelio/com/owned.h"

namespace ambrelio::test {

// One line for the library, each class, interface, enumeration, and below them each member with
// number, kind, place in the vtable, types, flags and sentence.
std::string TypeLibraryText(ITypeLib* library);

// "short*", "_Tolva**": the type as the interface language writes it.
std::string TypeText(ITypeInfo* info, const TYPEDESC& type);

struct Documentation {
  std::string name;
  std::string help;
};
Documentation DocumentationOf(ITypeInfo* info, MEMBERID member);

// The names of a member and its arguments.
std::vector<std::string> NamesOf(ITypeInfo* info, MEMBERID member);

// The functions and attributes of a type while they are looked at.
class Function {
 public:
  Function(ITypeInfo* info, UINT index) : info_(info) { info_->GetFuncDesc(index, &description_); }
  ~Function() { info_->ReleaseFuncDesc(description_); }
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  const FUNCDESC* operator->() const { return description_; }

 private:
  com::ComPtr<ITypeInfo> info_;
  FUNCDESC* description_ = nullptr;
};
class Attributes {
 public:
  explicit Attributes(ITypeInfo* info) : info_(info) { info_->GetTypeAttr(&attributes_); }
  ~Attributes() { info_->ReleaseTypeAttr(attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  const TYPEATTR* operator->() const { return attributes_; }

 private:
  com::ComPtr<ITypeInfo> info_;
  TYPEATTR* attributes_ = nullptr;
};

}  // namespace ambrelio::test
