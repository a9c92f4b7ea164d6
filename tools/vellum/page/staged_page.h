// The page as an engine gets it: the same content, unable to do harm.
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
    /// The base of its relative links: the page's own, or the given one.
    std::string base;
    /// The engine that the page asks for; may be empty.
    std::string engine;
    /// The images and styles that the page shows, as its links say, each once.
    std::vector<std::string> shownFiles;
};

/// Puts encoding, policy, base and paper size at the start of a page and takes out what the policy
/// does not reach: redirections and attachments. Raises a Failure for a page in an encoding that
/// cannot be read.
StagedPage stagePage(std::string page, const std::string& base, Checkpoint& checkpoint);

}  // namespace vellum
