// The page as an engine gets it: the same content, unable to do harm.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "html_tags.h"

namespace vellum {

struct StagedPage {
    std::string content;
    /// The base of its relative links: the page's own, or the given one.
    std::string base;
    /// The engine that the page asks for; may be empty.
    std::string engine;
    /// The start tags of the page as it came.
    std::vector<HtmlTag> tags;
};

/// Puts encoding, policy, base and paper size in front of a page and takes out what the policy does
/// not reach: redirections and attachments.
StagedPage stagePage(std::string page, const std::string& base);

/// Tells whether the bytes are valid UTF-8.
bool isUtf8(const std::string& text);

}  // namespace vellum
