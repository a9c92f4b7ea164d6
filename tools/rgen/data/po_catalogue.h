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

class Catalogue {
public:
    /// Reads a PO file. Throws a CommandError with line and column, also for a translation with
    /// characters that XML cannot hold. Unless `raw` is set, "&", "<", ">" and "'" in a translation
    /// are escaped, each unless the original has it, too; "]]>" and an "&" that starts no reference
    /// are escaped even then. Throws one, too, for a translation with markup that is not
    /// well-formed: the library would take what it can of the template. With `raw` it is noted.
    Catalogue(const std::string& path, bool raw, Console& console);

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

/// What the library calls for each marked text; also notes which had no translation.
class Translator {
public:
    explicit Translator(const Catalogue& catalogue) : catalogue_(catalogue) {}

    /// The callback; its context is a Translator.
    static const char* RGEN_CALL translate(const char* text, void* context);

    const std::vector<std::string>& untranslated() const { return untranslated_; }

private:
    const Catalogue& catalogue_;
    std::vector<std::string> untranslated_;
    std::set<std::string> seen_;
};

}  // namespace cli
