// What the arguments of "rgen preview" say.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "base/arguments.h"
#include "data/report_type.h"

namespace cli {

struct PreviewSettings {
    DataDirectory directory;
    std::optional<std::string> type;
    /// The data files and whether their texts are XML content.
    ValueArguments values;
    /// The folder of relative links in a report.
    std::string base;
    /// "code -g {file}:{line}"; empty when places are only shown.
    std::string editor;
};

}  // namespace cli
