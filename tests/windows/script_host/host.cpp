#include "host.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <optional>
#include <string_view>

#include "ambrelio/com/apartment.h"
#include "ambrelio/com/text.h"
#include "library_clock.h"
#include "wscript_object.h"

namespace ambrelio::script_host {

int Main(int count, wchar_t** arguments, const MoreItems& more) {
  // Lines end alike on every system, so that outputs compare byte by byte.
  ::_setmode(_fileno(stdout), _O_BINARY);
  ::_setmode(_fileno(stderr), _O_BINARY);
  std::optional<OleDate> moment;
  if (count > 2 && std::wstring_view(arguments[1]) == L"--clock") {
    moment = OleDate::FromIso(com::FromWide(arguments[2]));
    count -= 2;
    arguments += 2;
  }
  if (count < 2) {
    std::fputs("usage: script_host [--clock \"YYYY-MM-DD HH:MM:SS\"] SCRIPT [ARGUMENT...]\n",
               stderr);
    return static_cast<int>(ExitCode::kNotRun);
  }
  try {
    const com::Apartment apartment;
    if (moment) SetLibraryClock(*moment);
    const ScriptFile script = ReadScript(arguments[1]);
    std::vector<NamedItem> items = more ? more() : std::vector<NamedItem>();
    const auto wscript = MakeWScript(script.path, {arguments + 2, arguments + count});
    items.push_back({L"WScript", com::ComPtr<IDispatch>(wscript.get())});
    return static_cast<int>(Run(script, std::move(items)));
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return static_cast<int>(ExitCode::kNotRun);
  }
}

}  // namespace ambrelio::script_host
