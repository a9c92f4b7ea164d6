// Hints and the names that files carry for hints and kinds.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace rgen {

/// How a value is shown as text. Numbers from 9 up exist on the way in and mean "no such hint".
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

/// The hint as it crosses the boundary in either direction: Time to Speed are kept, every other
/// number becomes Generic.
constexpr VariantHint boundaryHint(std::uint64_t hint) {
    const auto candidate = static_cast<VariantHint>(hint);
    const bool kept = candidate >= VariantHint::Time && candidate <= VariantHint::Speed;
    return kept ? candidate : VariantHint::Generic;
}

/// The hint of exactly that name, in that letter case; Uninitialized for every other text.
VariantHint hintFromName(const std::string& name);

/// The canonical name of a kind ("std::string", "int64_t", "std::vector<uint8_t>") for the short
/// one that files carry ("string", "int64", "byte_array"); empty for every other text. A handle has
/// no name: files cannot hold one.
std::string canonicalTypeName(const std::string& typeName);

}  // namespace rgen
