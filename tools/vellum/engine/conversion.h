// One conversion: stage the page, run an engine under supervision, deliver the PDF.
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
    /// The engine that the option or variable names, or empty.
    std::string engine;
};

/// Converts a page and returns the engine that was used. Throws a Failure, and then leaves neither
/// a new PDF nor a temporary file.
Engine convert(const ConversionRequest& request);

}  // namespace vellum
