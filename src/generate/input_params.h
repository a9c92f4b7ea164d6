// One request in its internal form.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "store/base/guid.h"
#include "store/xml/property_document.h"
#include "variant/variant.h"

namespace rgen {

/// Values of InputParams::outputMode; every other number is refused on delivery.
namespace output_mode {
inline constexpr std::uint64_t file = 0;
inline constexpr std::uint64_t deleteOnClose = 1;
inline constexpr std::uint64_t bytes = 2;
}  // namespace output_mode

/// Built by the entry point before the driver runs and owned by it for the length of the call.
struct InputParams {
    /// Of two values of one name the later counts.
    NamedVariants variants;
    PropertyMap pairs;
    Guid templateGuid;
    std::uint64_t outputMode;
    /// A flag: not zero means that a "pdf" request is not converted.
    std::uint64_t skipExternalConversion;
    std::string outputFormat;
    std::string outputPath;
    std::string converterBaseArg;
};

}  // namespace rgen
