// The values of a report: name, type, hint, content and source.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.hpp"

namespace cli {

class Console;

namespace repgen = strata::repgen;

struct Value {
    std::string name;
    repgen::Value content;
    /// "--set", "--pair", "persistent data" or the path of a data file.
    std::string source;

    bool isText() const { return content.type() == repgen::ValueType::Text; }
};

/// Values by name; if a name is added twice, the last value is used.
class ValueSet {
public:
    void add(Value value);
    /// Like add, but an existing name is expected and not noted.
    void replace(Value value);
    /// Notes the names that were added more than once.
    void noteRepeated(Console& console) const;
    const std::map<std::string, Value>& values() const { return values_; }
    bool empty() const { return values_.empty(); }
    std::size_t size() const { return values_.size(); }

private:
    std::map<std::string, Value> values_;
    std::set<std::string> repeated_;
};

/// The values for the library.
repgen::Values libraryValues(const ValueSet& set);
/// The same of a set of texts.
repgen::Texts libraryTexts(const ValueSet& set);

/// The hints that the command line and JSON data files accept.
std::vector<std::string> hintNames();

/// The hint that rgen prints for the type and hint of a value.
std::string hintName(const Value& value);

/// How texts are read, and where "@FILE" is searched.
struct ValueReadOptions {
    /// Texts are XML content.
    bool raw = false;
    std::string source;
    std::string folder = ".";
    /// If not null, "@FILE" is not opened: its path is added here, and the value has no bytes.
    std::vector<std::string>* filesNamed = nullptr;
};

/// Splits "NAME:HINT" and converts `text` to a value. `defaultHint` is used without a hint. Throws
/// a CommandError that says what is wrong, but not where.
Value readValue(const std::string& nameAndHint, const std::string& text,
                const std::string& defaultHint, const ValueReadOptions& options);

/// The name and hint in "NAME:HINT"; the hint may be empty. Throws a CommandError for an unknown
/// hint.
struct NameAndHint {
    std::string name;
    std::string hint;
};
NameAndHint splitNameAndHint(const std::string& text);

/// Parses "NAME[:HINT]=VALUE", an argument of `option`. Throws a CommandError.
Value readAssignment(const std::string& argument, const std::string& option,
                     const ValueReadOptions& options);

/// Parses "NAME=TEXT" without a hint. Throws a CommandError.
Value readPair(const std::string& argument, const std::string& option,
               const ValueReadOptions& options);

}  // namespace cli
