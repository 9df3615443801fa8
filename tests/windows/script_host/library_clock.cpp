#include "library_clock.h"

#include <ole2.h>

#include <ctime>
#include <stdexcept>
#include <string_view>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/owned.h"

namespace ambrelio::script_host {
namespace {

std::time_t present;  // seconds as the C library counts them; 0 while no clock was set
int64_t past_second;  // milliseconds

__time32_t Time32(__time32_t* time) {
  const auto now = static_cast<__time32_t>(present);
  if (time != nullptr) *time = now;
  return now;
}

__time64_t Time64(__time64_t* time) {
  if (time != nullptr) *time = present;
  return present;
}

void WINAPI LocalTime(SYSTEMTIME* time) {
  const std::tm parts = *std::localtime(&present);
  *time = {static_cast<WORD>(parts.tm_year + 1900), static_cast<WORD>(parts.tm_mon + 1),
           static_cast<WORD>(parts.tm_wday),        static_cast<WORD>(parts.tm_mday),
           static_cast<WORD>(parts.tm_hour),        static_cast<WORD>(parts.tm_min),
           static_cast<WORD>(parts.tm_sec),         0};
}

// What answers in the place of a function of that name; null for any that tells no time.
void* StandInFor(std::string_view name) {
  constexpr bool kShort = sizeof(void*) == 4;  // where "time" counts in 32 bits
  if (name == "_time32" || (kShort && name == "time")) return reinterpret_cast<void*>(Time32);
  if (name == "_time64" || name == "time") return reinterpret_cast<void*>(Time64);
  if (name == "GetLocalTime") return reinterpret_cast<void*>(LocalTime);
  return nullptr;
}

// Loaded by its class, and kept by it.
HMODULE Library() {
  static com::ComPtr<IUnknown> factory;
  CLSID id{};
  com::Check(::CLSIDFromProgID(L"Ambrelio.Trazabilidad", &id), "Ambrelio.Trazabilidad");
  com::Check(::CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IUnknown),
                                factory.ReceiveVoid()),
             "Ambrelio.Trazabilidad");
  return ::GetModuleHandleW(L"Ambrelio.dll");
}

// Puts the stand-ins into the library's table of what it calls elsewhere; how many there are.
int Redirect(HMODULE library) {
  auto* const base = reinterpret_cast<std::byte*>(library);
  const auto at = [base](DWORD offset) { return base + offset; };
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(at(static_cast<DWORD>(dos->e_lfanew)));
  const DWORD imports =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  int redirected = 0;
  for (auto* module = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(at(imports)); module->Name != 0;
       ++module) {
    auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(at(module->OriginalFirstThunk));
    auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(at(module->FirstThunk));
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(
          at(static_cast<DWORD>(name->u1.AddressOfData)));
      void* const stand_in = StandInFor(reinterpret_cast<const char*>(import->Name));
      if (stand_in == nullptr) continue;
      DWORD before = 0;
      ::VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
      slot->u1.Function = reinterpret_cast<ULONG_PTR>(stand_in);
      ::VirtualProtect(slot, sizeof *slot, before, &before);
      ++redirected;
    }
  }
  return redirected;
}

}  // namespace

void SetLibraryClock(OleDate moment) {
  static const int redirected = Redirect(Library());
  if (redirected == 0) throw std::runtime_error("Ambrelio.dll does not ask for the time");
  const CivilTime civil = moment.Civil();
  std::tm parts{};
  parts.tm_year = civil.year - 1900;
  parts.tm_mon = civil.month - 1;
  parts.tm_mday = civil.day;
  parts.tm_hour = civil.hour;
  parts.tm_min = civil.minute;
  parts.tm_sec = civil.second;
  parts.tm_isdst = -1;
  present = std::mktime(&parts);
  past_second = 0;
}

bool AdvanceLibraryClock(int32_t milliseconds) {
  if (present == 0) return false;
  past_second += milliseconds;
  present += static_cast<std::time_t>(past_second / 1000);
  past_second %= 1000;
  return true;
}

}  // namespace ambrelio::script_host
