// Tells browsers that a file has changed.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace cli {

/// May be used by several threads at once.
class ChangeFeed {
public:
    /// A file has changed.
    void announce();

    /// Nobody waits any more from now on.
    void close();
    bool isClosed() const;

    /// The number of changes so far.
    std::uint64_t count() const;

    /// Waits, at most `longest`, until there were more than `known` changes or the feed is closed;
    /// returns the number of changes.
    std::uint64_t waitForMore(std::uint64_t known, std::chrono::milliseconds longest);

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t count_ = 0;
    bool closed_ = false;
};

}  // namespace cli
