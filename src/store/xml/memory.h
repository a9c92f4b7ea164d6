// The memory of the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "memory/pool_scope.h"

namespace rgen {

/// Gives libxml2 and libxslt their memory functions. Called before anything else of theirs.
void installXmlMemory();

/// Makes what libxml2 keeps for each thread, once for each. False without memory, where libxml2 by
/// itself would end the process.
bool hasXmlThreadState() noexcept;

/// The same; throws std::bad_alloc without memory.
void requireXmlThreadState();

/// Number of failed XML allocations: in the work of the pool in use, or, on threads without one, of
/// all of these together. If it changed across a libxml2 or libxslt call, treat the result as
/// incomplete even if the call reported success.
std::size_t failedXmlAllocations();

/// While it lives, a reserve stands in for a while when the XML libraries, at work in the pool in
/// use, find no memory: libxslt does not examine all of its allocations. One learns here that
/// memory was short, and has to end the work as a failure.
class XmlMemoryWatch {
public:
    XmlMemoryWatch();
    ~XmlMemoryWatch();
    XmlMemoryWatch(const XmlMemoryWatch&) = delete;
    XmlMemoryWatch& operator=(const XmlMemoryWatch&) = delete;

    /// True while memory has sufficed since this object was made.
    bool sufficed() const { return failedXmlAllocations() == failedBefore_; }

private:
    std::size_t failedBefore_;
};

/// While it lives, what the XML libraries allocate on the calling thread comes from a pool of
/// `slot`. The caller ends all their objects that are made meanwhile before the scope ends.
class XmlMemoryScope {
public:
    explicit XmlMemoryScope(memory::PoolSlot& slot) : scope_(slot) { requireXmlThreadState(); }
    ~XmlMemoryScope();
    XmlMemoryScope(const XmlMemoryScope&) = delete;
    XmlMemoryScope& operator=(const XmlMemoryScope&) = delete;

private:
    memory::PoolScope scope_;
};

}  // namespace rgen
