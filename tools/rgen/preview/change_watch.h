// Watches the files of the preview on a thread of its own.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace cli {

class ChangeWatch {
public:
    using Files = std::function<std::vector<std::string>()>;

    /// Calls `changed` on another thread whenever one of the files has changed that `files` returns
    /// then. Files need not exist.
    ChangeWatch(Files files, std::function<void()> changed);
    ~ChangeWatch();
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

private:
    void run();

    Files files_;
    std::function<void()> changed_;
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

}  // namespace cli
