// Starts programs that outlive rgen: the browser and the editor. Implemented in desktop_posix.cpp
// and desktop_windows.cpp.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

/// Opens an address in the user's browser. Throws a CommandError.
void openInBrowser(const std::string& address);

/// Starts a program, without a shell and without waiting for its end. Throws a CommandError.
void startProgram(const std::vector<std::string>& words);

}  // namespace cli
