// The DLL as such: where it lies, and whether it is in use.
#pragma once

#include <windows.h>

#include <string>

namespace ambrelio::win32 {

// The DLL that this code is in.
HINSTANCE ThisModule();
std::wstring ModulePath();

// Keeps the DLL from being unloaded: each object, each class factory and each lock holds one.
class ModuleUse {
 public:
  ModuleUse() { Add(1); }
  ~ModuleUse() { Add(-1); }
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;

  static void Add(long change);
  static bool Any();
};

}  // namespace ambrelio::win32
