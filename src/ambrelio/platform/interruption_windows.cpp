#include <windows.h>

#include <atomic>

#include "ambrelio/platform/interruption.h"

namespace ambrelio {
namespace {

// Windows calls the handler on a thread of its own.
std::atomic<bool> interrupted = false;

BOOL WINAPI Note(DWORD event) {
  // A window that is closed, a session that ends: the process is gone when this returns.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  interrupted = true;
  return TRUE;
}

}  // namespace

struct Interruption::Handlers {};

Interruption::Interruption() : before_(std::make_unique<Handlers>()) {
  interrupted = false;
  ::SetConsoleCtrlHandler(Note, TRUE);
}

Interruption::~Interruption() { ::SetConsoleCtrlHandler(Note, FALSE); }

bool Interruption::Interrupted() const { return interrupted; }

}  // namespace ambrelio
