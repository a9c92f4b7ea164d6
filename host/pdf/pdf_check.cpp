// The converter leaves "<path>.error.txt" when it fails. The pdf may then be a page about that.
//
// SPDX-License-Identifier: MIT
#include "pdf/pdf_check.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "error/failures.h"

namespace rgenh {
namespace {

constexpr std::size_t longestReason = 65536;
constexpr std::size_t searchedTail = 1024;

std::string_view textOf(const RgenAnsiString& record) {
    return record.data == nullptr ? std::string_view() : record.data;
}

std::string errorPath(const std::string& path) {
    return path + ".error.txt";
}

/// Reads up to `length` bytes of a file from position `start`.
std::string partOf(std::ifstream& file, std::streamoff start, std::size_t length) {
    std::string part(length, '\0');
    file.clear();
    file.seekg(start);
    file.read(part.data(), static_cast<std::streamsize>(length));
    part.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, file.gcount())));
    return part;
}

bool isWholePdf(std::ifstream& file) {
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    const std::streamoff tail = std::max<std::streamoff>(0, size - std::streamoff{searchedTail});
    return partOf(file, 0, 5) == "%PDF-" &&
           partOf(file, tail, searchedTail).find("%%EOF") != std::string::npos;
}

/// The converter's message; nothing if it left none.
std::optional<std::string> converterMessage(const std::string& path) {
    std::ifstream note(std::filesystem::u8path(errorPath(path)), std::ios::binary);
    if (!note) return std::nullopt;
    std::string text = partOf(note, 0, longestReason);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

}  // namespace

bool isConverted(const RgenCInputParams& input) {
    return input.outputMode == RGEN_OUTPUT_FILE && input.skipExternalConversion == 0 &&
           textOf(input.outputFormat) == "pdf";
}

void prepareConversion(const RgenCInputParams& input) {
    const std::string path(textOf(input.outputPath));
    if (path.find('"') != std::string::npos ||
        textOf(input.converterBaseArg).find('"') != std::string_view::npos) {
        throw ArgumentError("the path or base of a pdf contains a double quote");
    }
    try {
        std::error_code ignored;
        const std::filesystem::path note = std::filesystem::u8path(errorPath(path));
        if (std::filesystem::is_regular_file(note, ignored)) {
            std::filesystem::remove(note, ignored);
        }
    } catch (const std::system_error&) {
        // The path is not valid UTF-8, which the library reports.
    }
}

void verifyPdf(const std::string& path) {
    const std::optional<std::string> message = converterMessage(path);
    const std::string reason = message && !message->empty() ? ": " + *message : "";
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    if (!file) throw ConversionFailure(path, path + ": the converter made no file" + reason);
    if (!isWholePdf(file)) {
        throw ConversionFailure(path, path + ": the converter's file is not a whole pdf" + reason);
    }
    if (message) throw ConversionFailure(path, path + ": the converter failed" + reason);
}

}  // namespace rgenh
