# Cross-builds for Windows, 32 bits, with Debian's mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(AMBRELIO_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# Doubles of 64 bits throughout, as on the other systems: the older arithmetic keeps 80 in between, and
# the last digit of a share would depend on the width of the host. Callers align the stack to 4 bytes.
add_compile_options(-msse2 -mfpmath=sse -mstackrealign)
