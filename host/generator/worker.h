// Threads that run one report after another, each with a generator of its own. Starting a thread
// and creating a generator cost more than the rest of a small job does.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "generator/owned_generator.h"
#include "platform/host_platform.h"

namespace rgenh {

/// A thread with a generator.
class Worker {
public:
    /// What a worker does. Its thread owns the task until it has run.
    class Task {
    public:
        Task() = default;
        virtual ~Task() = default;
        Task(const Task&) = delete;
        Task& operator=(const Task&) = delete;

        virtual void run() noexcept = 0;
    };

    /// Starts the thread. Throws std::bad_alloc if there can be none.
    static std::shared_ptr<Worker> start();
    Worker();
    ~Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    RgenReportGenerator* generator() const noexcept { return generator_.get(); }

    /// Runs a task, after the one that is running if there is one. Returns the task's number.
    std::uint64_t give(std::shared_ptr<Task> task) noexcept;
    /// Waits until a task has run and the thread does not own it any more; a negative time has no
    /// end. Returns whether it has.
    bool waitFor(std::uint64_t task, std::int64_t milliseconds) noexcept;

    /// Lets the thread end as soon as it has no task.
    void stop() noexcept;
    /// Whether the system has ended the idle thread, which may have held a lock.
    bool isTerminated() const noexcept { return thread_.isTerminated(); }
    /// After stop(): waits until the thread has ended. Call once, on another thread.
    void join() noexcept { thread_.join(); }
    /// After stop(), in place of join().
    void detach() noexcept { thread_.detach(); }

private:
    static void runThread(void* worker);
    void runTasks() noexcept;
    std::shared_ptr<Task> nextTask() noexcept;
    void countTask() noexcept;

    const OwnedGenerator generator_;
    platform::Thread thread_;
    /// Guards everything below.
    platform::Monitor state_;
    std::shared_ptr<Task> task_;
    std::uint64_t givenTasks_ = 0;
    bool isStopped_ = false;
    /// Read without the lock, too.
    ///@{
    std::atomic<std::uint64_t> endedTasks_{0};
    /// Whether there is a task, or the thread must stop.
    std::atomic<bool> isCalled_{false};
    /// Whether the last task took so little time that nobody should sleep before the next one ends.
    std::atomic<bool> isQuick_{false};
    ///@}
};

/// The idle workers of one generator of the host.
class WorkerPool {
public:
    /// As many as this stay idle. Each needs the memory of a generator and of a used stack.
    static constexpr std::size_t capacity = 4;

    WorkerPool();

    /// Returns a worker without a task, a new one if none is idle. Throws std::bad_alloc.
    std::shared_ptr<Worker> take();

    /// Returns a worker to the pool, which stops it if it has enough or is closed. Returns whether
    /// the worker stays; if not, its thread must be joined or detached.
    bool keep(const std::shared_ptr<Worker>& worker) noexcept;

    /// Ends the idle workers. Those that come back later are stopped.
    void close() noexcept;

private:
    using Workers = std::array<std::shared_ptr<Worker>, capacity>;

    void forgetWorkersOfParentProcess() noexcept;

    /// Guards everything below.
    platform::Monitor state_;
    std::uint64_t process_;
    Workers idle_;
    std::size_t idleCount_ = 0;
    bool isClosed_ = false;
};

}  // namespace rgenh
