// Puts a template and the parts that it includes into one file, since the library reads a template
// from one file only.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "templates/finding.h"

namespace cli {

struct BundleRequest {
    /// The template with xsl:include elements.
    std::string source;
    /// The bundled file; "-" is standard output.
    std::string output;
    /// Where parts are looked for that are not next to the file that includes them.
    std::vector<std::string> partFolders;
};

struct Bundle {
    /// Empty when there is an error.
    std::string text;
    /// The source, then the parts in the order of their first xsl:include.
    std::vector<std::string> files;
    Findings findings;
};

/// Throws a CommandError when the source cannot be read.
Bundle makeBundle(const BundleRequest& request);

}  // namespace cli
