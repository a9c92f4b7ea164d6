// SPDX-License-Identifier: MIT
#include "preview/page_store.h"

#include <algorithm>

#include "base/input_file.h"

namespace cli {
namespace {

constexpr std::size_t recentPages = 32;

/// A page in another encoding names it itself.
std::string contentTypeOf(const std::string& format, const std::string& bytes) {
    const std::string type = format == "txt" ? "text/plain" : "text/html";
    return isPlainUtf8(bytes) ? type + "; charset=utf-8" : type;
}

}  // namespace

std::uint64_t PageStore::add(const std::string& view, const std::string& format,
                             std::string bytes) {
    const std::lock_guard lock(mutex_);
    std::shared_ptr<const StoredPage>& last = last_[view];
    if (last && last->bytes == bytes) return last->number;
    const std::string type = contentTypeOf(format, bytes);
    last = std::make_shared<StoredPage>(StoredPage{++count_, type, std::move(bytes)});
    recent_.push_back(last);
    if (recent_.size() > recentPages) recent_.pop_front();
    return count_;
}

std::uint64_t PageStore::lastOf(const std::string& view) const {
    const std::lock_guard lock(mutex_);
    const auto found = last_.find(view);
    return found == last_.end() || !found->second ? 0 : found->second->number;
}

std::shared_ptr<const StoredPage> PageStore::find(std::uint64_t number) const {
    const std::lock_guard lock(mutex_);
    for (const auto& page : recent_) {
        if (page->number == number) return page;
    }
    for (const auto& [view, page] : last_) {
        if (page && page->number == number) return page;
    }
    return nullptr;
}

}  // namespace cli
