// SPDX-License-Identifier: MIT
#include "data/value_names.h"

#include "base/command_error.h"
#include "base/console.h"
#include "values/value.h"

namespace cli {
namespace {

constexpr std::size_t mostLevels = 32;

std::string subject(const std::string& name) {
    return "\"" + shortened(name) + "\": ";
}

}  // namespace

void ValueNames::setKey(const std::string& key) {
    const NameAndHint parts = haveHints_ ? splitNameAndHint(key) : NameAndHint{key, {}};
    if (parts.name.empty()) throw usageError("a name is empty", "name every value");
    name_ = levels_.back().prefix + parts.name;
    hint_ = parts.hint;
}

void ValueNames::beginEntry() {
    Level& level = levels_.back();
    if (!level.isList) return;
    name_ = level.prefix + std::to_string(++level.entries);
    hint_ = level.hint;
}

std::string ValueNames::nameAndHint() const {
    return hint_.empty() ? name_ : name_ + ":" + hint_;
}

void ValueNames::openObject() {
    open(/*isList=*/false);
}

void ValueNames::openList() {
    open(/*isList=*/true);
}

void ValueNames::open(bool isList) {
    if (levels_.empty()) {
        levels_.push_back({isList, {}, {}, 0});
        return;
    }
    beginEntry();
    if (levels_.size() == mostLevels) {
        throw usageError(subject(name_) + "more than 32 levels of objects and lists",
                         "write flat names: \"A.1.B\"");
    }
    if (!isList && !hint_.empty()) {
        throw usageError(subject(name_) + "an object takes no hint",
                         "write \"" + hint_ + "\" after the names of its members");
    }
    levels_.push_back({isList, name_ + ".", hint_, 0});
}

void ValueNames::close() {
    levels_.pop_back();
}

}  // namespace cli
