// A PDF with an error message in place of the report.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vellum {

/// A PDF of one A4 page with this text. Non-ASCII characters become question marks.
std::string errorPdf(const std::string& text);

}  // namespace vellum
