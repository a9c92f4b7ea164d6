// The two name tables. Each is built once, on first use, and only read afterwards.
//
// SPDX-License-Identifier: MIT
#include "variant/variant_names.h"

#include <unordered_map>

namespace rgen {

VariantHint hintFromName(const std::string& name) {
    static const std::unordered_map<std::string, VariantHint> hints = {
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
    const auto found = hints.find(name);
    return found == hints.end() ? VariantHint::Uninitialized : found->second;
}

std::string canonicalTypeName(const std::string& typeName) {
    static const std::unordered_map<std::string, std::string> canonicalNames = {
        {"string", "std::string"},
        {"int64", "int64_t"},
        {"byte_array", "std::vector<uint8_t>"},
    };
    const auto found = canonicalNames.find(typeName);
    return found == canonicalNames.end() ? std::string() : found->second;
}

}  // namespace rgen
