// Only the library knows the texts of all values: hints, dates, persistent data. So it makes a
// report of them in a data directory of its own, whose template lists names and texts.
//
// SPDX-License-Identifier: MIT
#include "templates/data_document.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "base/input_file.h"
#include "base/interruption.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "base/xml_text.h"
#include "library/library_calls.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// Precede a name and a text. No value contains them unless it was made for that.
constexpr std::string_view beforeName = "[name c41f0b7a9d2e4c5f]";
constexpr std::string_view beforeText = "[text 83d6e0a55b174f92]";

constexpr const char* typeGuid = "2f0c7b1e-6a54-4d39-9c8b-51d7e3a0f264";

std::string listingTemplate() {
    return "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
           "<xsl:output method=\"text\" encoding=\"UTF-8\"/>"
           "<xsl:template match=\"/\"><xsl:for-each select=\"data/properties/property\">"
           "<xsl:value-of select=\"concat('" +
           std::string(beforeName) + "', @name, '" + std::string(beforeText) +
           "', .)\"/></xsl:for-each></xsl:template></xsl:stylesheet>";
}

std::string configuration() {
    return std::string("<config><reportTypes><type guid=\"") + typeGuid +
           "\"><persistDataFile>persistent.xml</persistDataFile>"
           "<reportTypeFile>listing.xsl</reportTypeFile></type></reportTypes></config>";
}

/// A data directory with the persistent data of `type`.
void makeListingDirectory(const DataDirectory& listing, const DataDirectory& directory,
                          const ReportType& type) {
    fs::create_directories(fs::u8path(listing.path("templates/txt")));
    writeNewFile(listing.configPath(), configuration());
    writeNewFile(listing.path("templates/txt/listing.xsl"), listingTemplate());
    const std::string persistent = directory.path(type.persistDataFile);
    if (type.persistDataFile.empty() || !exists(persistent) || isSpecialFile(persistent)) return;
    writeNewFile(listing.path("persistent.xml"),
                 readInputFile(persistent, "check the data directory"));
}

/// Names and texts as the listing template writes them.
std::string listed(const DataDirectory& listing, const ReportInput& input) {
    repgen::Generator generator;
    setDataDir(generator, listing.folder);
    const repgen::Request request{repgen::Guid(typeGuid), "txt", libraryValues(input.values),
                                  libraryTexts(input.pairs)};
    try {
        const repgen::Bytes bytes = generator.generateBytes(request);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    } catch (const repgen::StatusError& error) {
        // Without any value there is no text, which the library calls a failure.
        if (error.status() == RGEN_E_XSLT_RESULT) return {};
        throw statusFailure("the values", error.status(),
                            "give values with --data, --set or --pair");
    }
}

bool isXmlText(const std::string& text) {
    const auto isControl = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    };
    const bool hasNonCharacter = text.find("\xEF\xBF\xBE") != std::string::npos ||
                                 text.find("\xEF\xBF\xBF") != std::string::npos;
    return isPlainUtf8(text) && !hasNonCharacter &&
           std::none_of(text.begin(), text.end(), isControl);
}

/// Text as content or in double quotes; "\n" and the like as references, which attributes keep.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : isXmlText(text) ? text : withInvalidCharactersReplaced(text)) {
        if (std::string_view("<>&\"\r\n\t").find(character) == std::string_view::npos) {
            result += character;
        } else {
            result += "&#" + std::to_string(static_cast<int>(character)) + ";";
        }
    }
    return result;
}

std::string documentOf(const std::string& listing) {
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><data><properties>";
    std::size_t at = listing.find(beforeName);
    while (at != std::string::npos) {
        const std::size_t name = at + beforeName.size();
        const std::size_t nameEnd = listing.find(beforeText, name);
        if (nameEnd == std::string::npos) break;
        const std::size_t text = nameEnd + beforeText.size();
        at = listing.find(beforeName, text);
        const std::size_t end = at == std::string::npos ? listing.size() : at;
        document += "<property name=\"" + escaped(listing.substr(name, nameEnd - name)) + "\">" +
                    escaped(listing.substr(text, end - text)) + "</property>";
    }
    return document + "</properties></data>";
}

}  // namespace

std::string dataDocument(const DataDirectory& directory, const ReportType& type,
                         const ReportInput& input) {
    const TemporaryFolder folder;
    const DataDirectory listing{folder.file("listing")};
    try {
        makeListingDirectory(listing, directory, type);
        return documentOf(listed(listing, input));
    } catch (const std::system_error& error) {
        throw CommandError(
            ExitCode::Environment,
            std::string("cannot use the temporary folder: ") + error.code().message(),
            "check that it may be written and has room");
    }
}

}  // namespace cli
