// options.json of a test of a report type.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

struct GoldenOptions {
    /// Empty: the formats that have an expected report.
    std::vector<std::string> formats;
    std::string lang;
    std::string timeZone = "UTC";
    /// Texts of the values are XML content.
    bool raw = false;
};

/// Reads the file. Throws a CommandError with its place and what is wrong in it.
GoldenOptions readGoldenOptions(const std::string& path);

}  // namespace cli
