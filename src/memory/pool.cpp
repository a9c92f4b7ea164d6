// The arena. The eight bytes before a block are its header: the address of its pool in the upper 48
// bits and the size in units in the lower 16. The header of a block of malloc is zero, and the size
// is stored before it. A free block has a mark in its header, so that a second release is detected:
// the free list would otherwise hand the block out twice.
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

/// The start of a chunk from malloc. Its blocks begin on the next page, so that whole pages can be
/// offered to the system.
struct Pool::Chunk {
    Chunk* next;
    std::size_t size;

    /// A block follows its header and is aligned like a block of malloc.
    std::byte* begin() { return firstPage() + unit - headerSize; }
    std::byte* end() { return reinterpret_cast<std::byte*>(this) + size; }

    void offerPages() {
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

/// Precedes a block of malloc.
struct MallocPrefix {
    std::size_t size;
    std::uint64_t header;
};

unsigned powerOfTwoBelow(std::size_t number) {
    return 63U - static_cast<unsigned>(__builtin_clzll(number));
}

MallocPrefix* prefixOf(void* block) {
    return static_cast<MallocPrefix*>(block) - 1;
}

/// `prefix` is null for a new block.
void* reallocWithPrefix(MallocPrefix* prefix, std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - sizeof(MallocPrefix)) return nullptr;
    auto* moved = static_cast<MallocPrefix*>(std::realloc(prefix, size + sizeof(MallocPrefix)));
    if (moved == nullptr) return nullptr;
    *moved = {size, 0};
    return moved + 1;
}

void* mallocWithPrefix(std::size_t size) {
    return reallocWithPrefix(nullptr, size);
}

}  // namespace

Pool::~Pool() {
    while (first_ != nullptr)
        freeChunk(first_);
}

std::size_t Pool::chunkBytes() const {
    std::size_t bytes = 0;
    for (const Chunk* chunk = first_; chunk != nullptr; chunk = chunk->next)
        bytes += chunk->size;
    return bytes;
}

void Pool::rewind() noexcept {
    Chunk** link = &first_;
    std::size_t retained = 0;
    bool wasUsed = current_ != nullptr;
    while (*link != nullptr) {
        Chunk* chunk = *link;
        const std::size_t retainedWithIt = retained + chunk->size;
        const bool isRetained = wasUsed && retainedWithIt <= maxRetainedBytes;
        if (chunk == current_) wasUsed = false;
        if (isRetained) {
            if (retainedWithIt > maxResidentBytes) chunk->offerPages();
            retained = retainedWithIt;
            link = &chunk->next;
        } else {
            freeChunk(*link);
        }
    }
    current_ = nullptr;
    cursor_ = end_ = nullptr;
    wrongReleases_ = 0;
    free_ = {};
}

/// Frees the chunk and unlinks it.
void Pool::freeChunk(Chunk*& link) noexcept {
    Chunk* chunk = link;
    link = chunk->next;
    std::free(chunk);
}

/// The units of the size class that serves `size`.
std::size_t Pool::roundedUnitsOf(std::size_t size) {
    const std::size_t units = unitsOf(size);
    if (units <= exactUnits) return units;
    const std::size_t step = std::size_t{1} << (powerOfTwoBelow(units - 1) - 2);
    return (units + step - 1) / step * step;
}

/// The index of the size class that contains `units`.
std::size_t Pool::classOf(std::size_t units) {
    if (units <= exactUnits) return units;
    const std::size_t power = powerOfTwoBelow(units - 1);
    const std::size_t quarter = ((units - 1) >> (power - 2)) & 3U;
    return exactUnits + 1 + 4 * (power - powerOfTwoBelow(exactUnits)) + quarter;
}

inline void Pool::pushFree(void* block, std::size_t units) noexcept {
    headerOf(block) |= freeMark;
    FreeBlock*& list = free_[classOf(units)];
    auto* freed = static_cast<FreeBlock*>(block);
    freed->next = list;
    list = freed;
    --blocksInUse_;
}

/// Succeeds for the block that was carved last, if the chunk has room after it.
bool Pool::growInPlace(void* block, std::size_t units, std::size_t wantedUnits) noexcept {
    std::byte* start = static_cast<std::byte*>(block) - headerSize;
    if (start + units * unit != cursor_) return false;
    if (static_cast<std::size_t>(end_ - start) < wantedUnits * unit) return false;
    cursor_ = start + wantedUnits * unit;
    headerOf(block) = header(wantedUnits);
    return true;
}

bool Pool::makeRoom(std::size_t units) noexcept {
    while (!hasRoom(units)) {
        if (!advanceToNextChunk()) return false;
    }
    return true;
}

/// The rest of the current chunk stays unused until the next rewind; it is smaller than the block
/// that did not fit.
bool Pool::advanceToNextChunk() noexcept {
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

void* allocateSlow(Pool* pool, std::size_t size) noexcept {
    if (pool == nullptr || size > Pool::largestBlock) return mallocWithPrefix(size);
    const std::size_t units = Pool::roundedUnitsOf(size);
    Pool::FreeBlock*& list = pool->free_[Pool::classOf(units)];
    if (list != nullptr) return pool->popFree(list);
    return pool->makeRoom(units) ? pool->carve(units) : mallocWithPrefix(size);
}

void* reallocate(Pool* pool, void* block, std::size_t size) noexcept {
    if (block == nullptr) return allocate(pool, size);
    const std::uint64_t header = Pool::headerOf(block);
    const std::size_t units = Pool::unitsIn(header);
    const bool isFromMalloc = units == 0;
    if (units > Pool::maxUnits) {
        ++Pool::owner(header).wrongReleases_;
        return nullptr;
    }
    const std::size_t room =
        isFromMalloc ? prefixOf(block)->size : units * Pool::unit - Pool::headerSize;
    if (size <= room) return block;
    if (isFromMalloc) return reallocWithPrefix(prefixOf(block), size);
    const bool hasGrown = size <= Pool::largestBlock &&
                          Pool::owner(header).growInPlace(block, units, Pool::roundedUnitsOf(size));
    if (hasGrown) return block;
    void* moved = allocate(pool, size);
    if (moved == nullptr) return nullptr;
    std::memcpy(moved, block, room);
    release(block);
    return moved;
}

bool releaseToPool(void* block) noexcept {
    const std::uint64_t header = Pool::headerOf(block);
    const std::size_t units = Pool::unitsIn(header);
    // One comparison for both cases: zero units, and the mark of a free block.
    if (units - 1 >= Pool::maxUnits) {
        if (units != 0) ++Pool::owner(header).wrongReleases_;
        return units != 0;
    }
    Pool::owner(header).pushFree(block, units);
    return true;
}

void release(void* block) noexcept {
    if (block == nullptr || releaseToPool(block)) return;
    std::free(prefixOf(block));
}

}  // namespace rgen::memory
