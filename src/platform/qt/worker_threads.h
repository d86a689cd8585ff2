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

/// Threads for work that blocks: each is there while there is work for it, at most so many at once. Every operation is
/// called on one and the same thread.
class WorkerThreads {
public:
    struct Job {
        UniqueFunction<void()> work;
        UniqueFunction<void()>
            done; ///< Runs after `work` on its thread; join() in reply leaves no ended thread behind.
    };
    /// Makes a thread that runs `f`; throws std::system_error when there is none to be had.
    using Make = std::function<std::thread(std::function<void()> f)>;
    static std::thread makeThread(std::function<void()> f);

    explicit WorkerThreads(size_t maxThreads, Make make);
    /// Drops jobs that have not begun and waits for the others.
    ~WorkerThreads();

    /// Begins `job`, or queues it while all threads are busy, and takes it. False when no thread can be had: then `job`
    /// stays with the caller.
    bool start(Job &job);
    /// Lets go of threads that have ended.
    void join();
    /// Drops jobs that have not begun; true when none is under way any more.
    bool finish();

private:
    struct Worker {
        std::thread thread;
        bool ended = false; ///< It takes no more jobs.
    };
    void run(Worker &self, Job &first);
    size_t busy() const; ///< Called with the mutex held.

    const size_t maxThreads;
    const Make make;
    std::mutex mutex; ///< Of what follows.
    std::deque<Job> queue;
    std::list<Worker> workers;
};

} // namespace korvel
