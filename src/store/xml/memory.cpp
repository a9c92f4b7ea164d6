// The memory functions that libxml2 and libxslt call: pool first, then malloc, then the reserve.
// The reserve bridges the time until the transformation checks for failed allocations and stops.
//
// SPDX-License-Identifier: MIT
#include "store/xml/memory.h"

#include <libxml/threads.h>
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "memory/pool.h"
#include "memory/reserve.h"
#include "store/xml/work.h"

namespace rgen {
namespace {

memory::Reserve reserve;

/// A short stack ends the small blocks: each level of a runaway recursion allocates one.
bool refuses(const XmlWork* work, std::size_t size) {
    return size <= memory::Pool::largestFastBlock && work != nullptr && work->stackIsShort();
}

void* allocateWithoutReserve(const XmlWork* work, std::size_t size) {
    if (refuses(work, size)) return nullptr;
    if (!memory::poolsAreUsed) return std::malloc(size);
    return memory::allocateSlow(work != nullptr ? work->pool() : nullptr, size);
}

/// Slow path, out of line so that the fast path inlines.
[[gnu::cold, gnu::noinline]] void* allocateForXmlSlow(const XmlWork* work, std::size_t size) {
    void* block = allocateWithoutReserve(work, size);
    if (block != nullptr) return block;
    XmlWork::noteFailure();
    return XmlWork::mayUseReserve() ? reserve.allocate(size) : nullptr;
}

void* allocateForXml(std::size_t size) {
    XmlWork* work = XmlWork::current();
    void* block = work != nullptr ? work->allocateFast(size) : nullptr;
    return block != nullptr ? block : allocateForXmlSlow(work, size);
}

void* moveFromReserve(void* block, std::size_t size) {
    const std::size_t oldSize = memory::Reserve::sizeOf(block);
    if (size <= oldSize) return block;
    void* moved = allocateForXml(size);
    if (moved == nullptr) return nullptr;
    std::memcpy(moved, block, oldSize);
    reserve.release(block);
    return moved;
}

void* reallocateWithoutReserve(void* block, std::size_t size) {
    return memory::poolsAreUsed ? memory::reallocate(XmlWork::currentPool(), block, size)
                                : std::realloc(block, size);
}

/// Does not use the reserve: the XML libraries check the result of every reallocation.
void* reallocateForXml(void* block, std::size_t size) {
    if (block == nullptr) return allocateForXml(size);
    if (reserve.owns(block)) return moveFromReserve(block, size);
    void* moved = reallocateWithoutReserve(block, size);
    if (moved == nullptr) XmlWork::noteFailure();
    return moved;
}

[[gnu::cold, gnu::noinline]] void releaseForXmlSlow(void* block) {
    if (reserve.owns(block)) {
        reserve.release(block);
    } else if (memory::poolsAreUsed) {
        memory::release(block);
    } else {
        std::free(block);
    }
}

void releaseForXml(void* block) {
    const bool isReleased =
        memory::poolsAreUsed && block != nullptr && memory::releaseToPool(block);
    if (!isReleased) releaseForXmlSlow(block);
}

char* copyForXml(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    void* copy = allocateForXml(size);
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

}  // namespace

void installXmlMemory() {
    xmlMemSetup(releaseForXml, allocateForXml, reallocateForXml, copyForXml);
}

bool hasXmlThreadState() noexcept {
    // On purpose: called twice. libxml2 does not check whether the system had the memory to store
    // the new data for the thread. If not, the second call tries again or reports the failure.
    return xmlCheckThreadLocalStorage() == 0 && xmlCheckThreadLocalStorage() == 0;
}

void requireXmlThreadState() {
    if (!hasXmlThreadState()) throw std::bad_alloc();
}

}  // namespace rgen
