// Whether a file is a PDF as a whole.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace tools {

/// Tells whether the file begins with "%PDF-" and has "%%EOF" in its last 1024 bytes.
bool isWholePdf(const std::filesystem::path& path);

}  // namespace tools
