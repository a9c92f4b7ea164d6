// XmlParserContext and XmlSilence. References are counted by hand: a host may make a generator in
// an exit function, when static objects are gone already. libxml2's handlers belong to a thread and
// are swapped in and out; libxslt's handler belongs to the process and is set once, since setting
// it later would be a race.
//
// SPDX-License-Identifier: MIT
#include "store/xml/parser_context.h"

#include <libxml/parser.h>
#include <libxslt/extensions.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltlocale.h>
#include <libxslt/xsltutils.h>

#include <cstddef>

#include "lock/spin_lock.h"
#include "store/xml/handles.h"
#include "store/xml/memory.h"
#include "store/xml/stack_guard.h"

namespace rgen {
namespace {

constexpr int builtForXmlVersion = 21503;

static_assert(LIBXML_VERSION >= builtForXmlVersion, "libxml2 2.15.3 or later is needed");

void ignoreMessage(void*, const char*, ...) {}

void ignoreError(void*, const xmlError*) {}

/// On Windows libxslt makes a list of the system's locales for the first sorting by language and
/// keeps it. It is made here, outside of all pools; libxslt does not look whether memory is left.
void makeLocaleList() {
    constexpr std::size_t moreThanItTakes = std::size_t{256} * 1024;
    if (!XmlPtr<xmlChar>(static_cast<xmlChar*>(xmlMalloc(moreThanItTakes)))) return;
    constexpr int upperCaseFirst = 0;
    xsltFreeLocale(xsltNewLocale(xmlText(""), upperCaseFirst));
}

/// False when memory is exhausted; everything is then as before.
bool startXmlLibraries() noexcept {
    installXmlMemory();
    const std::size_t failedBefore = failedXmlAllocations();
    xmlInitParser();
    if (!hasXmlThreadState()) return false;
    xmlCheckVersion(builtForXmlVersion);
    xsltInit();
    // The lock of the extensions, which the first compilations would make, each on its thread.
    xsltInitGlobals();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
    makeLocaleList();
    installStackGuard();
    if (failedXmlAllocations() == failedBefore) return true;
    // libxslt would lack what it could not register; and the reserve gets its blocks back.
    xsltCleanupGlobals();
    xmlCleanupParser();
    return false;
}

XmlParserContext processContext;

/// The reference of the process itself. Nobody reads it, only its end counts.
struct ProcessReference {
    ProcessReference() { static_cast<void>(processContext.acquire().release()); }
    ~ProcessReference() { processContext.releaseAtEnd(); }
    ProcessReference(const ProcessReference&) = delete;
    ProcessReference& operator=(const ProcessReference&) = delete;
};

}  // namespace

XmlParserContextReference XmlParserContext::acquire() noexcept {
    if (!addFurtherReference()) {
        const sync::SpinLock lock(isBusy_);
        if (references_ == 0 && !startXmlLibraries()) return {};
        ++references_;
    }
    return XmlParserContextReference(this);
}

void XmlParserContext::release() noexcept {
    if (dropFurtherReference()) return;
    const sync::SpinLock lock(isBusy_);
    dropReference();
}

void XmlParserContext::releaseAtEnd() noexcept {
    if (dropFurtherReference()) return;
    if (isBusy_.test_and_set(std::memory_order_acquire)) return;
    dropReference();
    isBusy_.clear(std::memory_order_release);
}

/// False, and nothing is changed, where there is none yet.
bool XmlParserContext::addFurtherReference() noexcept {
    std::size_t count = references_;
    while (count > 0 && !references_.compare_exchange_weak(count, count + 1)) {
    }
    return count > 0;
}

/// False, and nothing is changed, where only one is left, or none.
bool XmlParserContext::dropFurtherReference() noexcept {
    std::size_t count = references_;
    while (count > 1 && !references_.compare_exchange_weak(count, count - 1)) {
    }
    return count > 1;
}

void XmlParserContext::dropReference() noexcept {
    if (--references_ == 0) xsltCleanupGlobals();
}

void XmlParserContextRelease::operator()(XmlParserContext* context) const noexcept {
    context->release();
}

XmlParserContextReference sharedXmlParserContext() noexcept {
    XmlParserContextReference reference = processContext.acquire();
    if (reference) {
        static const ProcessReference keptByTheProcess;
    }
    return reference;
}

XmlSilence::XmlSilence() {
    requireXmlThreadState();
    structuredHandler_ = xmlStructuredError;
    structuredContext_ = xmlStructuredErrorContext;
    genericHandler_ = xmlGenericError;
    genericContext_ = xmlGenericErrorContext;
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    xmlSetGenericErrorFunc(nullptr, ignoreMessage);
}

XmlSilence::~XmlSilence() {
    xmlSetStructuredErrorFunc(structuredContext_, structuredHandler_);
    xmlSetGenericErrorFunc(genericContext_, genericHandler_);
}

}  // namespace rgen
