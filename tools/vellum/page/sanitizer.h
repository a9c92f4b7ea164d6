// Disables what a content security policy does not cover: redirections and attachments.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// Renames each "http-equiv" attribute except harmless ones, and overwrites the attributes of each
/// tag whose "rel" attribute names an attachment. This covers everything that looks like a start
/// tag, even inside text. The length of the page does not change.
void sanitize(std::string& page, Checkpoint& checkpoint);

}  // namespace vellum
