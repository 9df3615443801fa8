#include "ambrelio/win32/type_library.h"

#include "ambrelio/com/errors.h"
#include "ambrelio/win32/module.h"

namespace ambrelio::win32 {

using com::ComPtr;

ComPtr<ITypeLib> OpenTypeLibrary() {
  ComPtr<ITypeLib> library;
  com::Check(::LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Receive()),
             "LoadTypeLibEx");
  return library;
}

ComPtr<ITypeInfo> TypeInfoOf(REFGUID id) {
  ComPtr<ITypeInfo> info;
  com::Check(OpenTypeLibrary()->GetTypeInfoOfGuid(id, info.Receive()), "GetTypeInfoOfGuid");
  return info;
}

}  // namespace ambrelio::win32
