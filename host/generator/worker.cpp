// The thread of a worker shares its ownership, because it may be detached.
//
// SPDX-License-Identifier: MIT
#include "generator/worker.h"

#include <atomic>
#include <mutex>
#include <new>
#include <utility>

#include "generator/brief_wait.h"

namespace rgenh {
namespace {

using Lock = std::lock_guard<platform::Monitor>;

/// Enough for templates that call one another 3,000 levels deep.
constexpr std::size_t stackBytes = std::size_t{8} * 1024 * 1024;

/// In microseconds: a small report, and what a host does before the next one.
constexpr std::int64_t quickTask = 250;
constexpr std::int64_t quickHost = 100;
std::atomic_flag aHostWaitsBriefly = ATOMIC_FLAG_INIT;
std::atomic_flag aWorkerWaitsBriefly = ATOMIC_FLAG_INIT;

}  // namespace

Worker::Worker() : generator_(newGenerator()) {}

std::shared_ptr<Worker> Worker::start() {
    auto worker = std::make_shared<Worker>();
    auto owner = std::make_unique<std::shared_ptr<Worker>>(worker);
    if (!worker->thread_.start(runThread, owner.get(), stackBytes)) throw std::bad_alloc();
    static_cast<void>(owner.release());
    return worker;
}

void Worker::runThread(void* worker) {
    const std::unique_ptr<std::shared_ptr<Worker>> owner(
        static_cast<std::shared_ptr<Worker>*>(worker));
    (*owner)->runTasks();
}

void Worker::runTasks() noexcept {
    while (std::shared_ptr<Task> task = nextTask()) {
        const std::int64_t start = platform::monotonicMicroseconds();
        task->run();
        task.reset();
        isQuick_ = platform::monotonicMicroseconds() - start < quickTask;
        countTask();
        // A thread that is woken while the lock is held sleeps once more.
        state_.notifyAll();
    }
}

std::shared_ptr<Worker::Task> Worker::nextTask() noexcept {
    if (isQuick_) {
        waitBriefly(
            aWorkerWaitsBriefly, [this] { return isCalled_.load(); }, quickHost);
    }
    const Lock lock(state_);
    state_.waitUntil([this] { return task_ != nullptr || isStopped_; });
    isCalled_ = false;
    return std::move(task_);
}

void Worker::countTask() noexcept {
    const Lock lock(state_);
    ++endedTasks_;
}

std::uint64_t Worker::give(std::shared_ptr<Task> task) noexcept {
    std::uint64_t number = 0;
    {
        const Lock lock(state_);
        task_ = std::move(task);
        number = ++givenTasks_;
        isCalled_ = true;
    }
    state_.notifyAll();
    return number;
}

bool Worker::waitFor(std::uint64_t task, std::int64_t milliseconds) noexcept {
    const auto hasEnded = [&] { return endedTasks_.load() >= task; };
    if (milliseconds != 0 && isQuick_) waitBriefly(aHostWaitsBriefly, hasEnded, quickTask);
    const Lock lock(state_);
    return state_.waitUntil(hasEnded, milliseconds);
}

void Worker::stop() noexcept {
    const Lock lock(state_);
    isStopped_ = true;
    isCalled_ = true;
    state_.notifyAll();
}

WorkerPool::WorkerPool() : process_(platform::currentProcess()) {}

std::shared_ptr<Worker> WorkerPool::take() {
    {
        const Lock lock(state_);
        forgetWorkersOfParentProcess();
        if (idleCount_ > 0) return std::move(idle_[--idleCount_]);
    }
    return Worker::start();
}

bool WorkerPool::keep(const std::shared_ptr<Worker>& worker) noexcept {
    const Lock lock(state_);
    if (isClosed_ || idleCount_ == capacity) {
        worker->stop();
        return false;
    }
    idle_[idleCount_++] = worker;
    return true;
}

void WorkerPool::close() noexcept {
    Workers idle;
    {
        const Lock lock(state_);
        forgetWorkersOfParentProcess();
        isClosed_ = true;
        idleCount_ = 0;
        idle.swap(idle_);
    }
    for (const std::shared_ptr<Worker>& worker : idle) {
        if (worker == nullptr) continue;
        if (!worker->isTerminated()) worker->stop();
        worker->join();
    }
}

/// A process that was forked has none of its parent's threads. Their share of the ownership stays,
/// so that nothing waits for them in a destructor.
void WorkerPool::forgetWorkersOfParentProcess() noexcept {
    const std::uint64_t process = platform::currentProcess();
    if (process == process_) return;
    process_ = process;
    idleCount_ = 0;
    for (std::shared_ptr<Worker>& worker : idle_)
        worker.reset();
}

}  // namespace rgenh
