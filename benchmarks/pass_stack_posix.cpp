// The stack of a thread is painted before the work; what is no longer paint was used.
//
// SPDX-License-Identifier: MIT
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "pass_stack.h"

namespace benchmarks {
namespace {

constexpr std::size_t stackSize = std::size_t{8} * 1024 * 1024;
constexpr std::size_t pageSize = 4096;
constexpr unsigned char paint = 0xA5;

void* runWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

/// Bytes from the first one that is no longer paint to the end; -1 when there is no such thread.
long depthOf(std::function<void()> work) {
    const std::unique_ptr<void, decltype(&std::free)> stack(std::aligned_alloc(pageSize, stackSize),
                                                            std::free);
    auto* const lowest = static_cast<unsigned char*>(stack.get());
    if (lowest == nullptr) return -1;
    std::fill_n(lowest, stackSize, paint);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, lowest, stackSize);
    pthread_t thread{};
    const bool started = pthread_create(&thread, &attributes, runWork, &work) == 0;
    if (started) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    if (!started) return -1;
    const auto* const used =
        std::find_if(lowest, lowest + stackSize, [](unsigned char byte) { return byte != paint; });
    return static_cast<long>(lowest + stackSize - used);
}

}  // namespace

long stackUsedBy(const std::function<void()>& work) {
    const long idle = depthOf([] {});
    const long busy = depthOf(work);
    return idle < 0 || busy < 0 ? -1 : std::max(busy - idle, 0L);
}

}  // namespace benchmarks
