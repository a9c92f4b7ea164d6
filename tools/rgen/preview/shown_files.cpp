// SPDX-License-Identifier: MIT
#include "preview/shown_files.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/text_functions.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

struct Kind {
    const char* ending;
    const char* contentType;
};

constexpr Kind kinds[] = {
    {".css", "text/css"},      {".gif", "image/gif"},    {".jpeg", "image/jpeg"},
    {".jpg", "image/jpeg"},    {".otf", "font/otf"},     {".png", "image/png"},
    {".svg", "image/svg+xml"}, {".ttf", "font/ttf"},     {".webp", "image/webp"},
    {".woff", "font/woff"},    {".woff2", "font/woff2"},
};

const char* contentTypeOf(const fs::path& path) {
    const std::string ending = lowerCase(path.extension().u8string());
    const auto* const found =
        std::find_if(std::begin(kinds), std::end(kinds),
                     [&ending](const Kind& kind) { return kind.ending == ending; });
    return found == std::end(kinds) ? nullptr : found->contentType;
}

/// Windows opens a device by these names, whatever the folder and the ending.
bool isDeviceName(const std::string& part) {
    static const std::set<std::string> devices = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    const std::string name = lowerCase(part.substr(0, part.find('.')));
    const bool isNumbered = name.size() == 4 && name[3] >= '0' && name[3] <= '9' &&
                            (name.compare(0, 3, "com") == 0 || name.compare(0, 3, "lpt") == 0);
    return isNumbered || devices.count(trimmed(name)) > 0;
}

/// Plain names only: no "..", no drive, no stream of a file, no separator of the other system.
bool isPlainLink(const std::string& link) {
    const std::vector<std::string> parts = split(link, '/');
    return !parts.empty() && std::none_of(parts.begin(), parts.end(), [](const std::string& part) {
        constexpr std::size_t shortest = 0x20;
        const bool hasControl = std::any_of(part.begin(), part.end(), [](char letter) {
            return static_cast<unsigned char>(letter) < shortest;
        });
        return part.empty() || part == "." || part == ".." || hasControl ||
               part.find_first_of("\\:*?\"<>|") != std::string::npos || isDeviceName(part);
    });
}

bool isBelow(const fs::path& folder, const fs::path& path) {
    const auto ends = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return ends.first == folder.end();
}

}  // namespace

std::optional<ShownFile> findShownFile(const std::vector<std::string>& folders,
                                       const std::string& link) {
    if (!isPlainLink(link)) return {};
    for (const std::string& folder : folders) {
        std::error_code failure;
        const fs::path root = fs::canonical(fs::u8path(folder), failure);
        if (failure) continue;
        const fs::path path = fs::canonical(root / fs::u8path(link), failure);
        if (failure || !isBelow(root, path) || !fs::is_regular_file(path, failure)) continue;
        const char* const type = contentTypeOf(path);
        if (type != nullptr) return ShownFile{path.u8string(), type};
    }
    return {};
}

}  // namespace cli
