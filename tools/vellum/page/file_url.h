// Addresses of files and folders.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vellum {

/// "file:///..." for an absolute path, with what is not allowed in an address percent-encoded.
std::string fileUrl(const std::filesystem::path& path);

/// The address that relative links of a page count from: a URL stays as it is, a path becomes the
/// address of that folder with a slash at its end, the empty text means the folder of `page`.
std::string baseUrl(const std::string& base, const std::filesystem::path& page);

/// The address that a link means, counted from `base`.
std::string resolvedUrl(const std::string& link, const std::string& base);

/// The file that a link names, counted from `base`; nothing for addresses that are no files.
std::optional<std::filesystem::path> linkedFile(const std::string& link, const std::string& base);

}  // namespace vellum
