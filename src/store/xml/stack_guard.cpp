// The stack guard. libxslt limits recursion by depth alone (3,000 levels), for which 1 MiB of stack
// is too small. Its debugger hook runs before each instruction of a template and checks the stack
// that is left. Where libxslt copies a tree recursively inside one instruction, the work refuses
// the memory for the next level.
//
// SPDX-License-Identifier: MIT
#include "store/xml/stack_guard.h"

#include <libxslt/xsltutils.h>

#include <algorithm>
#include <cstddef>

#include "platform/platform.h"

namespace rgen {
namespace {

constexpr std::size_t kibibyte = 1024;

/// Every thread that calls the library has at least this much stack (see rgen.h).
constexpr std::size_t smallestStack = RGEN_SMALLEST_STACK_KIB * kibibyte;

/// Stack that sanitizer instrumentation needs in addition.
constexpr std::size_t instrumentation = RGEN_SANITIZER_STACK_KIB * kibibyte;

/// Of the smallest stack, what the host and the calls up to the template use at most.
constexpr std::size_t usedByCallers = 32 * kibibyte;

/// libxml2's own limit of XPath nesting.
constexpr int xpathLevels = RGEN_LIBXML2_XPATH_LEVELS;

constexpr StackRule ruleWith(std::size_t reserve, int allowedXPathLevels) {
    return {std::max(reserve, smallestStack / 2) + instrumentation,
            std::max(xpathLevels - allowedXPathLevels, 0)};
}

/// The transformation's private field points to its work.
void stopBeforeStackEnds(xmlNode*, xmlNode*, xsltTemplate*, xsltTransformContext* context) {
    const auto& work = *static_cast<const XmlWork*>(context->_private);
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    if (frame >= work.lowestForTemplates() && work.memorySufficed()) return;
    context->state = XSLT_STATE_STOPPED;
    // Variables refer to each other through XPath, which does not check the state: stop that, too.
    context->xpathCtxt->opLimit = 1;
    context->xpathCtxt->opCount = 1;
}

struct StackRoom {
    const char* limit;
    std::size_t reserve;
    int withheldXPathLevels;
};

/// The stack below `frame`, known or assumed.
StackRoom roomBelow(const char* frame) {
    const char* limit = platform::stackLimit();
    const bool isKnown = limit != nullptr;
    const StackRule& rule = isKnown ? smallStackRule : unknownStackRule;
    if (!isKnown) limit = frame - assumedStack;
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

const StackRule smallStackRule = ruleWith(200 * kibibyte, 2000);

// Fewer levels for expressions, so that more of the stack is left for templates.
const StackRule unknownStackRule = ruleWith(0, 1000);

const std::size_t assumedStack = smallestStack - usedByCallers + instrumentation;

void installStackGuard() {
    constexpr int callbackCount = 3;
    DebuggerCallbacks callbacks = {stopBeforeStackEnds, nullptr, nullptr};
    xsltSetDebuggerCallbacks(callbackCount, &callbacks);
}

void guardCompilation(xsltStylesheet& stylesheet) {
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    stylesheet.xpathCtxt->depth = roomBelow(frame).withheldXPathLevels;
}

void guardStack(xsltTransformContext& context, XmlWork& work) {
    context._private = &work;
    context.debugStatus = XSLT_DEBUG_RUN;
    const StackRoom room = roomBelow(static_cast<const char*>(__builtin_frame_address(0)));
    // Expressions may use most of the reserve; the last quarter is for handling the failure.
    work.limitStack(room.limit + room.reserve, room.limit + room.reserve / 4);
    // The hook does not run inside an expression, which could nest deeper than the reserve allows.
    context.xpathCtxt->depth = room.withheldXPathLevels;
}

}  // namespace rgen
