// Reading a page and writing its copy.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

#include "page/checkpoint.h"

namespace vellum {

/// Throws a Failure when the file cannot be read to its end, or is not a regular file.
std::string readPage(const std::filesystem::path& path, Checkpoint& checkpoint);

/// Opens a file for reading so that others can delete it in the meantime: the library cancels a
/// conversion by deleting its page. Returns null with errno set when it cannot be opened.
/// page_file_posix.cpp and page_file_windows.cpp implement it.
std::FILE* openDeletable(const std::filesystem::path& path);

/// Throws a Failure when the file cannot be written completely.
void writePage(const std::filesystem::path& path, const std::string& content,
               Checkpoint& checkpoint);

}  // namespace vellum
