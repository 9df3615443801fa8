#include "windows/dao_stand_in/stand_in.h"

#include <stdexcept>

#include "ambrelio/value/convert.h"

namespace ambrelio::test {
namespace {

std::wstring FolderOfProgram() {
  std::wstring path(32768, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

}  // namespace

StandIn::StandIn(Version version) {
  const std::wstring folder = FolderOfProgram();
  const std::wstring manifest =
      folder + L"dao_stand_in_" + (version == Version::kDao36 ? L"36" : L"120") + L".manifest";
  ACTCTXW context{};
  context.cbSize = sizeof context;
  context.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
  context.lpSource = manifest.c_str();
  context.lpAssemblyDirectory = folder.c_str();
  context_ = ::CreateActCtxW(&context);
  if (context_ == INVALID_HANDLE_VALUE || !::ActivateActCtx(context_, &cookie_)) {
    throw std::runtime_error("the manifest of the stand-in cannot be used");
  }
  control_ = com::LateBound(com::CreateObject("Ambrelio.DaoStandIn.Control"));
}

StandIn::~StandIn() {
  control_ = com::LateBound();
  ::DeactivateActCtx(0, cookie_);
  ::ReleaseActCtx(context_);
}

std::vector<std::string> StandIn::Calls() const {
  std::vector<std::string> calls;
  const Variant lines = control_.Call("Calls");
  for (const Variant& line : lines.array()) calls.push_back(ToText(line));
  return calls;
}

int StandIn::Lookups() const { return ToLong(control_.Call("Lookups")); }
int StandIn::Living() const { return ToLong(control_.Call("Living")); }

}  // namespace ambrelio::test
