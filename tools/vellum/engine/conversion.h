// One conversion: the page is staged, an engine is started and watched, the PDF is delivered.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "engine/engines.h"

namespace vellum {

struct ConversionRequest {
    std::filesystem::path input;
    /// As given with -b.
    std::string base;
    std::filesystem::path output;
    /// The engine that option or variable name; may be empty.
    std::string engine;
};

/// Converts a page and returns the engine that did it. Raises a Failure; then neither a new PDF nor
/// a temporary file is left.
Engine convert(const ConversionRequest& request);

}  // namespace vellum
