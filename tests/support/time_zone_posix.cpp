// The time zone through the environment variable TZ.
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
    setenv("TZ", name.c_str(), 1);
    tzset();
}

TimeZone::~TimeZone() {
    if (hadName_) {
        setenv("TZ", previousName_.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
    tzset();
}

}  // namespace rgen_test
