// Memory for the many small, short-lived blocks of one piece of work, such as one report. The
// blocks of the C heap that lie between them are handled here, too: a block says itself whose it
// is.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "memory/malloc_allocated.h"

namespace rgen::memory {

/// Blocks of up to `largestBlock` bytes, cut from chunks of the C heap. A block that is released is
/// the next one of its size, as the pool rounds it, to be handed out. Used by one thread at a time.
class Pool : public MallocAllocated {
public:
    /// Larger blocks come from the C heap, which can grow them in place.
    static constexpr std::size_t largestBlock = std::size_t{64} * 1024 - 8;
    /// rewind() frees chunks beyond `mostKept` bytes and offers pages beyond `mostHeld` bytes to
    /// the system.
    static constexpr std::size_t mostHeld = std::size_t{32} * 1024 * 1024;
    static constexpr std::size_t mostKept = std::size_t{256} * 1024 * 1024;

    Pool() = default;
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    /// Blocks that are handed out and not yet released.
    std::size_t blocksInUse() const { return blocksInUse_; }

    /// How often a block was released or grown that had been released before. Such a call changes
    /// nothing else: the block stays free and is counted once.
    std::size_t wrongReleases() const { return wrongReleases_; }

    /// Bytes of all chunks.
    std::size_t bytesKept() const;

    /// From now on, until rewind(), the pool has nothing for a thread whose stack reaches below
    /// `lowest`.
    void needStackAbove(const char* lowest) { lowestStack_ = lowest; }
    bool stackIsShort() const noexcept;

    /// How often its user was told that memory is exhausted; whoever tells it counts it here.
    std::size_t failures() const { return failures_; }
    void noteFailure() { ++failures_; }

    /// Whether a reserve stands in where this pool and the C heap have nothing; rewind() ends that.
    bool hasReserve() const { return hasReserve_; }
    void setReserve(bool hasReserve) { hasReserve_ = hasReserve; }

    /// Starts anew; no block may be in use. The chunks that were used since the last time stay, up
    /// to `mostKept` bytes, and beyond the first `mostHeld` bytes the system may take their pages
    /// whenever it needs them. Everything else goes back at once.
    void rewind() noexcept;

private:
    friend void* allocateAtHand(Pool& pool, std::size_t size) noexcept;
    friend void* allocateOtherwise(Pool* pool, std::size_t size) noexcept;
    friend void* reallocate(Pool* pool, void* block, std::size_t size) noexcept;
    friend bool releaseToPool(void* block) noexcept;

    struct Chunk;
    struct FreeBlock {
        FreeBlock* next;
    };

    // Sizes are counted in units, the block's header of half a unit included. Each size up to
    // `exactUnits` has a free list; larger ones are rounded up to one of four sizes between two
    // powers of two, which have a free list each.
    static constexpr std::size_t unit = 16;
    static constexpr std::size_t headerSize = 8;
    static constexpr unsigned sizeBits = 16;
    // Set in the header of a block that waits in a free list. No block has so many units.
    static constexpr std::uint64_t freeMark = 0x8000;
    static constexpr std::size_t mostUnits = (largestBlock + headerSize) / unit;
    static_assert(mostUnits < freeMark, "The sizes leave room for the mark.");
    static constexpr std::size_t exactUnits = 64;
    static constexpr std::size_t largestExactBlock = exactUnits * unit - headerSize;
    static constexpr std::size_t listCount = exactUnits + 1 + std::size_t{4} * 6;

    static constexpr std::size_t unitsOf(std::size_t size) {
        return (size + headerSize + unit - 1) / unit;
    }
    static std::uint64_t& headerOf(void* block) noexcept;
    static Pool& owner(std::uint64_t header) noexcept;
    static std::size_t unitsIn(std::uint64_t header) noexcept;
    static std::size_t roundedUnitsOf(std::size_t size);
    static std::size_t listOf(std::size_t units);

    void* take(FreeBlock*& list) noexcept;
    bool hasRoom(std::size_t units) const noexcept;
    void* cut(std::size_t units) noexcept;
    void give(void* block, std::size_t units) noexcept;
    bool growLast(void* block, std::size_t units, std::size_t wantedUnits) noexcept;
    bool makeRoom(std::size_t units) noexcept;
    bool nextChunk() noexcept;
    static void drop(Chunk*& link) noexcept;
    std::uint64_t header(std::size_t units) const noexcept;

    std::size_t blocksInUse_ = 0;
    std::size_t failures_ = 0;
    std::size_t wrongReleases_ = 0;
    std::byte* cursor_ = nullptr;
    std::byte* end_ = nullptr;
    const char* lowestStack_ = nullptr;
    bool hasReserve_ = false;
    Chunk* first_ = nullptr;
    Chunk* current_ = nullptr;
    std::array<FreeBlock*, listCount> free_ = {};
};

inline void* Pool::take(FreeBlock*& list) noexcept {
    void* block = list;
    list = list->next;
    headerOf(block) ^= freeMark;
    ++blocksInUse_;
    return block;
}

inline bool Pool::hasRoom(std::size_t units) const noexcept {
    return static_cast<std::size_t>(end_ - cursor_) >= units * unit;
}

inline bool Pool::stackIsShort() const noexcept {
    return static_cast<const char*>(__builtin_frame_address(0)) < lowestStack_;
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

inline void* Pool::cut(std::size_t units) noexcept {
    auto* start = reinterpret_cast<std::uint64_t*>(cursor_);
    *start = header(units);
    cursor_ += units * unit;
    ++blocksInUse_;
    return start + 1;
}

/// A small block that `pool` has at hand; null when there is none, or the stack is short.
inline void* allocateAtHand(Pool& pool, std::size_t size) noexcept {
    if (size > Pool::largestExactBlock || pool.stackIsShort()) return nullptr;
    const std::size_t units = Pool::unitsOf(size);
    Pool::FreeBlock*& list = pool.free_[units];
    if (list != nullptr) return pool.take(list);
    return pool.hasRoom(units) ? pool.cut(units) : nullptr;
}

/// The rest of allocate(), for when nothing is at hand.
void* allocateOtherwise(Pool* pool, std::size_t size) noexcept;

/// As `malloc`, from `pool` where the size allows; from the C heap when `pool` is null or cannot
/// grow. Null when memory is exhausted, or the stack that `pool` asks for. Goes back through
/// release() only.
inline void* allocate(Pool* pool, std::size_t size) noexcept {
    void* block = pool != nullptr ? allocateAtHand(*pool, size) : nullptr;
    return block != nullptr ? block : allocateOtherwise(pool, size);
}

/// As `realloc`, for a block of this file. A block of a pool that has to move goes to `pool`; one
/// of the C heap stays there. Null also for a block that is free already, which its pool notes.
void* reallocate(Pool* pool, void* block, std::size_t size) noexcept;

/// Gives a block back to its pool, whichever pool is in use; one that is free already is only noted
/// there. False when no pool owns it: the eight bytes before it end in two zero bytes.
bool releaseToPool(void* block) noexcept;

/// As `free`. A block of a pool goes back to that pool, whichever pool is in use.
void release(void* block) noexcept;

}  // namespace rgen::memory
