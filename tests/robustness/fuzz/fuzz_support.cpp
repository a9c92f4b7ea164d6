// Messages, the work folder and the input reader.
//
// SPDX-License-Identifier: MIT
#include "fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace rgen_fuzz {
namespace {

namespace fs = std::filesystem;

std::string hexNumber(RgenStatus status) {
    char text[11] = {};
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(status));
    return text;
}

// Everything but the visible ASCII characters as numbers.
std::string visible(const std::string& text) {
    std::string result;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        char number[5] = {};
        std::snprintf(number, sizeof number, "\\x%02X", code);
        result += code >= 0x20 && code < 0x7F && code != '\\' ? std::string(1, character) : number;
    }
    return result;
}

class WorkFolder {
public:
    WorkFolder() : before_(fs::current_path()) {
        std::random_device random;
        fs::path folder;
        do {
            folder = fs::temp_directory_path() / ("rgen_fuzz_" + std::to_string(random()));
        } while (!fs::create_directory(folder));
        path_ = folder.u8string();
        fs::current_path(folder);
    }
    ~WorkFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
        fs::remove_all(fs::u8path(path_), ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::string& path() const { return path_; }

private:
    fs::path before_;
    std::string path_;
};

}  // namespace

void fail(const char* message, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", message, visible(text).c_str());
    std::fflush(stderr);
    std::abort();
}

void requireOneOf(RgenStatus status, std::initializer_list<RgenStatus> allowed,
                  const char* operation) {
    const bool found = std::find(allowed.begin(), allowed.end(), status) != allowed.end();
    require(found, operation, "returned " + hexNumber(status));
}

const std::string& workFolder() {
    static const WorkFolder folder;
    return folder.path();
}

std::string workPath(const std::string& relative) {
    return workFolder() + static_cast<char>(fs::path::preferred_separator) + relative;
}

void writeWorkFile(const std::string& relative, const std::string& bytes) {
    const fs::path path = fs::u8path(workPath(relative));
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    if (!stream) {
        fs::create_directories(path.parent_path());
        stream.open(path, std::ios::binary | std::ios::trunc);
    }
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    require(!stream.fail(), "a work file cannot be written", relative);
}

std::string readWorkFile(const std::string& relative) {
    std::ifstream stream(fs::u8path(workPath(relative)), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void createWorkFolder(const std::string& relative) {
    fs::create_directories(fs::u8path(workPath(relative)));
}

void removeFromWork(const std::string& relative) {
    std::error_code ignored;
    fs::remove_all(fs::u8path(workPath(relative)), ignored);
}

// Reads the text character by character, by the table of the well-formed sequences.
bool isUtf8(const std::string& text) {
    std::size_t i = 0;
    const auto next = [&](unsigned low, unsigned high) {
        if (i >= text.size()) return false;
        const auto code = static_cast<unsigned char>(text[i++]);
        return code >= low && code <= high;
    };
    while (i < text.size()) {
        const unsigned lead = static_cast<unsigned char>(text[i++]);
        bool fits = lead <= 0x7F;
        if (lead >= 0xC2 && lead <= 0xDF) fits = next(0x80, 0xBF);
        if (lead >= 0xE0 && lead <= 0xEF) {
            fits = next(lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) && next(0x80, 0xBF);
        }
        if (lead >= 0xF0 && lead <= 0xF4) {
            fits = next(lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF) &&
                   next(0x80, 0xBF) && next(0x80, 0xBF);
        }
        if (!fits) return false;
    }
    return true;
}

std::uint8_t InputReader::byte() {
    if (atEnd()) return 0;
    return static_cast<std::uint8_t>(input_[position_++]);
}

std::uint64_t InputReader::number() {
    std::uint64_t result = 0;
    for (std::size_t size = choice(9); size > 0; --size)
        result = result << 8U | byte();
    return result;
}

std::string InputReader::bytes() {
    const std::size_t length = std::min<std::size_t>(byte(), input_.size() - position_);
    position_ += length;
    return input_.substr(position_ - length, length);
}

std::string InputReader::text() {
    const std::string all = bytes();
    return all.substr(0, all.find('\0'));
}

}  // namespace rgen_fuzz
