// What the system tells a file by, whatever its names are.
#pragma once

#if defined(_WIN32)
#include "support/file_number_windows.h"
#else
#include "support/file_number_posix.h"
#endif
