// The stack guard. libxslt stops a recursion by its depth alone (3,000 levels), for which a thread
// with 1 MiB of stack has no room. Its debugger hook runs before each instruction of a template,
// which is the place to look at the stack that is left. Where it copies a tree level by level inside
// one instruction, the pool ends the recursion: it has no memory for the next level.
//
// SPDX-License-Identifier: MIT
#include "store/xslt_stack_guard.h"

#include <libxslt/xsltutils.h>

#include <cstddef>

#include "memory/pool_scope.h"
#include "platform/platform.h"

namespace rgen {
namespace {

/// The context's private field holds the lowest stack address that a template may reach; null where
/// the system does not tell the limit, and no address is below that.
void stopBeforeStackEnds(xmlNode*, xmlNode*, xsltTemplate*, xsltTransformContext* context) {
    const auto* lowestAllowed = static_cast<const char*>(context->_private);
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    if (frame >= lowestAllowed) return;
    context->state = XSLT_STATE_STOPPED;
    // Variables refer to each other through XPath, which does not look at the state: end that, too.
    context->xpathCtxt->opLimit = 1;
    context->xpathCtxt->opCount = 1;
}

/// In the order in which libxslt reads them.
struct DebuggerCallbacks {
    xsltHandleDebuggerCallback handler;
    xsltAddCallCallback add;
    xsltDropCallCallback drop;
};

}  // namespace

void installStackGuard() {
    constexpr int callbackCount = 3;
    DebuggerCallbacks callbacks = {stopBeforeStackEnds, nullptr, nullptr};
    xsltSetDebuggerCallbacks(callbackCount, &callbacks);
}

void guardStack(xsltTransformContext& context) {
    const char* limit = platform::stackLimit();
    if (limit == nullptr) return;
    context._private = const_cast<char*>(limit + platform::stackReserve);
    context.debugStatus = XSLT_DEBUG_RUN;
    memory::Pool* pool = memory::poolInUse();
    // Expressions may use most of the reserve; the last quarter is for what handles the failure.
    if (pool != nullptr) pool->needStackAbove(limit + platform::stackReserve / 4);
    // The hook does not run inside an expression, which may nest deeper than the reserve allows.
    constexpr std::ptrdiff_t roomyStack = std::ptrdiff_t{4} * 1024 * 1024;
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    if (frame - limit < roomyStack) context.xpathCtxt->depth = platform::withheldXPathLevels;
}

}  // namespace rgen
