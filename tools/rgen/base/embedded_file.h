// A file that rgen carries along; cmake/embed_files.cmake makes lists of them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace cli {

struct EmbeddedFile {
    std::string_view path;
    std::string_view content;
};

}  // namespace cli
