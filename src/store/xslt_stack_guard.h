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
    /// The lowest stack address that it may reach; null where the system does not tell the limit.
    const char* lowestAllowed = nullptr;
    /// What failedXmlAllocations() gave at its start.
    std::size_t failedAllocations = 0;
};

/// From now on the transformation of `context` stops as a failed one before less than
/// platform::stackReserve is left of the calling thread's stack, or when memory is exhausted.
/// `bounds` is filled, and outlives the transformation.
void guardStack(xsltTransformContext& context, TemplateBounds& bounds);

}  // namespace rgen
