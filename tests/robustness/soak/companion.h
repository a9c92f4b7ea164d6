// A thread that lives through a whole soak and does one job at a time beside the main thread.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SOAK_COMPANION_H
#define RGEN_TESTS_SOAK_COMPANION_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace rgen_test {

class Companion {
public:
    Companion() : thread_([this] { work(); }) {}
    ~Companion() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            ended_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    // Gives the thread a job; the one before must be finished.
    void begin(std::function<void()> job) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            job_ = std::move(job);
        }
        changed_.notify_all();
    }

    // Waits for the end of the job.
    void finish() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return !job_; });
    }

private:
    void work() {
        std::unique_lock<std::mutex> lock(mutex_);
        while (true) {
            changed_.wait(lock, [this] { return job_ || ended_; });
            if (!job_) return;
            lock.unlock();
            job_();
            lock.lock();
            job_ = nullptr;
            changed_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> job_;
    bool ended_ = false;
    std::thread thread_;
};

}  // namespace rgen_test

#endif
