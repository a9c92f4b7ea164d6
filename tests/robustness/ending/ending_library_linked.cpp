// The functions of the library that the host is linked with.
//
// SPDX-License-Identifier: MIT
#include "robustness/ending/ending_library.h"

namespace rgen_test {

bool openLibrary(const char* /*path*/, EndingLibrary& library) {
#define RGEN_TEST_LINKED(member, name) library.member = name
    RGEN_TEST_FUNCTIONS(RGEN_TEST_LINKED);
#undef RGEN_TEST_LINKED
    return true;
}

bool loadLateLibrary(const char* /*path*/, void (* /*function*/)()) {
    return false;
}

}  // namespace rgen_test
