#include <dlfcn.h>
#include <link.h>

#include <filesystem>

#include "ambrelio/platform/program_folder.h"

namespace ambrelio {

std::string ProgramFolder() {
  static const char anchor = 0;  // lies in the file that is asked for
  std::filesystem::path file = "/proc/self/exe";
  Dl_info info;
  void* extra = nullptr;
  if (dladdr1(&anchor, &info, &extra, RTLD_DL_LINKMAP) != 0) {
    // The program itself has no name in the loader's list.
    const auto* loaded = static_cast<const link_map*>(extra);
    if (loaded->l_name[0] != '\0') file = loaded->l_name;
  }
  return std::filesystem::canonical(file).parent_path().string();
}

}  // namespace ambrelio
