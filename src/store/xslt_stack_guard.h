// Keeps a template that recurses without end from running the calling thread out of stack.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxslt/xsltInternals.h>

namespace rgen {

/// Hooks the guard into libxslt. Called once in the process, before the first transformation.
void installStackGuard();

/// From now on the transformation of `context` stops as a failed one before less than
/// platform::stackReserve is left of the calling thread's stack.
void guardStack(xsltTransformContext& context);

}  // namespace rgen
