// Reads only the two ends of the file, however large it is.
//
// SPDX-License-Identifier: MIT
#include "pdf/pdf_file.h"

#include <algorithm>
#include <fstream>
#include <string>

namespace tools {
namespace {

std::string readPart(std::ifstream& file, std::streamoff start, std::size_t length) {
    std::string part(length, '\0');
    file.seekg(start);
    file.read(part.data(), static_cast<std::streamsize>(length));
    part.resize(static_cast<std::size_t>(file.gcount()));
    return part;
}

}  // namespace

bool isWholePdf(const std::filesystem::path& path) {
    constexpr std::size_t searched = 1024;
    const std::string start = "%PDF-";
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) return false;
    const std::streamoff size = file.tellg();
    if (readPart(file, 0, start.size()) != start) return false;
    const std::streamoff tail = std::max<std::streamoff>(0, size - std::streamoff{searched});
    return readPart(file, tail, searched).find("%%EOF") != std::string::npos;
}

}  // namespace tools
