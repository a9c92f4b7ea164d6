// XmlParserContext and XmlSilence. References are counted by hand: a host may create a generator in
// an exit function, after static objects were destroyed. libxml2's error handlers belong to a
// thread and are replaced and restored; libxslt's handler belongs to the process and is set only
// once, since setting it later would be a data race.
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
#include "store/xml/work.h"

namespace rgen {
namespace {

constexpr int builtForXmlVersion = 21503;

static_assert(LIBXML_VERSION >= builtForXmlVersion, "libxml2 2.15.3 or later is needed");

void ignoreMessage(void*, const char*, ...) {}

void ignoreError(void*, const xmlError*) {}

/// On Windows libxslt creates a list of the system's locales when it first sorts by language, and
/// keeps it. Creates it here, outside of all pools, and only if there is certainly enough memory,
/// since libxslt does not check.
void createLocaleList() {
    constexpr std::size_t moreThanItTakes = std::size_t{256} * 1024;
    if (!XmlPtr<xmlChar>(static_cast<xmlChar*>(xmlMalloc(moreThanItTakes)))) return;
    constexpr int upperCaseFirst = 0;
    xsltFreeLocale(xsltNewLocale(xmlText(""), upperCaseFirst));
}

/// False, without any effect, when memory is exhausted.
bool startXmlLibraries() noexcept {
    installXmlMemory();
    const XmlWork work(XmlWork::WithReserve{});
    xmlInitParser();
    if (!hasXmlThreadState()) return false;
    xmlCheckVersion(builtForXmlVersion);
    xsltInit();
    // Creates the lock of the extensions, which concurrent first compilations would each create.
    xsltInitGlobals();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
    createLocaleList();
    installStackGuard();
    if (work.memorySufficed()) return true;
    // Frees the reserve's blocks, too. libxslt would lack the parts that it could not register.
    xsltCleanupGlobals();
    xmlCleanupParser();
    return false;
}

XmlParserContext processContext;

/// The reference of the process itself, held until its static objects are destroyed.
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

/// False, without any effect, when there is no reference yet.
bool XmlParserContext::addFurtherReference() noexcept {
    std::size_t count = references_;
    while (count > 0 && !references_.compare_exchange_weak(count, count + 1)) {
    }
    return count > 0;
}

/// False, without any effect, when there is at most one reference.
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
