// Translations from gettext PO files.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace cli {

class Console;

class PoCatalogue {
public:
    /// Reads a PO file. Throws a CommandError with line and column, also for a translation with
    /// characters that XML does not allow. Unless `raw` is set, "&", "<", ">" and "'" in a
    /// translation are escaped if the original does not contain them; "]]>" and an "&" that does
    /// not begin a reference are always escaped. A translation with markup that is not well-formed
    /// is an error, because the library would drop parts of the template; with `raw` it is noted.
    PoCatalogue(const std::string& path, bool raw, Console& console);

    const std::string& path() const { return path_; }

    /// The translation, or null.
    const std::string* find(const std::string& text) const;

private:
    void addRaw(const std::string& original, const std::string& translation,
                const std::string& place);
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
