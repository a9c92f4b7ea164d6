// The file of a page, and that of its copy.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// Raises a Failure when the file cannot be read to its end, or is none that has one.
std::string readPage(const std::filesystem::path& path, Checkpoint& checkpoint);

/// Opens a file for reading as the system does it when others may remove it meanwhile: the library
/// cancels a conversion by removing its page. Null when it cannot be opened; errno says why.
std::FILE* openRemovable(const std::filesystem::path& path);

/// Raises a Failure when the file cannot be written whole.
void writePage(const std::filesystem::path& path, const std::string& content,
               Checkpoint& checkpoint);

}  // namespace vellum
