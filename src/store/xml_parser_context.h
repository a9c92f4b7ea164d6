// Once-per-process initialisation of the XML libraries, and their silence.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/xmlerror.h>

#include <memory>

namespace rgen {

/// Initialises libxml2 and libxslt while it lives; on its end libxslt's globals are released. The
/// libxml2 parser is never cleaned up, since a host may load the library again.
class XmlParserContext {
public:
    XmlParserContext();
    ~XmlParserContext();
    XmlParserContext(const XmlParserContext&) = delete;
    XmlParserContext& operator=(const XmlParserContext&) = delete;
};

/// The one context of the process, made by the first call. Safe from several threads at once.
std::shared_ptr<XmlParserContext> sharedXmlParserContext();

/// While it lives, libxml2 prints nothing on the calling thread. The previous handlers come back
/// afterwards. Raises std::bad_alloc on a thread for which libxml2 gets no memory. Everything that
/// uses XML keeps one on its stack.
class XmlSilence {
public:
    XmlSilence();
    ~XmlSilence();
    XmlSilence(const XmlSilence&) = delete;
    XmlSilence& operator=(const XmlSilence&) = delete;

private:
    xmlStructuredErrorFunc structuredHandler_ = nullptr;
    void* structuredContext_ = nullptr;
    xmlGenericErrorFunc genericHandler_ = nullptr;
    void* genericContext_ = nullptr;
};

}  // namespace rgen
