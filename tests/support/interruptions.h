// The ways in which a person or the system wishes a program to end, for a program to be wished it:
//
//   for (const auto& interrupt : test::Interruptions()) interrupt();
#pragma once

#if defined(_WIN32)
#include "support/interruptions_windows.h"
#else
#include "support/interruptions_posix.h"
#endif
