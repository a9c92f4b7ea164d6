// Stops a template before the calling thread runs out of stack, and when it has run out of memory.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxslt/xsltInternals.h>

#include <cstddef>

#include "store/xml/work.h"

namespace rgen {

/// What a template must leave of the stack.
struct StackRule {
    /// Bytes that a template leaves to the code that it calls: XPath, serialisation, the failure.
    std::size_t reserve;
    /// Levels of XPath nesting by which libxml2's own limit is reduced, so that an expression fits
    /// into `reserve`.
    int withheldXPathLevels;
};

/// For a stack whose limit is known. From 4 MiB on no XPath levels are withheld.
extern const StackRule smallStackRule;

/// For a stack whose limit the system does not know, such as that of a fiber on Linux. A template
/// then assumes that `assumedStack` bytes are left.
extern const StackRule unknownStackRule;
extern const std::size_t assumedStack;

/// Hooks the guard into libxslt. Call it once in the process, before the first transformation.
void installStackGuard();

/// From now on expressions that `stylesheet` compiles may nest only as deep as the stack allows:
/// libxml2 recurses into them. The XPath context of `stylesheet` must exist.
void guardCompilation(xsltStylesheet& stylesheet);

/// From now on the transformation of `context` fails before the stack that is left becomes less
/// than the reserve of its StackRule, and after a failed allocation of `work`, which must outlive
/// it.
void guardStack(xsltTransformContext& context, XmlWork& work);

}  // namespace rgen
