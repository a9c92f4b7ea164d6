// The pages that browsers can load: the latest of each view and some earlier ones.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace cli {

struct StoredPage {
    std::uint64_t number = 0;
    std::string contentType;
    std::string bytes;
};

/// May be used by several threads at once.
class PageStore {
public:
    /// Stores a page as the last good one of a view; returns its number. A page that has not
    /// changed keeps its number.
    std::uint64_t add(const std::string& view, const std::string& format, std::string bytes);

    /// The last good page of a view; 0 when there is none.
    std::uint64_t lastOf(const std::string& view) const;

    /// The page with this number, or null when it is no longer stored.
    std::shared_ptr<const StoredPage> find(std::uint64_t number) const;

private:
    mutable std::mutex mutex_;
    std::uint64_t count_ = 0;
    std::map<std::string, std::shared_ptr<const StoredPage>> last_;
    /// A browser may still be loading these when the next one is made.
    std::deque<std::shared_ptr<const StoredPage>> recent_;
};

}  // namespace cli
