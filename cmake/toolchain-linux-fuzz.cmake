# SPDX-License-Identifier: MIT
# The compiler of the fuzzers: clang, which contains the fuzzing engine.

file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/versions.env version_line REGEX "^CLANG_FUZZER_VERSION=")
string(REGEX REPLACE "^.*=" "" version "${version_line}")
set(CMAKE_C_COMPILER clang-${version})
set(CMAKE_CXX_COMPILER clang++-${version})
