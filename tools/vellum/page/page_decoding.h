// A page of any encoding as UTF-8.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// The page in UTF-8, without a byte order mark. Its encoding is that of its byte order mark, or
/// else the first one that it declares, or else UTF-8 if it is valid UTF-8, or else windows-1252.
/// Invalid bytes become U+FFFD. Throws a Failure for an encoding that the system cannot decode.
std::string pageInUtf8(std::string page, Checkpoint& checkpoint);

}  // namespace vellum
