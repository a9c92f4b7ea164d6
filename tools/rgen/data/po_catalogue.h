// Translations from gettext PO files.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "data/po_file.h"
#include "strata_repgenlib/rgen.h"

namespace cli {

class Console;

struct CatalogueDamage {
    /// In bytes from the start of the file.
    std::size_t offset = 0;
    std::string what;
    std::string advice;
};

struct CatalogueFile {
    std::string path;
    std::string content;
    PoFile po;
    /// Why the file cannot be read as a catalogue.
    std::optional<CatalogueDamage> damage;

    /// Throws a CommandError with `hint` when the file cannot be read.
    static CatalogueFile load(const std::string& path, const std::string& hint);

    /// The same; throws a CommandError with line and column when it is damaged.
    static CatalogueFile read(const std::string& path, const std::string& hint);
};

/// Why a report cannot use the entry's translation, or a header's encoding; empty when it can.
std::string mistakeInEntry(const PoEntry& entry);

class PoCatalogue {
public:
    /// Reads a PO file without its obsolete and fuzzy entries. Throws a CommandError with line and
    /// column, also for a translation with characters that XML does not allow. Unless `raw` is set,
    /// "&", "<", ">" and "'" in a translation are escaped if the original does not contain them;
    /// "]]>" and an "&" that does not begin a reference are always escaped. A translation with
    /// markup that is not well-formed is an error, because the library would drop parts of the
    /// template; with `raw` it is noted.
    PoCatalogue(const std::string& path, bool raw, Console& console);

    const std::string& path() const { return path_; }

    /// The translation, or null.
    const std::string* find(const std::string& text) const;

private:
    void addRaw(const PoEntry& entry, const CatalogueFile& file);
    void noteMistakes(Console& console) const;

    std::string path_;
    std::size_t mistakes_ = 0;
    std::string firstMistake_;
    std::unordered_map<std::string, std::string> texts_;
};

/// The translate callback of the library; records the texts without a translation.
class Translator {
public:
    explicit Translator(const PoCatalogue& catalogue) : catalogue_(catalogue) {}

    /// `context` is a Translator.
    static const char* RGEN_CALL translate(const char* text, void* context);

    const std::vector<std::string>& untranslated() const { return untranslated_; }

private:
    const PoCatalogue& catalogue_;
    std::vector<std::string> untranslated_;
    std::set<std::string> seen_;
};

}  // namespace cli
