// The memory of the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "memory/pool_scope.h"

namespace rgen {

/// Gives libxml2 and libxslt their memory functions. Called once, before anything else of theirs.
void installXmlMemory();

/// While it lives, what the XML libraries allocate on the calling thread comes from a pool of
/// `slot`. The caller ends all their objects that are made meanwhile before the scope ends.
class XmlMemoryScope {
public:
    explicit XmlMemoryScope(memory::PoolSlot& slot) : scope_(slot) {}
    ~XmlMemoryScope();
    XmlMemoryScope(const XmlMemoryScope&) = delete;
    XmlMemoryScope& operator=(const XmlMemoryScope&) = delete;

private:
    memory::PoolScope scope_;
};

}  // namespace rgen
