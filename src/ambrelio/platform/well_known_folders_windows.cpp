// Each folder comes from the service of Windows that programs of the mill have always asked for it,
// so that a label means the same folder to all of them.
#include <shlobj.h>
#include <windows.h>

#include "ambrelio/com/apartment.h"
#include "ambrelio/com/late_bound.h"
#include "ambrelio/com/text.h"
#include "ambrelio/platform/well_known_folders.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio {
namespace {

using com::LateBound;

std::string ShellFolder(int folder) {
  wchar_t path[MAX_PATH] = L"";
  if (!::SHGetSpecialFolderPathW(nullptr, path, folder, FALSE)) return "";
  return com::FromWide(path);
}

std::string SystemFolder() {
  wchar_t path[MAX_PATH] = L"";
  const UINT length = ::GetSystemDirectoryW(path, MAX_PATH);
  return length < MAX_PATH ? com::FromWide({path, length}) : "";
}

LateBound Shell() { return LateBound(com::CreateObject("wscript.shell")); }
LateBound FileSystem() { return LateBound(com::CreateObject("scripting.filesystemobject")); }

std::string EnvironmentVariable(const char* name) {
  return ToText(Shell().ObjectFrom("Environment", {"PROCESS"}).Call("Item", {name}));
}

std::string UserFolder(const char* name) {
  return ToText(Shell().ObjectFrom("SpecialFolders").Call("Item", {name}));
}

std::string TemporaryFolder() {
  constexpr int16_t kTemporaryFolder = 2;
  return ToText(FileSystem().ObjectFrom("GetSpecialFolder", {kTemporaryFolder}).Call("Path"));
}

std::string Downloads() {
  return ToText(FileSystem().Call("BuildPath", {EnvironmentVariable("USERPROFILE"), "Downloads"}));
}

std::string Find(WellKnownFolder folder) {
  switch (folder) {
    case WellKnownFolder::kSharedData:
      return ShellFolder(CSIDL_COMMON_APPDATA);
    case WellKnownFolder::kUserData:
      return ShellFolder(CSIDL_APPDATA);
    case WellKnownFolder::kPrograms:
      return EnvironmentVariable("programfiles");
    case WellKnownFolder::kDocuments:
      return UserFolder("MyDocuments");
    case WellKnownFolder::kDesktop:
      return UserFolder("Desktop");
    case WellKnownFolder::kSystemRoot:
      return EnvironmentVariable("windir");
    case WellKnownFolder::kSystem:
      return SystemFolder();
    case WellKnownFolder::kSystem32Bits:
      return ShellFolder(CSIDL_SYSTEMX86);
    case WellKnownFolder::kTemporary:
      return TemporaryFolder();
    case WellKnownFolder::kDownloads:
      return Downloads();
  }
  return "";
}

}  // namespace

std::string FolderPath(WellKnownFolder folder) {
  const com::Apartment apartment;
  std::string path;
  try {
    path = Find(folder);
  } catch (const AutomationError&) {
    return "";
  }
  while (path.size() > 3 && path.back() == '\\') path.pop_back();  // not that of "C:\"
  return path;
}

}  // namespace ambrelio
