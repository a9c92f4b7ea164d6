// XmlParserContext and XmlSilence. libxml2's handlers belong to a thread and are swapped in and
// out; libxslt's handler belongs to the process and is set once, since setting it later would
// be a race.
//
// SPDX-License-Identifier: MIT
#include "store/xml_parser_context.h"

#include <libxml/parser.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltlocale.h>
#include <libxslt/xsltutils.h>

#include <cstddef>
#include <new>

#include "store/xml_handles.h"
#include "store/xml_memory.h"
#include "store/xslt_stack_guard.h"

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

}  // namespace

XmlParserContext::XmlParserContext() {
    installXmlMemory();
    const std::size_t failedBefore = failedXmlAllocations();
    xmlInitParser();
    requireXmlThreadState();
    xmlCheckVersion(builtForXmlVersion);
    xsltInit();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
    makeLocaleList();
    installStackGuard();
    if (failedXmlAllocations() != failedBefore) {
        // libxslt would lack what it could not register; and the reserve gets its blocks back.
        xsltCleanupGlobals();
        xmlCleanupParser();
        throw std::bad_alloc();
    }
}

XmlParserContext::~XmlParserContext() {
    xsltCleanupGlobals();
}

std::shared_ptr<XmlParserContext> sharedXmlParserContext() {
    static const auto context = std::make_shared<XmlParserContext>();
    return context;
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
