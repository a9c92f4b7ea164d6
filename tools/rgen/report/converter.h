// The pdf converter "vellum", started as the library starts it, on a page that rgen has written.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

struct Conversion {
    std::string page;
    /// The base of relative links.
    std::string base;
    std::string output;
    /// Receives what the converter says.
    std::string said;
};

/// Runs the converter to its end. Its exit code does not count, the file that it made does. Returns
/// nothing, or what is wrong when it is not there or cannot be started. Ctrl-C takes the page away,
/// by which vellum knows that it is cancelled; a converter that goes on all the same is ended.
/// Throws a CommandError then.
std::string runConverter(const Conversion& conversion);

}  // namespace cli
