// The object behind the generator handle that hosts hold.
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

/// Lock rule: `mutex` guards every other field but `poolSlot`, which guards itself. It is not
/// recursive and is held for these stretches only: storing the translate callback, reading or
/// rewriting `dataDirPath`, the whole configuration load, the whole transformation with its
/// translate callbacks, and each access to `cancellationRegistry`. It is never held across
/// delivery, and persistent data files are read and written without it. Cancellers take it by a
/// CancellerLock, which precedes all others.
struct ReportGenerator : memory::MallocAllocated {
    sync::PriorityMutex mutex;

    /// UTF-8. Empty until a data directory is set, otherwise it ends in ".rgen" and a separator.
    std::string dataDirPath;

    /// One entry for each generation in progress, under the GUID text of its report type.
    std::multimap<std::string, std::shared_ptr<sync::CancellationTokenSource>> cancellationRegistry;

    /// Keeps the XML libraries initialised while the handle lives.
    XmlParserContextReference parserContext;

    /// Memory for the XML work of the next report.
    memory::PoolSlot poolSlot;

    /// Never null; a new generator returns every text unchanged.
    RgenTranslateFunction translateFunction = [](const char* text, void*) { return text; };
    void* translateContext = nullptr;
};

}  // namespace rgen
