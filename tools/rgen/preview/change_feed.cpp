// SPDX-License-Identifier: MIT
#include "preview/change_feed.h"

namespace cli {

void ChangeFeed::announce() {
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_all();
}

void ChangeFeed::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
}

bool ChangeFeed::isClosed() const {
    const std::lock_guard lock(mutex_);
    return closed_;
}

std::uint64_t ChangeFeed::count() const {
    const std::lock_guard lock(mutex_);
    return count_;
}

std::uint64_t ChangeFeed::waitForMore(std::uint64_t known, std::chrono::milliseconds longest) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, longest, [&] { return closed_ || count_ > known; });
    return count_;
}

}  // namespace cli
