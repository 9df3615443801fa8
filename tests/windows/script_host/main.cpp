// Runs a script of VBScript or JScript, as Windows' own cscript does, but tells errors, delivers
// messages while it sleeps, and reads Unicode.
//
// usage: script_host SCRIPT [ARGUMENT...]

#include "host.h"

int wmain(int count, wchar_t** arguments) { return ambrelio::script_host::Main(count, arguments); }
