// A PDF that says why there is no other.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vellum {

/// A PDF of one A4 page with this text. What is not ASCII becomes a question mark.
std::string errorPage(const std::string& text);

}  // namespace vellum
