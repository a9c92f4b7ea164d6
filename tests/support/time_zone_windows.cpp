// The time zone through the variable TZ of the C library that the process shares with the DLL.
//
// SPDX-License-Identifier: MIT
#include <stdlib.h>
#include <time.h>

#include "support/time_zone.h"

namespace rgen_test {

TimeZone::TimeZone(const std::string& name) {
    const char* previous = getenv("TZ");
    hadName_ = previous != nullptr;
    previousName_ = hadName_ ? previous : "";
    _putenv(("TZ=" + name).c_str());
    _tzset();
}

TimeZone::~TimeZone() {
    _putenv(("TZ=" + previousName_).c_str());
    _tzset();
}

}  // namespace rgen_test
