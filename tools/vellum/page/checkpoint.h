// Where long work on a page looks up: the deadline and a cancellation count from the start of the
// program, not from that of the engine.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace vellum {

/// Calls a function again and again while work goes on. The function throws a Failure to end it.
class Checkpoint {
public:
    /// So many bytes of work are done between two looks.
    static constexpr std::size_t interval = 65536;

    explicit Checkpoint(std::function<void()> look) : look_(std::move(look)) {}

    /// Says that work on so many bytes was done.
    void passed(std::size_t bytes) {
        done_ += bytes;
        if (done_ < interval) return;
        done_ = 0;
        look_();
    }

    void look() const { look_(); }

private:
    std::function<void()> look_;
    std::size_t done_ = 0;
};

}  // namespace vellum
