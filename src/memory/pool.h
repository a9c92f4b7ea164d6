// An arena for many small, short-lived blocks. Blocks that are too large for it come from malloc
// and are freed by the same functions: the header of a block says where it belongs.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "memory/malloc_allocated.h"

namespace rgen::memory {

/// Blocks of up to `largestBlock` bytes, carved from chunks. A released block is the next one of
/// its size class to be allocated. Used by one thread at a time.
class Pool : public MallocAllocated {
public:
    /// Larger blocks come from malloc, since realloc can grow them in place.
    static constexpr std::size_t largestBlock = std::size_t{64} * 1024 - 8;
    /// Larger blocks are left to the slow path.
    static constexpr std::size_t largestFastBlock = 1024 - 8;
    /// rewind() frees chunks beyond `maxRetainedBytes` and offers pages beyond `maxResidentBytes`
    /// to the system.
    static constexpr std::size_t maxResidentBytes = std::size_t{32} * 1024 * 1024;
    static constexpr std::size_t maxRetainedBytes = std::size_t{256} * 1024 * 1024;

    Pool() = default;
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    /// Fast path of allocate(): a small block from a free list or the current chunk, or null.
    void* allocateFast(std::size_t size) noexcept;

    /// Blocks that are allocated and not yet released.
    std::size_t blocksInUse() const { return blocksInUse_; }

    /// How often a block was released or reallocated that was free already. Such a call has no
    /// other effect.
    std::size_t wrongReleases() const { return wrongReleases_; }

    /// The size of all chunks.
    std::size_t chunkBytes() const;

    /// Makes the whole memory available again; no block may be in use. Chunks that were used since
    /// the last rewind are retained, within the limits above; all others are freed.
    void rewind() noexcept;

private:
    friend void* allocateSlow(Pool* pool, std::size_t size) noexcept;
    friend void* reallocate(Pool* pool, void* block, std::size_t size) noexcept;
    friend bool releaseToPool(void* block) noexcept;

    struct Chunk;
    struct FreeBlock {
        FreeBlock* next;
    };

    // Sizes are counted in units, including the header of half a unit. Each size of up to
    // `exactUnits` is a size class; larger sizes are rounded up to one of four classes between two
    // powers of two. Each class has a free list.
    static constexpr std::size_t unit = 16;
    static constexpr std::size_t headerSize = 8;
    static constexpr unsigned sizeBits = 16;
    // Set in the header of a free block. No block has so many units.
    static constexpr std::uint64_t freeMark = 0x8000;
    static constexpr std::size_t maxUnits = (largestBlock + headerSize) / unit;
    static_assert(maxUnits < freeMark, "The sizes leave room for the mark.");
    static constexpr std::size_t exactUnits = 64;
    static_assert(largestFastBlock == exactUnits * unit - headerSize,
                  "The fast path has exact sizes.");
    static constexpr std::size_t classCount = exactUnits + 1 + std::size_t{4} * 6;

    static constexpr std::size_t unitsOf(std::size_t size) {
        return (size + headerSize + unit - 1) / unit;
    }
    static std::uint64_t& headerOf(void* block) noexcept;
    static Pool& owner(std::uint64_t header) noexcept;
    static std::size_t unitsIn(std::uint64_t header) noexcept;
    static std::size_t roundedUnitsOf(std::size_t size);
    static std::size_t classOf(std::size_t units);

    void* popFree(FreeBlock*& list) noexcept;
    void pushFree(void* block, std::size_t units) noexcept;
    bool hasRoom(std::size_t units) const noexcept;
    void* carve(std::size_t units) noexcept;
    bool growInPlace(void* block, std::size_t units, std::size_t wantedUnits) noexcept;
    bool makeRoom(std::size_t units) noexcept;
    bool advanceToNextChunk() noexcept;
    static void freeChunk(Chunk*& link) noexcept;
    std::uint64_t header(std::size_t units) const noexcept;

    std::size_t blocksInUse_ = 0;
    std::size_t wrongReleases_ = 0;
    std::byte* cursor_ = nullptr;
    std::byte* end_ = nullptr;
    Chunk* first_ = nullptr;
    Chunk* current_ = nullptr;
    std::array<FreeBlock*, classCount> free_ = {};
};

inline void* Pool::popFree(FreeBlock*& list) noexcept {
    void* block = list;
    list = list->next;
    headerOf(block) ^= freeMark;
    ++blocksInUse_;
    return block;
}

inline bool Pool::hasRoom(std::size_t units) const noexcept {
    return static_cast<std::size_t>(end_ - cursor_) >= units * unit;
}

inline std::uint64_t& Pool::headerOf(void* block) noexcept {
    return *(static_cast<std::uint64_t*>(block) - 1);
}

inline Pool& Pool::owner(std::uint64_t header) noexcept {
    return *reinterpret_cast<Pool*>(header >> sizeBits);
}

inline std::size_t Pool::unitsIn(std::uint64_t header) noexcept {
    return static_cast<std::size_t>(header & ((std::uint64_t{1} << sizeBits) - 1));
}

inline std::uint64_t Pool::header(std::size_t units) const noexcept {
    return (reinterpret_cast<std::uint64_t>(this) << sizeBits) | units;
}

/// A new block from the rest of the current chunk, which has room for it.
inline void* Pool::carve(std::size_t units) noexcept {
    auto* start = reinterpret_cast<std::uint64_t*>(cursor_);
    *start = header(units);
    cursor_ += units * unit;
    ++blocksInUse_;
    return start + 1;
}

inline void* Pool::allocateFast(std::size_t size) noexcept {
    if (size > largestFastBlock) return nullptr;
    const std::size_t units = unitsOf(size);
    FreeBlock*& list = free_[units];
    if (list != nullptr) return popFree(list);
    return hasRoom(units) ? carve(units) : nullptr;
}

/// Slow path of allocate(), after allocateFast() has returned null.
void* allocateSlow(Pool* pool, std::size_t size) noexcept;

/// Like malloc. The block comes from `pool` if the size allows, from malloc if `pool` is null or
/// cannot grow. Null when memory is exhausted. Free it with release() only.
inline void* allocate(Pool* pool, std::size_t size) noexcept {
    void* block = pool != nullptr ? pool->allocateFast(size) : nullptr;
    return block != nullptr ? block : allocateSlow(pool, size);
}

/// Like realloc, for a block of these functions. A pool's block that has to move is allocated again
/// in `pool`; a block of malloc stays one. Null also for a free block, which its pool counts.
void* reallocate(Pool* pool, void* block, std::size_t size) noexcept;

/// Returns a block to the pool that owns it; a free block is only counted there. False when no pool
/// owns it: its header ends in two zero bytes.
bool releaseToPool(void* block) noexcept;

/// Like free, whichever pool owns the block.
void release(void* block) noexcept;

}  // namespace rgen::memory
