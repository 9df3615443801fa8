// The host's INI files: where the database is, its password, how many hoppers and tanks there are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ambrelio/data/session.h"
#include "ambrelio/kestro/ini_file.h"

namespace ambrelio::frame {

// "Vardex.ini", and the folder it was found in.
struct HostIni {
  kestro::IniFile file;
  std::string folder;
};
// `vardex3` or the key Esclavo of "CLIEN.INI" take it from the shared network folder.
HostIni OpenHostIni(const std::string& app_path, bool vardex3);

struct DatabaseSettings {
  std::string path;
  std::string password;
};
// Sets the counts in the session and says where the database is. Raises 6 for a count above 32767.
DatabaseSettings LoadGeneralSettings(Session& session, const std::string& app_path);

// The key of the password in section GENERAL of "Vardex.ini".
inline constexpr const char* kPasswordKey = "PassworDB";
// What stands there: the encoded password between two framing characters, which may be any. An
// obfuscation, no protection. Unframing gives nothing for text that holds no encoded password.
std::string FramePassword(std::string_view password);
std::optional<std::string> UnframePassword(const std::string& stored);

// First a label of a well-known folder at the start (see folders/carpetas.h); then everywhere
// "{app}" is the folder of the library's file, "{dat}" the application path.
std::string ExpandPathMacros(const std::string& route, const std::string& app_path);

}  // namespace ambrelio::frame
