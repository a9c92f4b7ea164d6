// Adding a report type to a configuration.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

struct ConfigEntry {
    std::string guid;
    std::string persistDataFile;
    std::string reportTypeFile;
};

/// A configuration with this report type only.
std::string newConfiguration(const ConfigEntry& entry);

/// The configuration with one more report type; everything else stays as it is. Throws a
/// CommandError when `config`, the content of the file `path`, has no place for it.
std::string withReportType(const std::string& config, const ConfigEntry& entry,
                           const std::string& path);

}  // namespace cli
