// "C:\x" and "file:///C:/x", "\\server\x" and "file://server/x", "/x" and "file:///x".
//
// SPDX-License-Identifier: MIT
#include "page/file_url.h"

#include <algorithm>
#include <string_view>

#include "base/ascii.h"
#include "process/this_process.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view filePrefix = "file://";

std::string percentEncoded(const std::string& text) {
    constexpr std::string_view plain = "-._~/:!$'()*+,;=@";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (isLetter(letter) || isDigit(letter) || plain.find(letter) != std::string_view::npos) {
            encoded += letter;
        } else {
            encoded += {'%', digits[byte >> 4U], digits[byte & 0x0FU]};
        }
    }
    return encoded;
}

int hexValue(char letter) {
    if (isDigit(letter)) return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : -1;
}

std::string percentDecoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexValue(text[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(text[i + 2]) : -1;
        decoded += low >= 0 ? static_cast<char>(high * 16 + low) : text[i];
        if (low >= 0) i += 2;
    }
    return decoded;
}

/// Does it start with a URL scheme? A single letter before the colon is a drive.
bool hasScheme(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || colon < 2 || !isLetter(text[0])) return false;
    for (std::size_t i = 1; i < colon; ++i) {
        const char letter = text[i];
        if (!isLetter(letter) && !isDigit(letter) && letter != '+' && letter != '-' &&
            letter != '.') {
            return false;
        }
    }
    return true;
}

/// The path of a "file:" URL.
fs::path filePath(const std::string& url) {
    std::string text = percentDecoded(url.substr(filePrefix.size()));
    const bool hasDrive = text.size() > 2 && text[0] == '/' && text[2] == ':';
    const bool hasHost = !text.empty() && text[0] != '/';
    if (hasDrive) text.erase(0, 1);
    return fs::u8path(hasHost ? "//" + text : text);
}

}  // namespace

std::string fileUrl(const fs::path& path) {
    std::string text = path.u8string();
    const bool isWindows = fs::path::preferred_separator == '\\';
    // Not generic_u8string: it merges the two slashes before a server.
    if (isWindows) std::replace(text.begin(), text.end(), '\\', '/');
    // Windows paths with the prefix for long names.
    if (isWindows && text.compare(0, 8, "//?/UNC/") == 0) text.erase(2, 6);
    if (isWindows && text.compare(0, 4, "//?/") == 0) text.erase(0, 4);
    if (isWindows && text.compare(0, 2, "//") == 0) return "file:" + percentEncoded(text);
    const bool hasSlash = !text.empty() && text[0] == '/';
    return std::string(filePrefix) + (hasSlash ? "" : "/") + percentEncoded(text);
}

std::string baseUrl(const std::string& base, const fs::path& page) {
    if (hasScheme(base)) return base;
    const fs::path folder = base.empty() ? tools::absolutePath(page).parent_path()
                                         : tools::absolutePath(fs::u8path(base));
    std::string url = fileUrl(folder);
    if (url.back() != '/') url += '/';
    return url;
}

std::string resolvedUrl(const std::string& link, const std::string& base) {
    if (hasScheme(link)) return link;
    const std::size_t scheme = base.find(':') + 1;
    if (link.compare(0, 2, "//") == 0) return base.substr(0, scheme) + link;
    const bool hasHost = base.compare(scheme, 2, "//") == 0;
    const std::size_t path = hasHost ? base.find('/', scheme + 2) : scheme;
    if (!link.empty() && link[0] == '/') return base.substr(0, path) + link;
    return base.substr(0, base.rfind('/') + 1) + link;
}

std::optional<fs::path> linkedFile(const std::string& link, const std::string& base) {
    const std::string path = link.substr(0, link.find_first_of("?#"));
    if (path.empty()) return std::nullopt;
    if (hasScheme(path)) {
        // Never looks on another host.
        const bool isHere = path.compare(0, filePrefix.size() + 1, "file:///") == 0;
        return isHere ? std::optional(filePath(path)) : std::nullopt;
    }
    const bool isOnHost = path.compare(0, 2, "//") == 0;
    if (isOnHost || base.compare(0, filePrefix.size(), filePrefix) != 0) return std::nullopt;
    const fs::path folder = filePath(base.substr(0, base.rfind('/') + 1));
    const fs::path file = folder / fs::u8path(percentDecoded(path));
    // lexically_normal would remove the server of a network path.
    const bool isOnNetwork = base.compare(0, 8, "file:///") != 0;
    return isOnNetwork ? file : file.lexically_normal();
}

}  // namespace vellum
