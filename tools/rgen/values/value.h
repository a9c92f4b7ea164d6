// The values of a report as rgen collects them: named, typed, hinted, and with the place that they
// came from.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace cli {

class Console;

/// The library's enumerations as types of their own.
using ValueType = RgenVariantType;
using ValueHint = RgenHint;

struct Value {
    std::string name;
    /// Text, integer or bytes.
    ValueType type = RGEN_TYPE_STRING;
    ValueHint hint = RGEN_HINT_GENERIC;
    /// XML content as the library takes it: "&" is escaped already.
    std::string content;
    std::int64_t number = 0;
    std::vector<std::uint8_t> bytes;
    /// "--set", "--pair", "persistent data" or the path of a data file.
    std::string source;
};

/// Values by name; of two values of one name the later wins.
class ValueSet {
public:
    void add(Value value);
    /// As add, where the name is meant to be there already.
    void replace(Value value);
    /// Notes which names were added more than once.
    void noteRepeated(Console& console) const;
    const std::map<std::string, Value>& values() const { return values_; }
    bool empty() const { return values_.empty(); }
    std::size_t size() const { return values_.size(); }

private:
    std::map<std::string, Value> values_;
    std::set<std::string> repeated_;
};

/// The words of the command line and of JSON data files for types and hints.
std::vector<std::string> hintWords();

/// The word that rgen shows for a value's type and hint.
std::string hintWord(const Value& value);

/// How the texts of plain values become XML content, and where "@FILE" is looked for.
struct ValueReading {
    bool raw = false;
    std::string source;
    std::string folder = ".";
    /// When it is there, no such file is opened: the paths are put here, and the values lack bytes.
    std::vector<std::string>* filesNamed = nullptr;
};

/// Takes "NAME:HINT" apart and makes the value that `text` stands for. `defaultHint` counts without
/// one. Raises a CommandError whose text says what is wrong, without saying where.
Value readValue(const std::string& nameAndHint, const std::string& text,
                const std::string& defaultHint, const ValueReading& reading);

/// The name and hint in "NAME:HINT"; the hint is empty when there is none. Raises a CommandError
/// for an unknown hint.
struct NameAndHint {
    std::string name;
    std::string hint;
};
NameAndHint splitNameAndHint(const std::string& text);

/// "NAME[:HINT]=VALUE" as an argument of `option`. Raises a CommandError.
Value readAssignment(const std::string& argument, const std::string& option,
                     const ValueReading& reading);

/// "NAME=TEXT"; no hint is looked for. Raises a CommandError.
Value readPair(const std::string& argument, const std::string& option, const ValueReading& reading);

}  // namespace cli
