// Opening a page on Linux, where every open file can be deleted.
//
// SPDX-License-Identifier: MIT
#include "page/page_file.h"

namespace vellum {

std::FILE* openDeletable(const std::filesystem::path& path) {
    return std::fopen(path.c_str(), "rbe");
}

}  // namespace vellum
