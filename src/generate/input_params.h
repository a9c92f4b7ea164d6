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

/// Values of InputParams::outputMode; the delivery refuses every other number.
namespace output_mode {
inline constexpr std::uint64_t file = 0;
inline constexpr std::uint64_t deleteOnClose = 1;
inline constexpr std::uint64_t bytes = 2;
}  // namespace output_mode

/// Built by the exported function; the driver owns it during the call.
struct InputParams {
    /// Of two values with the same name the later is used.
    NamedVariants variants;
    PropertyMap pairs;
    Guid templateGuid;
    std::uint64_t outputMode;
    /// Not zero: a "pdf" request is not converted.
    std::uint64_t skipExternalConversion;
    std::string outputFormat;
    std::string outputPath;
    std::string converterBaseArg;
};

}  // namespace rgen
