// The system calls on files that one report takes at least.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace benchmarks {

/// One query of a file's properties; fails when there is no such file.
void requireExists(const std::string& path);

/// Opens, asks the size, reads and closes.
std::string readWholeFile(const std::string& path);

/// Looks for an old file, removes it if there is one, then creates, writes and closes.
void replaceFile(const std::string& path, const std::vector<unsigned char>& bytes);

}  // namespace benchmarks
