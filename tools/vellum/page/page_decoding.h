// The text of a page, whatever its encoding.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// The page in UTF-8, without a byte order mark. Its encoding is that of its mark, or else the
/// first one that it declares, or else UTF-8 if it is valid as such, or else windows-1252. What is
/// no character becomes U+FFFD. Raises a Failure for an encoding that the system does not know.
std::string pageInUtf8(std::string page, Checkpoint& checkpoint);

}  // namespace vellum
