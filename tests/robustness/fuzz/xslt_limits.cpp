// The limits. The linker sends two calls through this file (--wrap): where the library makes a
// transformation context, which is given limits, and where libxslt calls its debugger hook before
// each instruction, where the used memory is checked. The memory functions are wrapped by ones
// that count what is asked of them.
//
// SPDX-License-Identifier: MIT
#include "xslt_limits.h"

#include <libxml/xmlmemory.h>
#include <libxslt/security.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <cstddef>
#include <cstring>
#include <string>

extern "C" {
xsltTransformContext* __real_xsltNewTransformContext(xsltStylesheet* style, xmlDoc* document);
xsltTransformContext* __wrap_xsltNewTransformContext(xsltStylesheet* style, xmlDoc* document);
void __real_xslHandleDebugger(xmlNode* instruction, xmlNode* node, xsltTemplate* matched,
                              xsltTransformContext* context);
void __wrap_xslHandleDebugger(xmlNode* instruction, xmlNode* node, xsltTemplate* matched,
                              xsltTransformContext* context);
}

namespace rgen_fuzz {
namespace {

constexpr unsigned long mostInstructions = 5000;
constexpr unsigned long mostExpressionSteps = 100000;
constexpr std::size_t mostBytes = std::size_t{16} * 1024 * 1024;

thread_local bool limited = false;
thread_local std::size_t bytesAskedFor = 0;

xmlFreeFunc releaseBlock = nullptr;
xmlMallocFunc allocateBlock = nullptr;
xmlReallocFunc reallocateBlock = nullptr;
xmlStrdupFunc copyText = nullptr;

void* countedAllocate(std::size_t size) {
    bytesAskedFor += size;
    return allocateBlock(size);
}

void* countedReallocate(void* block, std::size_t size) {
    bytesAskedFor += size;
    return reallocateBlock(block, size);
}

char* countedCopy(const char* text) {
    bytesAskedFor += std::strlen(text) + 1;
    return copyText(text);
}

int mayRead(xsltSecurityPrefs*, xsltTransformContext*, const char* value) {
    const std::string name = value != nullptr ? value : "";
    return name == "included.xsl" || name == "data.xml" ? 1 : 0;
}

void setLimits(xsltTransformContext& context) {
    context.opLimit = mostInstructions;
    context.xpathCtxt->opLimit = mostExpressionSteps;
}

void stopWhenMemoryIsUsedUp(xsltTransformContext& context) {
    if (bytesAskedFor > mostBytes) context.state = XSLT_STATE_STOPPED;
}

}  // namespace

void installXsltLimits() {
    xmlMemGet(&releaseBlock, &allocateBlock, &reallocateBlock, &copyText);
    xmlMemSetup(releaseBlock, countedAllocate, countedReallocate, countedCopy);
    // For the rest of the process.
    static xsltSecurityPrefs* const preferences = xsltNewSecurityPrefs();
    for (const xsltSecurityOption option :
         {XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY, XSLT_SECPREF_READ_NETWORK,
          XSLT_SECPREF_WRITE_NETWORK}) {
        xsltSetSecurityPrefs(preferences, option, xsltSecurityForbid);
    }
    xsltSetSecurityPrefs(preferences, XSLT_SECPREF_READ_FILE, mayRead);
    xsltSetDefaultSecurityPrefs(preferences);
}

XsltBudget::XsltBudget() {
    limited = true;
    bytesAskedFor = 0;
}

XsltBudget::~XsltBudget() {
    limited = false;
}

}  // namespace rgen_fuzz

xsltTransformContext* __wrap_xsltNewTransformContext(xsltStylesheet* style, xmlDoc* document) {
    xsltTransformContext* context = __real_xsltNewTransformContext(style, document);
    if (context != nullptr && rgen_fuzz::limited) rgen_fuzz::setLimits(*context);
    return context;
}

void __wrap_xslHandleDebugger(xmlNode* instruction, xmlNode* node, xsltTemplate* matched,
                              xsltTransformContext* context) {
    if (rgen_fuzz::limited) rgen_fuzz::stopWhenMemoryIsUsedUp(*context);
    __real_xslHandleDebugger(instruction, node, matched, context);
}
