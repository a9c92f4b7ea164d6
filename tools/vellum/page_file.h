// The file of a page, and that of its copy.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "checkpoint.h"

namespace vellum {

/// Raises a Failure when the file cannot be read to its end, or is none that has one.
std::string readPage(const std::filesystem::path& path, Checkpoint& checkpoint);

/// Raises a Failure when the file cannot be written whole.
void writePage(const std::filesystem::path& path, const std::string& content,
               Checkpoint& checkpoint);

}  // namespace vellum
