// What no policy reaches is taken out of a page: redirections and attachments.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// Renames each "http-equiv" attribute but the harmless ones, and makes the attributes of each tag
/// whose "rel" attribute names an attachment meaningless. Looks at everything that begins like a
/// start tag, also where it is text. No place in the page moves.
void disarm(std::string& page, Checkpoint& checkpoint);

}  // namespace vellum
