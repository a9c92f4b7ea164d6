// What a check found: the place, what is wrong there, and what to do about it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/input_file.h"

namespace cli {

enum class Severity { Error, Warning, Note };

/// "error", "warning" or "note".
const char* severityName(Severity severity);

struct Finding {
    Severity severity = Severity::Error;
    /// For programs, the same in all releases: "unknown-variable".
    std::string code;
    std::string file;
    TextPosition position;
    /// The number of characters that are wrong; 0 when it is not known.
    std::size_t length = 0;
    std::string what;
    /// May be empty.
    std::string advice;
    /// The line of the file without its line break; empty when there is none to show.
    std::string sourceLine;
};

/// "FILE:LINE:COLUMN: error: what; what to do".
std::string findingLine(const Finding& finding);

/// "what; what to do".
std::string findingText(const Finding& finding);

/// The source line and a second line with "^" and "~" below what is wrong, both indented; empty
/// when the finding has no source line. Lines that are too long are shortened around the place.
std::string findingExcerpt(const Finding& finding);

/// Findings without duplicates.
class Findings {
public:
    void add(Finding finding);
    void add(const Findings& others);

    const std::vector<Finding>& all() const { return findings_; }
    bool empty() const { return findings_.empty(); }
    std::size_t count(Severity severity) const;

    /// By file in the order in which the files were named first, then by place.
    void sort();

private:
    std::vector<Finding> findings_;
};

}  // namespace cli
