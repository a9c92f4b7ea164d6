# SPDX-License-Identifier: MIT
# Cross compilation for 64-bit Windows with Debian's MinGW-w64 (POSIX thread model, old C runtime).

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The oldest supported Windows release: using a newer function is a compile error.
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/versions.env api_level_line REGEX "^WINDOWS_API_LEVEL=")
string(REGEX REPLACE "^.*=" "" api_level "${api_level_line}")
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=${api_level} -DWINVER=${api_level}")
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=${api_level} -DWINVER=${api_level}")

# Link the compiler's runtime libraries statically, so that programs and DLL need no other files.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

# Run programs under Wine, in a prefix that belongs to this build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-under-wine ${CMAKE_BINARY_DIR}/wine)
