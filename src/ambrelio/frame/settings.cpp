#include "ambrelio/frame/settings.h"

#include "ambrelio/folders/carpetas.h"
#include "ambrelio/kestro/tools.h"
#include "ambrelio/platform/program_folder.h"
#include "ambrelio/platform/text_encoding.h"
#include "ambrelio/value/automation_error.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::frame {

using kestro::IniFile;
using kestro::Tools;

namespace {

// "hoppers,intermediate hoppers,tanks"; what is missing counts as 0, and a mill has a tank at
// least.
void LoadCounts(Session& session, const std::string& counts) {
  std::string rest = counts;
  const auto next = [&rest] { return RoundToInteger(LeadingNumber(Tools::NextToken(rest, ','))); };
  try {
    session.hopper_count = next();
    session.intermediate_hopper_count = next();
    session.tank_count = next();
  } catch (const AutomationError& error) {
    throw AutomationError(error.number(), error.source(),
                          error.description() + ": MaxTolvas=" + counts);
  }
  if (session.tank_count == 0) session.tank_count = 1;
}

}  // namespace

HostIni OpenHostIni(const std::string& app_path, bool vardex3) {
  const IniFile client(Tools::CombinePath(app_path, "CLIEN.INI"), "GENERAL");
  const bool shared = vardex3 || Tools::TextAsBoolean(client.Read("Esclavo"));
  const std::string folder = shared ? client.Read("NetPath") : app_path;
  return {IniFile(Tools::CombinePath(folder, "Vardex.ini"), ""), folder};
}

DatabaseSettings LoadGeneralSettings(Session& session, const std::string& app_path) {
  HostIni ini = OpenHostIni(app_path, session.vardex3);
  ini.file.SetSection("GENERAL");
  LoadCounts(session, ini.file.Read("MaxTolvas"));

  std::string name = ini.file.Read("BaseDatos");
  if (name.empty()) name = "oliva.mdb";
  std::string route = ini.file.Read("RutaBaseDatos");
  if (route.empty() || session.vardex3) route = ini.folder;
  return {Tools::CombinePath(ExpandPathMacros(route, app_path), name),
          UnframePassword(ini.file.Read(kPasswordKey)).value_or("")};
}

std::string FramePassword(std::string_view password) {
  constexpr char kFrame = 'x';  // neither digit nor sign of the encoded form, nor of a shell
  return kFrame + Tools::Encode(password) + kFrame;
}

std::optional<std::string> UnframePassword(const std::string& stored) {
  const size_t length = Utf8Length(stored);
  if (length < 3) return std::nullopt;
  const size_t first = Utf8Prefix(stored, 1).size();
  const size_t last = Utf8Prefix(stored, length - 1).size();
  return Tools::Decode(stored.substr(first, last - first));
}

std::string ExpandPathMacros(const std::string& route, const std::string& app_path) {
  const std::string expanded = folders::ExpandSpecialFolder(route);
  return Tools::Replace(Tools::Replace(expanded, "{app}", ProgramFolder()), "{dat}", app_path);
}

}  // namespace ambrelio::frame
