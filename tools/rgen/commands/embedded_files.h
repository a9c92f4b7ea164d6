// Files that rgen carries along. The definitions are generated from the files themselves.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace cli {

struct EmbeddedFile {
    /// Where "rgen init" puts it, counted from the new folder.
    std::string_view path;
    std::string_view content;
};

/// The sample report type for disk-imaging acquisitions.
const std::vector<EmbeddedFile>& acquisitionSample();

}  // namespace cli
