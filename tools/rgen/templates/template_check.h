// All checks of one template.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "templates/finding.h"
#include "templates/template_text.h"

namespace cli {

/// What the checks of one template need to know about its use.
struct CheckedUse {
    /// "html", "pdf" or "txt"; empty when it is not known. Pages are checked unless it is "txt".
    std::string format;
    /// The data document for which the template runs as well.
    std::optional<std::string> dataDocument = std::nullopt;
};

/// The mistakes of a template, by their places. Without a data document those that can be seen
/// without data.
Findings checkTemplate(const TemplateText& text, const CheckedUse& use);

}  // namespace cli
