// What the page shows over the last good report, and what it notes below it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/command_error.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "templates/finding.h"

namespace cli {

class Console;

/// The checked template of a view.
struct CheckedView {
    DataDirectory directory;
    ReportType type;
    std::string format;
    std::string language;
};

/// What the checks of the template find, in the language of the view. Nothing when its files cannot
/// be read: then no report can be made either.
Findings templateFindings(const CheckedView& view, Console& console);

/// The same with what happens when the template runs with these values: endless recursion,
/// xsl:message with terminate="yes".
Findings runFindings(const CheckedView& view, const ReportInput& input, Console& console);

/// Tells whether the library failed because of the template.
bool isAboutTemplate(const CommandError& failure);

/// The mistakes of a view: the errors among the findings and, when they do not explain why there is
/// no report, the failure itself. Empty when nothing is wrong.
Findings mistakesOf(const CheckedView& view, const Findings& findings,
                    const std::optional<CommandError>& failure);

/// The warnings among the findings as a few lines.
std::vector<std::string> warningLines(const Findings& findings);

}  // namespace cli
