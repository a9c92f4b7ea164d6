// Hints, and the names of hints and kinds in files.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace rgen {

/// How a value is shown as text. Input may contain numbers from 9 up, which are unknown hints.
enum class VariantHint : std::uint64_t {
    Uninitialized = 0,
    Generic = 1,
    Time = 2,
    Date = 3,
    DateTime = 4,
    Size = 5,
    Address = 6,
    Speed = 7,
    Dump = 8
};

/// True for the nine hints above.
constexpr bool isKnownHint(VariantHint hint) {
    return hint <= VariantHint::Dump;
}

/// The hint that is passed between host and library, in either direction: Time to Speed are
/// unchanged, every other number becomes Generic.
constexpr VariantHint boundaryHint(std::uint64_t hint) {
    const auto candidate = static_cast<VariantHint>(hint);
    const bool kept = candidate >= VariantHint::Time && candidate <= VariantHint::Speed;
    return kept ? candidate : VariantHint::Generic;
}

/// The hint with that name (case-sensitive); Uninitialized for any other text.
VariantHint hintFromName(const std::string& name);

/// The canonical name of a kind ("std::string", "int64_t", "std::vector<uint8_t>") for its short
/// name in files ("string", "int64", "byte_array"); empty for any other text. A handle has no name,
/// since files cannot contain one.
std::string canonicalTypeName(const std::string& typeName);

}  // namespace rgen
