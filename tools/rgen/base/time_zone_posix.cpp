// The names are those of the files of the time zone database. The C library would treat an unknown
// name as UTC, without a message.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <vector>

#include "base/command_error.h"
#include "base/console.h"
#include "base/suggestion.h"
#include "base/time_zone.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

fs::path databaseFolder() {
    const char* const folder = std::getenv("TZDIR");
    return folder == nullptr || *folder == '\0' ? "/usr/share/zoneinfo" : folder;
}

bool isZoneFile(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return false;
    char start[4] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return std::string(start, sizeof start) == "TZif";
}

/// The names of the database, to find the one that was meant.
std::vector<std::string> zoneNames() {
    std::vector<std::string> names;
    std::error_code failure;
    const fs::path folder = databaseFolder();
    for (fs::recursive_directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::string name = entry->path().lexically_relative(folder).u8string();
        const bool isCopy = name.compare(0, 6, "posix/") == 0 || name.compare(0, 6, "right/") == 0;
        if (!isCopy && isZoneFile(entry->path())) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

void setZone(const std::string& zone) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
}

}  // namespace

void setFixedTimeZone(int minutesEast) {
    const int minutes = std::abs(minutesEast);
    char zone[48] = {};
    // The sign after the name says how far UTC is from the zone.
    std::snprintf(zone, sizeof zone, "<%c%02d%02d>%c%02d:%02d", minutesEast < 0 ? '-' : '+',
                  minutes / 60, minutes % 60, minutesEast < 0 ? '+' : '-', minutes / 60,
                  minutes % 60);
    setZone(minutes == 0 ? "UTC0" : zone);
}

void setNamedTimeZone(const std::string& name) {
    const bool isName = !name.empty() && name[0] != '/' && name[0] != '.' &&
                        name.find("..") == std::string::npos &&
                        name.find('\0') == std::string::npos;
    if (!isName || !isZoneFile(databaseFolder() / fs::u8path(name))) {
        throw usageError("there is no time zone \"" + shortened(name) + "\"",
                         didYouMean(name, zoneNames(),
                                    "write a name such as Europe/Berlin, an offset such as "
                                    "+01:00, or UTC"));
    }
    setZone(name);
}

}  // namespace cli
