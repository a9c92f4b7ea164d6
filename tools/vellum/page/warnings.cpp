// Engines report neither missing files nor missing characters.
//
// SPDX-License-Identifier: MIT
#include "page/warnings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/message.h"
#include "page/file_url.h"
#include "process/this_process.h"
#include "text/utf8.h"

namespace vellum {
namespace {

/// The non-ASCII characters of a text in UTF-8.
std::set<char32_t> charactersOf(const std::string& text, Checkpoint& checkpoint) {
    std::vector<bool> isThere(0x110000);
    const std::string_view view = text;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = std::max<std::size_t>(1, tools::sequenceLength(view.substr(at)));
        isThere[tools::codePoint(view.substr(at, length))] = true;
        checkpoint.processed(length);
        at += length;
    }
    std::set<char32_t> characters;
    for (char32_t character = 0x80; character < isThere.size(); ++character) {
        if (isThere[character]) characters.insert(characters.end(), character);
    }
    return characters;
}

/// Returns false for spaces, invisible formatting characters and the replacement character.
bool needsFont(char32_t character) {
    return character > 0xA0 && character != 0xAD && character != 0x2028 && character != 0x2029 &&
           !(character >= 0x2000 && character <= 0x200F) &&
           !(character >= 0x202A && character <= 0x202F) &&
           !(character >= 0x205F && character <= 0x206F) &&
           !(character >= 0xFE00 && character <= 0xFE0F) && character != 0xFEFF &&
           character != 0xFFFD;
}

/// Removes the characters of a font, which fc-list prints like "20-7e a0-17f 192".
void removeCovered(const std::string& line, std::set<char32_t>& characters) {
    std::istringstream ranges(line);
    for (std::string range; ranges >> range && !characters.empty();) {
        char* end = nullptr;
        const unsigned long first = std::strtoul(range.c_str(), &end, 16);
        const unsigned long last = *end == '-' ? std::strtoul(end + 1, nullptr, 16) : first;
        characters.erase(characters.lower_bound(static_cast<char32_t>(first)),
                         characters.upper_bound(static_cast<char32_t>(last)));
    }
}

std::string characterList(const std::set<char32_t>& characters) {
    constexpr std::size_t shown = 5;
    std::string list;
    std::size_t number = 0;
    for (const char32_t character : characters) {
        char text[16] = {};
        std::snprintf(text, sizeof text, "U+%04lX", static_cast<unsigned long>(character));
        if (number++ == shown) return list + ", ...";
        list += (list.empty() ? "" : ", ") + std::string(text);
    }
    return list;
}

}  // namespace

void warnOfMissingFiles(const StagedPage& page, Checkpoint& checkpoint) {
    constexpr std::size_t mostWarnings = 20;
    // No file has a longer path. Testing very many long links would take unlimited time.
    constexpr std::size_t longestLink = 4000;
    std::size_t warnings = 0;
    for (const std::string& link : page.shownFiles) {
        checkpoint.check();
        if (link.size() + page.base.size() > longestLink) continue;
        const auto file = linkedFile(link, page.base);
        std::error_code ignored;
        if (!file || std::filesystem::exists(*file, ignored)) continue;
        if (warnings++ == mostWarnings) return printWarning("more files do not exist");
        printWarning("\"" + link + "\" does not exist (looked for \"" + file->u8string() + "\")");
    }
}

FontCheck::FontCheck(const StagedPage& page, const std::filesystem::path& folder,
                     Checkpoint& checkpoint)
    : characters_(charactersOf(page.content, checkpoint)), list_(folder / "fonts.txt") {
    for (auto each = characters_.begin(); each != characters_.end();)
        each = needsFont(*each) ? std::next(each) : characters_.erase(each);
    const auto program = tools::findProgram("fc-list");
    if (characters_.empty() || !program) return;
    tools::ProcessRequest request;
    request.program = *program;
    request.arguments = {":", "--format=%{charset}\\n"};
    request.outputFile = list_;
    try {
        process_ = std::make_unique<tools::ChildProcess>(request);
    } catch (const std::system_error&) {
        // Then there is no such warning.
    }
}

void FontCheck::finish(const std::function<void()>& whileWaiting) {
    if (!process_) return;
    constexpr std::chrono::milliseconds slice{50};
    std::optional<int> code;
    for (int slices = 0; slices < 40 && !code; ++slices) {
        whileWaiting();
        code = process_->wait(slice);
    }
    if (code != 0) return;
    std::ifstream list(list_, std::ios::binary);
    bool hasFont = false;
    for (std::string line; std::getline(list, line); hasFont = true)
        removeCovered(line, characters_);
    if (hasFont && !characters_.empty())
        printWarning("no installed font has " + characterList(characters_));
}

}  // namespace vellum
