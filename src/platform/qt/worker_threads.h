#pragma once

#include "base/unique_function.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace korvel {

/// Threads for blocking work, up to a maximum. A thread ends when there is no more work. All operations are called on
/// the same thread.
class WorkerThreads {
public:
    struct Job {
        UniqueFunction<void()> work;
        UniqueFunction<void()> done; ///< Runs after `work` on its thread; a join() in response also joins that thread.
    };
    /// Creates a thread that runs `f`; throws std::system_error on failure.
    using Make = std::function<std::thread(std::function<void()> f)>;
    static std::thread makeThread(std::function<void()> f);

    explicit WorkerThreads(size_t maxThreads, Make make);
    /// Discards jobs that have not started and waits for the others.
    ~WorkerThreads();

    /// Starts `job`, or queues it while all threads are busy, and moves from it. False if no thread can be created:
    /// `job` is unchanged.
    bool start(Job &job);
    /// Joins threads that have ended.
    void join();
    /// Discards jobs that have not started; true if none is running.
    bool finish();

private:
    struct Worker {
        std::thread thread;
        bool ended = false; ///< Takes no more jobs.
    };
    void run(Worker &self, Job &first);
    size_t busy() const; ///< The mutex must be held.

    const size_t maxThreads;
    const Make make;
    std::mutex mutex; ///< Guards the members below.
    std::deque<Job> queue;
    std::list<Worker> workers;
};

} // namespace korvel
