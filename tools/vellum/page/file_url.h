// File paths as URLs and back.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vellum {

/// The "file:" URL of an absolute path, percent-encoded.
std::string fileUrl(const std::filesystem::path& path);

/// The base URL for relative links of a page: a URL is returned as it is, a path becomes the URL of
/// that folder with a slash at its end, an empty text means the folder of `page`.
std::string baseUrl(const std::string& base, const std::filesystem::path& page);

/// The URL that a link means relative to `base`.
std::string resolvedUrl(const std::string& link, const std::string& base);

/// The local file that a link means relative to `base`; empty optional for other URLs.
std::optional<std::filesystem::path> linkedFile(const std::string& link, const std::string& base);

}  // namespace vellum
