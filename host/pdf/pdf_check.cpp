// The converter leaves "<path>.error.txt" when it fails. The pdf may then be a page about that.
//
// SPDX-License-Identifier: MIT
#include "pdf/pdf_check.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string_view>

#include "error/failures.h"
#include "platform/host_platform.h"
#include "text/character_check.h"

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

bool isPipeOrDevice(const boost::filesystem::path& path) {
    boost::system::error_code ignored;
    return boost::filesystem::is_other(boost::filesystem::status(path, ignored));
}

/// Reads parts of a file. Not a file stream: those take no wide path on Windows.
class FileReader {
public:
    /// A pipe or device is not opened, since that could wait for ever.
    explicit FileReader(const std::string& path) {
        const boost::filesystem::path file = platform::nativePath(path);
        if (!isPipeOrDevice(file)) file_.open(file.c_str(), std::ios::in | std::ios::binary);
    }

    bool isOpen() const { return file_.is_open(); }

    /// Up to `length` bytes from position `start`. What cannot be read (a folder) has none.
    std::string part(std::streamoff start, std::size_t length) {
        std::string bytes(length, '\0');
        std::streamsize count = 0;
        try {
            file_.pubseekpos(start);
            count = file_.sgetn(bytes.data(), static_cast<std::streamsize>(length));
        } catch (const std::ios_base::failure&) {
            count = 0;
        }
        bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, count)));
        return bytes;
    }

    /// Up to `length` bytes at the end.
    std::string tail(std::size_t length) {
        const std::streamoff size = file_.pubseekoff(0, std::ios::end);
        return part(std::max<std::streamoff>(0, size - static_cast<std::streamoff>(length)),
                    length);
    }

private:
    std::filebuf file_;
};

bool isWholePdf(FileReader& file) {
    const std::string start = file.part(0, 5);
    const std::string end = file.tail(searchedTail);
    return start == "%PDF-" && end.find("%%EOF") != std::string::npos;
}

/// The converter's message; nothing if it left none.
std::optional<std::string> converterMessage(const std::string& path) {
    FileReader note(errorPath(path));
    if (!note.isOpen()) return std::nullopt;
    std::string text = note.part(0, longestReason);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

}  // namespace

bool isConverted(const RgenCInputParams& input) {
    return input.outputMode == RGEN_OUTPUT_FILE && input.skipExternalConversion == 0 &&
           textOf(input.outputFormat) == "pdf";
}

void prepareConversion(const RgenCInputParams& input, int argument) {
    const std::string path(textOf(input.outputPath));
    if (path.find('"') != std::string::npos ||
        textOf(input.converterBaseArg).find('"') != std::string_view::npos) {
        throw ArgumentError("the path or base of a pdf contains a double quote", argument,
                            ArgumentError::noEntry);
    }
    // The library reports a path that is not UTF-8.
    if (!isUtf8(path)) return;
    boost::system::error_code ignored;
    const boost::filesystem::path note = platform::nativePath(errorPath(path));
    if (boost::filesystem::is_regular_file(note, ignored)) {
        boost::filesystem::remove(note, ignored);
    }
}

void verifyPdf(const std::string& path) {
    const std::optional<std::string> message = converterMessage(path);
    std::string reason;
    if (message && !message->empty()) reason = ": " + *message;
    FileReader file(path);
    if (!file.isOpen())
        throw ConversionFailure(path, path + ": the converter made no file" + reason);
    if (!isWholePdf(file)) {
        throw ConversionFailure(path, path + ": the converter's file is not a whole pdf" + reason);
    }
    if (message) throw ConversionFailure(path, path + ": the converter failed" + reason);
}

void verifyConversion(const RgenCInputParams& input) {
    verifyPdf(std::string(textOf(input.outputPath)));
}

}  // namespace rgenh
