// The memory hooks of libxml2, which libxslt uses, too. libxslt does not examine all of its
// allocations: without memory it may write through a null pointer, or leave parts of a template
// out. So when the C heap has none left, its blocks come from a reserve until the transformation
// looks and ends.
//
// SPDX-License-Identifier: MIT
#include "store/xml/memory.h"

#include <libxml/threads.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "memory/pool.h"
#include "memory/reserve.h"

namespace rgen {
namespace {

memory::Reserve reserve;
/// Those of threads without a pool.
std::atomic<std::size_t> failedAllocations = 0;

void noteFailure() {
    if (memory::Pool* pool = memory::poolInUse()) {
        pool->noteFailure();
    } else {
        ++failedAllocations;
    }
}

/// Last resort after pool and malloc. Never serves requests refused for lack of stack: that refusal
/// ends runaway recursion.
void* takeFromReserve(std::size_t size) {
    noteFailure();
    const memory::Pool* pool = memory::poolInUse();
    const bool isOpen = pool == nullptr || (pool->hasReserve() && !pool->stackIsShort());
    return isOpen ? reserve.take(size) : nullptr;
}

/// Slow path, out of line so that the fast path inlines.
[[gnu::cold, gnu::noinline]] void* allocateForXmlOtherwise(std::size_t size) {
    void* block = memory::poolsAreUsed ? memory::allocateOtherwise(memory::poolInUse(), size)
                                       : std::malloc(size);
    return block != nullptr ? block : takeFromReserve(size);
}

void* allocateForXml(std::size_t size) {
    memory::Pool* pool = memory::poolInUse();
    void* block = pool != nullptr ? memory::allocateAtHand(*pool, size) : nullptr;
    return block != nullptr ? block : allocateForXmlOtherwise(size);
}

void* moveFromReserve(void* block, std::size_t size) {
    const std::size_t oldSize = memory::Reserve::sizeOf(block);
    if (size <= oldSize) return block;
    void* moved = allocateForXml(size);
    if (moved == nullptr) return nullptr;
    std::memcpy(moved, block, oldSize);
    reserve.give(block);
    return moved;
}

/// The reserve does not serve here: whoever grows a block examines the outcome.
void* reallocateForXml(void* block, std::size_t size) {
    if (block == nullptr) return allocateForXml(size);
    if (reserve.owns(block)) return moveFromReserve(block, size);
    void* moved = memory::poolsAreUsed ? memory::reallocate(memory::poolInUse(), block, size)
                                       : std::realloc(block, size);
    if (moved == nullptr) noteFailure();
    return moved;
}

[[gnu::cold, gnu::noinline]] void releaseForXmlOtherwise(void* block) {
    if (reserve.owns(block)) {
        reserve.give(block);
    } else if (memory::poolsAreUsed) {
        memory::release(block);
    } else {
        std::free(block);
    }
}

void releaseForXml(void* block) {
    const bool isReleased =
        memory::poolsAreUsed && block != nullptr && memory::releaseToPool(block);
    if (!isReleased) releaseForXmlOtherwise(block);
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
    // On purpose: twice. libxml2 does not look whether the system had the memory to keep what it
    // has made for the thread; if not, it makes it again, where it can.
    return xmlCheckThreadLocalStorage() == 0 && xmlCheckThreadLocalStorage() == 0;
}

void requireXmlThreadState() {
    if (!hasXmlThreadState()) throw std::bad_alloc();
}

XmlMemoryWatch::XmlMemoryWatch() : failedBefore_(failedXmlAllocations()) {
    if (memory::Pool* pool = memory::poolInUse()) pool->setReserve(true);
}

XmlMemoryWatch::~XmlMemoryWatch() {
    if (memory::Pool* pool = memory::poolInUse()) pool->setReserve(false);
}

std::size_t failedXmlAllocations() {
    const memory::Pool* pool = memory::poolInUse();
    return pool != nullptr ? pool->failures() : failedAllocations.load();
}

XmlMemoryScope::~XmlMemoryScope() {
    // The thread's last error is the one thing of libxml2 that would outlive the scope.
    xmlResetLastError();
}

}  // namespace rgen
