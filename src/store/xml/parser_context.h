// Initialisation of the XML libraries, once in the process, and suppression of their messages.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/xmlerror.h>

#include <atomic>
#include <cstddef>

#include "store/xml/context_reference.h"

namespace rgen {

/// Keeps libxml2 and libxslt initialised while there are references to it; the last one frees the
/// globals of libxslt. The libxml2 parser is not cleaned up, since a host may use the library
/// again. The object is constant-initialised and has no destructor, so references may be acquired
/// and released at any time, including exit functions.
class XmlParserContext {
public:
    constexpr XmlParserContext() = default;
    XmlParserContext(const XmlParserContext&) = delete;
    XmlParserContext& operator=(const XmlParserContext&) = delete;

    /// A new reference. Empty when memory is exhausted. Throws no exception, not even internally.
    XmlParserContextReference acquire() noexcept;
    void release() noexcept;
    /// Like release(), for the end of the process: does not wait for the lock, which a terminated
    /// thread may hold.
    void releaseAtEnd() noexcept;

    std::size_t references() const noexcept { return references_; }

private:
    bool addFurtherReference() noexcept;
    bool dropFurtherReference() noexcept;
    void dropReference() noexcept;

    /// Held for the first and the last reference only. So a process that keeps a reference may fork
    /// at any time: the child never finds it locked.
    std::atomic_flag isBusy_ = ATOMIC_FLAG_INIT;
    std::atomic<std::size_t> references_ = 0;
};

/// A reference to the context of the process. The process keeps a reference of its own from the
/// first call until its end. May be called by several threads at once. Empty when memory is
/// exhausted.
XmlParserContextReference sharedXmlParserContext() noexcept;

/// While it lives, libxml2 prints no messages on the calling thread; then the previous handlers are
/// restored. Throws std::bad_alloc when libxml2 has no memory for the thread. Every function that
/// uses XML has one on its stack.
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
