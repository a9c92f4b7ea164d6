// Paths of files and folders: what is at them, and how they are put together.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// Tells whether something is at the path.
bool exists(const std::string& path);

/// Tells whether something is at the path that is not a regular file: a folder, a pipe, a device.
bool isSpecialFile(const std::string& path);

/// Throws a CommandError when missing rights or a system error hide whether something is there.
void requireAccess(const std::string& path);

/// Throws a CommandError when there is a file that cannot be read for lack of rights. The library
/// would treat it as an empty file.
void requireReadable(const std::string& path);

/// `folder` and `name` with a separator between them; "." is left out.
std::string joinedPath(const std::string& folder, const std::string& name);

/// The part of the path before the last separator, "." when there is none.
std::string folderOf(const std::string& path);

}  // namespace cli
