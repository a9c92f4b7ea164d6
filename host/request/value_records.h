// Makes the library's records from a host's arrays of values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "request/arena.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// Where the texts are used: a report reads them once, persistent data is read twice.
enum class TextUse { Report, PersistentData };

/// Throws an ArgumentError with the index of the first wrong value, and std::bad_alloc. The array
/// exists even for no values.
RgenCVariantSet makeValues(const RgenhValue* values, std::uint64_t count, TextUse use,
                           Arena& arena);

/// The same for pairs, which are texts.
RgenCAnsiStringPairSet makePairs(const RgenhValue* pairs, std::uint64_t count, Arena& arena);

/// A text record in the arena.
RgenAnsiString makeText(std::string_view text, Arena& arena);

}  // namespace rgenh
