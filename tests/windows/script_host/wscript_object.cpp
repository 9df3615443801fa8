#include "wscript_object.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/late_bound.h"
#include "ambrelio/com/text.h"
#include "library_clock.h"

namespace ambrelio::script_host {
namespace {

com::OwnedVariant Echo(Arguments arguments) {
  std::string line;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) line += ' ';
    line += TextArgument(arguments, i);
  }
  std::puts(line.c_str());
  std::fflush(stdout);
  return {};
}

// The engines have no other way out of a script in the middle.
[[noreturn]] com::OwnedVariant Quit(Arguments arguments) {
  const LONG code = arguments.empty() ? 0 : LongArgument(arguments, 0);
  std::fflush(nullptr);
  ::ExitProcess(static_cast<UINT>(code));
}

com::OwnedVariant Sleep(Arguments arguments) {
  const LONG milliseconds = LongArgument(arguments, 0);
  if (AdvanceLibraryClock(milliseconds)) return {};
  const ULONGLONG end = ::GetTickCount64() + static_cast<ULONG>(milliseconds);
  for (;;) {
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      ::TranslateMessage(&message);
      ::DispatchMessageW(&message);
    }
    const ULONGLONG now = ::GetTickCount64();
    if (now >= end) return {};
    ::MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(end - now), QS_ALLINPUT,
                                  MWMO_INPUTAVAILABLE);
  }
}

Member ItemOf(const std::vector<std::wstring>& arguments) {
  return [arguments](Arguments given) {
    const auto index = static_cast<size_t>(LongArgument(given, 0));
    if (index >= arguments.size()) Raise(RuntimeError::kSubscriptOutOfRange);
    return TextValue(com::FromWide(arguments[index]));
  };
}

// The list, or with an index the argument itself: engines ask for WScript.Arguments(0) in one call.
Member ArgumentsOf(const std::vector<std::wstring>& arguments) {
  auto list = ScriptObject::Make();
  const Member count = [size = static_cast<LONG>(arguments.size())](Arguments) {
    return LongValue(size);
  };
  const Member item = ItemOf(arguments);
  list->Add("Count", count);
  list->Add("length", count);
  list->AddDefault("Item", item);
  return [list = com::ComPtr<IDispatch>(list.get()), item](Arguments given) {
    return given.empty() ? ObjectValue(list) : item(given);
  };
}

}  // namespace

com::ComPtr<ScriptObject> MakeWScript(const std::wstring& script_path,
                                      const std::vector<std::wstring>& arguments) {
  auto wscript = ScriptObject::Make();
  wscript->Add("Echo", Echo);
  wscript->Add("Quit", Quit);
  wscript->Add("Sleep", Sleep);
  wscript->Add("Arguments", ArgumentsOf(arguments));
  wscript->Add("ScriptFullName",
               [path = com::FromWide(script_path)](Arguments) { return TextValue(path); });
  wscript->Add("ScriptName", [script_path](Arguments) {
    return TextValue(com::FromWide(std::filesystem::path(script_path).filename().wstring()));
  });
  wscript->Add("CreateObject", [](Arguments given) {
    return ObjectValue(com::CreateObject(TextArgument(given, 0)));
  });
  return wscript;
}

}  // namespace ambrelio::script_host
