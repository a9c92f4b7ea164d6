// The templates of the reports of one run, each read once.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "templates/finding.h"

namespace cli {

struct KnownTemplate {
    std::string text;
    /// What looks like a marker, but stays in the report as it stands; as notes.
    Findings unmatchedMarkers;
    /// It contains an xsl:message.
    bool hasMessages = false;
    /// The markers were noted for a report of this run.
    bool isNoted = false;
    /// The mistakes that can be seen without data, by the path of the catalogue.
    std::map<std::string, Findings> mistakes;
};

/// Reads a template again only after its file has changed.
class KnownTemplates {
public:
    /// Null when the file cannot be read. The library reports that.
    KnownTemplate* find(const std::string& path);

private:
    struct Entry {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        KnownTemplate known;
    };
    std::map<std::string, Entry> entries_;
};

}  // namespace cli
