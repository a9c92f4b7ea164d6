// The stack guard. libxslt stops a recursion by its depth alone (3,000 levels), for which a thread
// with 1 MiB of stack has no room. Its debugger hook runs before each instruction of a template,
// which is the place to look at the stack that is left. Where it copies a tree level by level
// inside one instruction, the pool ends the recursion: it has no memory for the next level.
//
// SPDX-License-Identifier: MIT
#include "store/xml/stack_guard.h"

#include <libxslt/xsltutils.h>

#include <cstddef>

#include "memory/pool_scope.h"
#include "platform/platform.h"
#include "store/xml/memory.h"

namespace rgen {
namespace {

/// The context's private field points to the bounds.
void stopBeforeStackEnds(xmlNode*, xmlNode*, xsltTemplate*, xsltTransformContext* context) {
    const auto& bounds = *static_cast<const TemplateBounds*>(context->_private);
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    const bool hasMemory = failedXmlAllocations() == bounds.failedAllocations;
    if (frame >= bounds.lowestAllowed && hasMemory) return;
    context->state = XSLT_STATE_STOPPED;
    // Variables refer to each other through XPath, which does not look at the state: end that, too.
    context->xpathCtxt->opLimit = 1;
    context->xpathCtxt->opCount = 1;
}

struct StackRoom {
    const char* limit;
    std::size_t reserve;
    int withheldXPathLevels;
};

/// The stack that is left to whoever has that frame, known or assumed.
StackRoom roomBelow(const char* frame) {
    const char* limit = platform::stackLimit();
    const bool isKnown = limit != nullptr;
    const platform::StackRule& rule =
        isKnown ? platform::smallStackRule : platform::unknownStackRule;
    if (!isKnown) limit = frame - platform::assumedStack;
    constexpr std::ptrdiff_t roomyStack = std::ptrdiff_t{4} * 1024 * 1024;
    return {limit, rule.reserve, frame - limit < roomyStack ? rule.withheldXPathLevels : 0};
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

void guardCompilation(xsltStylesheet& stylesheet) {
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    stylesheet.xpathCtxt->depth = roomBelow(frame).withheldXPathLevels;
}

void guardStack(xsltTransformContext& context, TemplateBounds& bounds) {
    bounds.failedAllocations = failedXmlAllocations();
    context._private = &bounds;
    context.debugStatus = XSLT_DEBUG_RUN;
    const StackRoom room = roomBelow(static_cast<const char*>(__builtin_frame_address(0)));
    bounds.lowestAllowed = room.limit + room.reserve;
    memory::Pool* pool = memory::poolInUse();
    // Expressions may use most of the reserve; the last quarter is for what handles the failure.
    if (pool != nullptr) pool->needStackAbove(room.limit + room.reserve / 4);
    // The hook does not run inside an expression, which may nest deeper than the reserve allows.
    context.xpathCtxt->depth = room.withheldXPathLevels;
}

}  // namespace rgen
