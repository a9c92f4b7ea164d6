// The object to which a host's generator handle points.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <string>

#include "lock/priority_mutex.h"
#include "memory/malloc_allocated.h"
#include "memory/pool_slot.h"
#include "store/xml/context_reference.h"
#include "strata_repgenlib/rgen.h"

namespace rgen {

namespace sync {
class CancellationTokenSource;
}

/// Lock rule: `mutex` guards every other field except `poolSlot`, which needs none. It is not
/// recursive and is held only during these steps: storing the translate callback, reading or
/// changing `dataDirPath`, the whole configuration load, the whole transformation with its
/// translate callbacks, and each access to `cancellationRegistry`. It is not held during delivery,
/// nor while persistent data files are read and written. Cancels lock it with a CancellerLock,
/// which has priority over all other locks.
struct ReportGenerator : memory::MallocAllocated {
    sync::PriorityMutex mutex;

    /// UTF-8. Empty until a data directory is set; then it ends in ".rgen" and a separator.
    std::string dataDirPath;

    /// One entry for each running generation; the key is the GUID text of its report type.
    std::multimap<std::string, std::shared_ptr<sync::CancellationTokenSource>> cancellationRegistry;

    /// Keeps the XML libraries initialised while the generator exists.
    XmlParserContextReference parserContext;

    /// Memory for the XML work of the next report.
    memory::PoolSlot poolSlot;

    /// Never null; a new generator returns every text unchanged.
    RgenTranslateFunction translateFunction = [](const char* text, void*) { return text; };
    void* translateContext = nullptr;
};

}  // namespace rgen
