// Runs a script of VBScript or JScript, as Windows' own cscript does, but tells errors, delivers
// messages while it sleeps, and reads Unicode.
//
// usage: script_host [--clock "YYYY-MM-DD HH:MM:SS"] SCRIPT [ARGUMENT...]
//
// With --clock the library finds that moment when it looks at the clock, and WScript.Sleep moves it
// on.

#include "host.h"

int wmain(int count, wchar_t** arguments) { return ambrelio::script_host::Main(count, arguments); }
