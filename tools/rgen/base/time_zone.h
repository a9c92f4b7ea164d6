// The time zone of this process, which the library uses to write times.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// "UTC", an offset ("+01:00"), or on Linux a name of the time zone database ("Europe/Berlin").
/// Throws a CommandError for anything else. To be called before times are read or written.
void useTimeZone(const std::string& zone);

/// Implemented for each system. Sets the zone that is so many minutes east of UTC.
void setFixedTimeZone(int minutesEast);

/// Implemented for each system. Throws a CommandError when the system has no such zone.
void setNamedTimeZone(const std::string& name);

}  // namespace cli
