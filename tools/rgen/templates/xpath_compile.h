// The verdict of the XML libraries about one expression. rgen's copy is of the same build as the
// library's.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include "templates/xpath_check.h"

namespace cli {

struct CompileVerdict {
    bool isAccepted = true;
    /// Where the parser stopped, in bytes; the end when it is not known.
    std::size_t stoppedAt = 0;
    /// A variable where there must be none.
    bool isForbiddenVariable = false;
    /// Brackets nested deeper than the parser reads.
    bool isTooDeep = false;
};

/// Compiles an expression or a pattern; a value template must be taken apart before. Undeclared
/// prefixes are accepted.
CompileVerdict compileExpression(std::string_view expression, ExpressionKind kind,
                                 bool variablesAllowed);

}  // namespace cli
