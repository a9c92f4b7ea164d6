// XmlParserContext and XmlSilence. libxml2's handlers belong to a thread and are swapped in and
// out; libxslt's handler belongs to the process and is set once, since setting it later would
// be a race.
//
// SPDX-License-Identifier: MIT
#include "store/xml_parser_context.h"

#include <libxml/parser.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltutils.h>

#include "store/xslt_stack_guard.h"

namespace rgen {
namespace {

constexpr int builtForXmlVersion = 21503;

static_assert(LIBXML_VERSION >= builtForXmlVersion, "libxml2 2.15.3 or later is needed");

void ignoreMessage(void*, const char*, ...) {}

void ignoreError(void*, const xmlError*) {}

}  // namespace

XmlParserContext::XmlParserContext() {
    xmlInitParser();
    xmlCheckVersion(builtForXmlVersion);
    xsltInit();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
    installStackGuard();
}

XmlParserContext::~XmlParserContext() {
    xsltCleanupGlobals();
}

std::shared_ptr<XmlParserContext> sharedXmlParserContext() {
    static const auto context = std::make_shared<XmlParserContext>();
    return context;
}

XmlSilence::XmlSilence()
    : structuredHandler_(xmlStructuredError),
      structuredContext_(xmlStructuredErrorContext),
      genericHandler_(xmlGenericError),
      genericContext_(xmlGenericErrorContext) {
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    xmlSetGenericErrorFunc(nullptr, ignoreMessage);
}

XmlSilence::~XmlSilence() {
    xmlSetStructuredErrorFunc(structuredContext_, structuredHandler_);
    xmlSetGenericErrorFunc(genericContext_, genericHandler_);
}

}  // namespace rgen
