#include "host.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "ambrelio/com/apartment.h"
#include "wscript_object.h"

namespace ambrelio::script_host {
int Main(int count, wchar_t** arguments, const MoreItems& more) {
  // Lines end alike on every system, so that outputs compare byte by byte.
  ::_setmode(_fileno(stdout), _O_BINARY);
  ::_setmode(_fileno(stderr), _O_BINARY);
  if (count < 2) {
    std::fputs("usage: script_host SCRIPT [ARGUMENT...]\n", stderr);
    return static_cast<int>(ExitCode::kNotRun);
  }
  try {
    const com::Apartment apartment;
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
