// Is this file a complete PDF?
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace tools {

/// Returns whether the file begins with "%PDF-" and has "%%EOF" in its last 1024 bytes.
bool isWholePdf(const std::filesystem::path& path);

}  // namespace tools
