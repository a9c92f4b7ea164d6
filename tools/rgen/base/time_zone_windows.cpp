// The C runtime reads TZ as a name of three letters and an offset. It would take "Europe/Berlin"
// for UTC and knows no daylight saving time but that of the United States.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "base/command_error.h"
#include "base/console.h"
#include "base/time_zone.h"

namespace cli {

void setFixedTimeZone(int minutesEast) {
    const int minutes = std::abs(minutesEast);
    char zone[32] = {};
    // The sign says how far UTC is from the zone.
    std::snprintf(zone, sizeof zone, "UTC%c%02d:%02d", minutesEast < 0 ? '+' : '-', minutes / 60,
                  minutes % 60);
    _putenv_s("TZ", zone);
    _tzset();
}

void setNamedTimeZone(const std::string& name) {
    throw usageError(
        "\"" + shortened(name) + "\" cannot be the time zone of one program on Windows",
        "write UTC, or an offset such as +01:00");
}

}  // namespace cli
