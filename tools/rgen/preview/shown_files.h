// The files that a report shows through relative links: images, fonts, style sheets.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cli {

struct ShownFile {
    std::string path;
    std::string contentType;
};

/// The file that a relative link means, searched in the folders in their order. Nothing when there
/// is none, when it is not of a kind that reports show, or when it is not below its folder, also by
/// a symbolic link.
std::optional<ShownFile> findShownFile(const std::vector<std::string>& folders,
                                       const std::string& link);

}  // namespace cli
