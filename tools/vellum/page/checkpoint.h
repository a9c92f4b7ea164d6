// Lets long work on a page check regularly whether it was cancelled or its time is up.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace vellum {

/// Calls a function after each 64 KiB of work. The function throws a Failure to end the work.
class Checkpoint {
public:
    static constexpr std::size_t interval = 65536;

    explicit Checkpoint(std::function<void()> check) : check_(std::move(check)) {}

    /// To be called after work on so many bytes.
    void processed(std::size_t bytes) {
        done_ += bytes;
        if (done_ < interval) return;
        done_ = 0;
        check_();
    }

    /// Calls the function now.
    void check() const { check_(); }

private:
    std::function<void()> check_;
    std::size_t done_ = 0;
};

}  // namespace vellum
