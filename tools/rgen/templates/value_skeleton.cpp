// Data for a template, before there is any: skeletonOf() of template_summary.h.
//
// SPDX-License-Identifier: MIT
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/json_document.h"
#include "templates/key_names.h"
#include "templates/template_summary.h"

namespace cli {
namespace {

constexpr int entriesOfLists = 2;

std::string withEntry(const std::string& list, int entry) {
    const std::size_t place = entryPlace(list);
    const std::string number = std::to_string(entry);
    return place == std::string::npos ? list
                                      : list.substr(0, place) + number + list.substr(place + 1);
}

/// Entries differ, so that it shows when a template sorts or adds them.
void addValue(JsonDocument& document, const std::string& name, const std::string& hint, int entry) {
    const auto number = [entry](std::int64_t first) { return first * entry; };
    if (hint == "int")
        document.set(name, number(10));
    else if (hint == "size")
        document.set(name + ":size", number(1000000000));
    else if (hint == "speed")
        document.set(name + ":speed", number(100000000));
    else if (hint == "datetime")
        document.set(name + ":datetime", "2026-03-0" + std::to_string(entry) + "T08:14:07Z");
    else if (hint == "address")
        document.set(name + ":address", "0x" + std::to_string(entry) + "000");
    else if (hint == "bytes")
        document.set(name + ":bytes", "33 C0 8E D0 BC 00 7C 8E C0 8E D8 BE 00 7C BF 00 55 AA");
    else
        document.set(name, name);
}

struct Entry {
    std::string hint;
    int number = 1;
};

/// The names of the data file: entries of lists instead of lists.
void addNames(std::map<std::string, Entry>& names, const ValueSummary& value) {
    const bool isPrefix = value.kind == ValueRequest::Kind::Prefix;
    if (value.kind == ValueRequest::Kind::Part) return;
    if (value.kind == ValueRequest::Kind::Name) {
        names[value.name] = {value.hint, 1};
        return;
    }
    for (int number = 1; number <= entriesOfLists; ++number) {
        const std::string name =
            isPrefix ? value.name + std::to_string(number) : withEntry(value.name, number);
        names[name] = {value.hint, number};
    }
}

/// The prefix is that of a list whose names are known better.
bool isKnownBetter(const ValueSummary& value, const std::map<std::string, ValueSummary>& values) {
    if (value.kind != ValueRequest::Kind::Prefix) return false;
    for (const auto& [name, other] : values) {
        const bool isLonger =
            other.kind != ValueRequest::Kind::Part && name.size() > value.name.size();
        if (isLonger && name.compare(0, value.name.size(), value.name) == 0) return true;
    }
    return false;
}

}  // namespace

std::string skeletonOf(const std::vector<TemplateSummary>& templates) {
    std::map<std::string, ValueSummary> values;
    for (const TemplateSummary& one : templates) {
        for (const ValueSummary& value : one.values) {
            ValueSummary& known = values.emplace(value.name, value).first->second;
            if (known.hint.empty() || known.hint == "int")
                known.hint = value.hint.empty() ? known.hint : value.hint;
        }
    }
    std::map<std::string, Entry> names;
    for (const auto& [name, value] : values) {
        if (!isKnownBetter(value, values)) addNames(names, value);
    }
    JsonDocument document;
    for (const auto& [name, entry] : names)
        addValue(document, name, entry.hint, entry.number);
    return document.text();
}

}  // namespace cli
