// The names of the properties that a key finds.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// An xsl:key of the template.
struct KeyDeclaration {
    std::string match;
    std::string use;
};

/// By their names; a template may declare a key more than once.
using KeyDeclarations = std::multimap<std::string, KeyDeclaration>;

struct KeyTarget {
    enum class Kind { Name, List, Prefix };
    Kind kind = Kind::Name;
    /// "Device", "Err.N.Address", "Err.".
    std::string name;
};

/// Where the number of an entry is in the name of a list, "Err.N.Address"; npos when there is none.
std::size_t entryPlace(const std::string& list);

/// What key(`key`, `text`) finds. Nothing when the key is not about the names of properties, or in
/// a way that is not known.
std::optional<KeyTarget> targetOfKey(const KeyDeclarations& keys, const std::string& key,
                                     const std::string& text);

/// Whether one of the properties with these names is found by key(`key`, `text`); true when that
/// cannot be said.
bool findsAny(const KeyDeclarations& keys, const std::string& key, const std::string& text,
              const std::vector<std::string>& names);

}  // namespace cli
