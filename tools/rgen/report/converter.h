// Runs the pdf converter "vellum", as the library would, on a page that rgen has written.
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
    /// Receives the output of the converter.
    std::string said;
};

/// Runs the converter to its end. The caller checks the output file; the exit code is ignored.
/// Returns an empty text, or why the converter could not be started. Ctrl-C removes the page, which
/// tells vellum to cancel; a converter that does not end is killed. Throws a CommandError then.
std::string runConverter(const Conversion& conversion);

}  // namespace cli
