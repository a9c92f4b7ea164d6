// Keeps a template that recurses without end from running the calling thread out of stack, and one
// from going on without memory.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxslt/xsltInternals.h>

#include <cstddef>

namespace rgen {

/// Hooks the guard into libxslt. Called once in the process, before the first transformation.
void installStackGuard();

/// Where a template has to stop.
struct TemplateBounds {
    /// The lowest stack address that it may reach.
    const char* lowestAllowed = nullptr;
    /// What failedXmlAllocations() gave at its start.
    std::size_t failedAllocations = 0;
};

/// Expressions that `stylesheet` compiles from now on nest only as deep as the stack has room for:
/// libxml2 descends into them. Its XPath context exists.
void guardCompilation(xsltStylesheet& stylesheet);

/// From now on the transformation of `context` stops as a failed one before less than the reserve
/// of its platform::StackRule is left of the stack, or when memory is exhausted. Where the system
/// does not tell the stack's limit, the stack is taken for one of the smallest size.
/// `bounds` is filled, and outlives the transformation.
void guardStack(xsltTransformContext& context, TemplateBounds& bounds);

}  // namespace rgen
