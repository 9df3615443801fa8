# What both widths of mingw-w64 have in common. The posix flavour of the compiler has std::thread and
# std::mutex.
set(CMAKE_C_COMPILER ${AMBRELIO_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${AMBRELIO_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${AMBRELIO_MINGW}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${AMBRELIO_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# One file each, with no DLL of the compiler's beside it and no moment of building inside. 0x0601 is
# Windows 7.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT _WIN32_WINNT=0x0601)
