// The flat names of nested data (docs/values.md): "Err.2.Address".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

/// Follows a reader through objects and lists. Throws CommandErrors that say what is wrong, but not
/// where.
class ValueNames {
public:
    /// With `haveHints` a key is "NAME:HINT" or "NAME", otherwise all of it is the name.
    explicit ValueNames(bool haveHints) : haveHints_(haveHints) {}

    /// The key of the next entry of an object.
    void setKey(const std::string& key);

    /// To be called for each entry that is not an object or a list.
    void beginEntry();
    /// The name of that entry, with its hint if it has one.
    std::string nameAndHint() const;
    std::string name() const { return name_; }

    /// The outermost object, or an entry that is an object or a list.
    void openObject();
    void openList();
    void close();

    bool isOpen() const { return !levels_.empty(); }

private:
    struct Level {
        bool isList;
        /// The begin of the names of its entries: "Err.2.".
        std::string prefix;
        /// Of the entries of a list.
        std::string hint;
        std::size_t entries;
    };

    void open(bool isList);

    bool haveHints_;
    std::vector<Level> levels_;
    std::string name_;
    std::string hint_;
};

}  // namespace cli
