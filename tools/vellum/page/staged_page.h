// The copy of a page that an engine converts: the same content with scripts and network disabled.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "page/checkpoint.h"

namespace vellum {

struct StagedPage {
    /// In UTF-8, with a byte order mark.
    std::string content;
    /// Base URL of its relative links: the page's own, or the given one.
    std::string base;
    /// The engine that the page asks for, or empty.
    std::string engine;
    /// The links to images and style sheets, each once.
    std::vector<std::string> shownFiles;
};

/// Converts the page to UTF-8, inserts encoding, content security policy, base and paper size at
/// its start, and sanitizes it. Throws a Failure for an encoding that cannot be decoded.
StagedPage stagePage(std::string page, const std::string& base, Checkpoint& checkpoint);

}  // namespace vellum
