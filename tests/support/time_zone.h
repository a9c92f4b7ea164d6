// The process's time zone for the length of a scope.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_TIME_ZONE_H
#define RGEN_TESTS_SUPPORT_TIME_ZONE_H

#include <string>

namespace rgen_test {

class TimeZone {
public:
    // A name that the C libraries of both systems know without a time zone data base: a standard
    // name, the offset west of Greenwich and, for daylight saving by the rules of the United
    // States, a second name: "UTC0", "EST5EDT".
    explicit TimeZone(const std::string& name);
    ~TimeZone();
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    bool hadName_ = false;
    std::string previousName_;
};

}  // namespace rgen_test

#endif
