// Once-per-process initialisation of the XML libraries, and their silence.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/xmlerror.h>

#include <atomic>
#include <cstddef>

#include "store/xml/context_reference.h"

namespace rgen {

/// Keeps libxml2 and libxslt initialised while there are references to it; with the last one,
/// libxslt's globals are released. The libxml2 parser is not cleaned up, since a host may come
/// back. The object is constant data with nothing to destroy, so references may be made and ended
/// at any time of the process, in its exit functions, too.
class XmlParserContext {
public:
    constexpr XmlParserContext() = default;
    XmlParserContext(const XmlParserContext&) = delete;
    XmlParserContext& operator=(const XmlParserContext&) = delete;

    /// A new reference. Empty when memory is exhausted; no exception passes even inside.
    XmlParserContextReference acquire() noexcept;
    void release() noexcept;
    /// As release() at the end of the process, when a thread that is no more may hold the lock:
    /// does not wait for it.
    void releaseAtEnd() noexcept;

    std::size_t references() const noexcept { return references_; }

private:
    bool addFurtherReference() noexcept;
    bool dropFurtherReference() noexcept;
    void dropReference() noexcept;

    /// Held for the first reference and the last one only: a process that has a reference for good
    /// may fork at any time, since its child then finds nothing locked.
    std::atomic_flag isBusy_ = ATOMIC_FLAG_INIT;
    std::atomic<std::size_t> references_ = 0;
};

/// A reference to the one context of the process, which keeps a reference itself from the first
/// call until it ends. Safe from several threads at once. Empty when memory is exhausted.
XmlParserContextReference sharedXmlParserContext() noexcept;

/// While it lives, libxml2 prints nothing on the calling thread. The previous handlers come back
/// afterwards. Throws std::bad_alloc on a thread for which libxml2 gets no memory. Everything that
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
