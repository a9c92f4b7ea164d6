// gettext PO files as lists of entries: reading with the place of each mistake, and writing.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cli {

/// A place where a PO file breaks the rules of its format.
class PoMistake : public std::runtime_error {
public:
    PoMistake(std::size_t at, const std::string& message)
        : std::runtime_error(message), offset(at) {}

    /// In bytes from the start of the file.
    std::size_t offset;
};

struct PoEntry {
    /// Lines of a translator, from "#" on.
    std::vector<std::string> comments;
    /// For translators, from the templates ("#."); without that mark.
    std::vector<std::string> extracted;
    /// "templates/html/health.xsl:12".
    std::vector<std::string> references;
    std::vector<std::string> flags;
    /// Lines about the text that a fuzzy translation belongs to, without "#|".
    std::vector<std::string> previous;
    std::optional<std::string> context;
    std::string id;
    std::optional<std::string> plural;
    /// More than one for an entry with plural forms; empty when there is no msgstr.
    std::vector<std::string> translations;
    /// Set for entries in comments ("#~"), which no template has any more.
    bool isObsolete = false;
    /// Where the msgid and the msgstr begin in the file, in bytes.
    std::size_t idOffset = 0;
    std::size_t translationOffset = 0;
    /// Where each byte of the first translation is written.
    std::vector<std::size_t> translationPlaces;

    bool isHeader() const { return id.empty() && !context && !isObsolete; }
    bool isFuzzy() const;
    bool hasTranslation() const { return !translations.empty() && !translations[0].empty(); }
    /// Tells whether a report uses the translation.
    bool isUsable() const { return !isObsolete && !isFuzzy() && hasTranslation(); }
    /// Adds or removes the flag.
    void setFuzzy(bool fuzzy);
};

struct PoFile {
    std::vector<PoEntry> entries;
    /// Comments after the last entry.
    std::vector<std::string> lastComments;

    /// The entry with the properties of the file, or null.
    const PoEntry* header() const;
};

/// Reads the content of a PO file in UTF-8. Throws a PoMistake. Mistakes in obsolete entries leave
/// the entry out.
PoFile readPo(const std::string& content);

/// The file in the form of "msgmerge --no-wrap", with one line for each reference.
std::string poText(const PoFile& file);

}  // namespace cli
