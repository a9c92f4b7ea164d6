// The two name tables. They are constant data, valid also in exit functions and in the destructors
// of a host's global objects.
//
// SPDX-License-Identifier: MIT
#include "variant/variant_names.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace rgen {
namespace {

struct NamedHint {
    std::string_view name;
    VariantHint hint;
};

constexpr NamedHint hints[] = {
    {"Uninitialized", VariantHint::Uninitialized},
    {"Generic", VariantHint::Generic},
    {"Time", VariantHint::Time},
    {"Date", VariantHint::Date},
    {"DateTime", VariantHint::DateTime},
    {"Size", VariantHint::Size},
    {"Address", VariantHint::Address},
    {"Speed", VariantHint::Speed},
    {"Dump", VariantHint::Dump},
};

struct NamedType {
    std::string_view name;
    const char* canonicalName;
};

constexpr NamedType types[] = {
    {"string", "std::string"},
    {"int64", "int64_t"},
    {"byte_array", "std::vector<uint8_t>"},
};

template <typename Row, std::size_t count>
const Row* findRow(const Row (&rows)[count], const std::string& name) {
    const Row* found = std::find_if(std::begin(rows), std::end(rows),
                                    [&name](const Row& row) { return row.name == name; });
    return found == std::end(rows) ? nullptr : found;
}

}  // namespace

VariantHint hintFromName(const std::string& name) {
    const NamedHint* found = findRow(hints, name);
    return found == nullptr ? VariantHint::Uninitialized : found->hint;
}

std::string canonicalTypeName(const std::string& typeName) {
    const NamedType* found = findRow(types, typeName);
    return found == nullptr ? std::string() : found->canonicalName;
}

}  // namespace rgen
