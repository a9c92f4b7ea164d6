// The pool. The eight bytes before every block are its header: the pool's address in the upper 48
// bits and the size in units in the lower 16. It is zero for a block of the C heap, whose size is
// stored before the header. A block that waits in a free list is marked in its header, so that a
// second release of it is seen: the list would otherwise hand it out twice.
//
// SPDX-License-Identifier: MIT
#include "memory/pool.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/platform.h"

namespace rgen::memory {

constexpr std::size_t page = 4096;
constexpr std::size_t smallestChunk = std::size_t{128} * 1024;
constexpr std::size_t largestChunk = std::size_t{1024} * 1024;

/// The head of a chunk of the C heap, whose blocks begin on a page of their own.
struct Pool::Chunk {
    Chunk* next;
    std::size_t size;

    /// A block follows its header, and is aligned like a block of `malloc`.
    std::byte* begin() { return firstPage() + unit - headerSize; }
    std::byte* end() { return reinterpret_cast<std::byte*>(this) + size; }

    /// The pages stay, but the system may take what is in them.
    void offer() {
        const auto bytes = static_cast<std::size_t>(end() - firstPage());
        platform::offerPages(firstPage(), bytes / page * page);
    }

private:
    std::byte* firstPage() {
        const auto start = reinterpret_cast<std::uintptr_t>(this + 1);
        return reinterpret_cast<std::byte*>((start + page - 1) / page * page);
    }
};

namespace {

static_assert(sizeof(void*) == sizeof(std::uint64_t), "The header has room for 48-bit addresses.");

/// Room before a block of the C heap.
struct HeapPrefix {
    std::size_t size;
    std::uint64_t header;
};

unsigned powerOfTwoBelow(std::size_t number) {
    return 63U - static_cast<unsigned>(__builtin_clzll(number));
}

HeapPrefix* prefixOf(void* block) {
    return static_cast<HeapPrefix*>(block) - 1;
}

/// `prefix` is null for a new block.
void* reallocateOnHeap(HeapPrefix* prefix, std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - sizeof(HeapPrefix)) return nullptr;
    auto* moved = static_cast<HeapPrefix*>(std::realloc(prefix, size + sizeof(HeapPrefix)));
    if (moved == nullptr) return nullptr;
    *moved = {size, 0};
    return moved + 1;
}

void* allocateOnHeap(std::size_t size) {
    return reallocateOnHeap(nullptr, size);
}

}  // namespace

Pool::~Pool() {
    while (first_ != nullptr)
        drop(first_);
}

std::size_t Pool::bytesKept() const {
    std::size_t bytes = 0;
    for (const Chunk* chunk = first_; chunk != nullptr; chunk = chunk->next)
        bytes += chunk->size;
    return bytes;
}

void Pool::rewind() noexcept {
    Chunk** link = &first_;
    std::size_t kept = 0;
    bool wasUsed = current_ != nullptr;
    while (*link != nullptr) {
        Chunk* chunk = *link;
        const std::size_t keptWithIt = kept + chunk->size;
        const bool stays = wasUsed && keptWithIt <= mostKept;
        if (chunk == current_) wasUsed = false;
        if (stays) {
            if (keptWithIt > mostHeld) chunk->offer();
            kept = keptWithIt;
            link = &chunk->next;
        } else {
            drop(*link);
        }
    }
    current_ = nullptr;
    cursor_ = end_ = nullptr;
    lowestStack_ = nullptr;
    hasReserve_ = false;
    wrongReleases_ = 0;
    free_ = {};
}

/// Gives a chunk back; the one behind it takes its place.
void Pool::drop(Chunk*& link) noexcept {
    Chunk* chunk = link;
    link = chunk->next;
    std::free(chunk);
}

/// The units of a block of its own size, for any size that the pool serves.
std::size_t Pool::roundedUnitsOf(std::size_t size) {
    const std::size_t units = unitsOf(size);
    if (units <= exactUnits) return units;
    const std::size_t step = std::size_t{1} << (powerOfTwoBelow(units - 1) - 2);
    return (units + step - 1) / step * step;
}

/// The list in which free blocks of these units wait.
std::size_t Pool::listOf(std::size_t units) {
    if (units <= exactUnits) return units;
    const std::size_t power = powerOfTwoBelow(units - 1);
    const std::size_t quarter = ((units - 1) >> (power - 2)) & 3U;
    return exactUnits + 1 + 4 * (power - powerOfTwoBelow(exactUnits)) + quarter;
}

inline void Pool::give(void* block, std::size_t units) noexcept {
    headerOf(block) |= freeMark;
    FreeBlock*& list = free_[listOf(units)];
    auto* freed = static_cast<FreeBlock*>(block);
    freed->next = list;
    list = freed;
    --blocksInUse_;
}

/// Grows the block that was cut last, if there is room behind it.
bool Pool::growLast(void* block, std::size_t units, std::size_t wantedUnits) noexcept {
    std::byte* start = static_cast<std::byte*>(block) - headerSize;
    if (start + units * unit != cursor_) return false;
    if (static_cast<std::size_t>(end_ - start) < wantedUnits * unit) return false;
    cursor_ = start + wantedUnits * unit;
    headerOf(block) = header(wantedUnits);
    return true;
}

bool Pool::makeRoom(std::size_t units) noexcept {
    while (!hasRoom(units)) {
        if (!nextChunk()) return false;
    }
    return true;
}

/// What is left of the present chunk, less than the block that did not fit, stays unused until the
/// next rewind.
bool Pool::nextChunk() noexcept {
    Chunk*& next = current_ == nullptr ? first_ : current_->next;
    if (next == nullptr) {
        std::size_t size = current_ == nullptr ? smallestChunk : current_->size * 2;
        if (size > largestChunk) size = largestChunk;
        auto* chunk = static_cast<Chunk*>(std::malloc(size));
        if (chunk == nullptr) return false;
        *chunk = {nullptr, size};
        next = chunk;
    }
    current_ = next;
    cursor_ = current_->begin();
    end_ = current_->end();
    return true;
}

void* allocateOtherwise(Pool* pool, std::size_t size) noexcept {
    if (pool == nullptr || size > Pool::largestBlock) return allocateOnHeap(size);
    if (size <= Pool::largestExactBlock && pool->stackIsShort()) return nullptr;
    const std::size_t units = Pool::roundedUnitsOf(size);
    Pool::FreeBlock*& list = pool->free_[Pool::listOf(units)];
    if (list != nullptr) return pool->take(list);
    return pool->makeRoom(units) ? pool->cut(units) : allocateOnHeap(size);
}

void* reallocate(Pool* pool, void* block, std::size_t size) noexcept {
    if (block == nullptr) return allocate(pool, size);
    const std::uint64_t header = Pool::headerOf(block);
    const std::size_t units = Pool::unitsIn(header);
    const bool isOnHeap = units == 0;
    if (units > Pool::mostUnits) {
        ++Pool::owner(header).wrongReleases_;
        return nullptr;
    }
    const std::size_t room =
        isOnHeap ? prefixOf(block)->size : units * Pool::unit - Pool::headerSize;
    if (size <= room) return block;
    if (isOnHeap) return reallocateOnHeap(prefixOf(block), size);
    const bool grown = size <= Pool::largestBlock &&
                       Pool::owner(header).growLast(block, units, Pool::roundedUnitsOf(size));
    if (grown) return block;
    void* moved = allocate(pool, size);
    if (moved == nullptr) return nullptr;
    std::memcpy(moved, block, room);
    release(block);
    return moved;
}

bool releaseToPool(void* block) noexcept {
    const std::uint64_t header = Pool::headerOf(block);
    const std::size_t units = Pool::unitsIn(header);
    // One comparison for both: no units, and the mark of a free block.
    if (units - 1 >= Pool::mostUnits) {
        if (units != 0) ++Pool::owner(header).wrongReleases_;
        return units != 0;
    }
    Pool::owner(header).give(block, units);
    return true;
}

void release(void* block) noexcept {
    if (block == nullptr || releaseToPool(block)) return;
    std::free(prefixOf(block));
}

}  // namespace rgen::memory
