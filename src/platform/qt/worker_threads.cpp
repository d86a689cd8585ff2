#include "platform/qt/worker_threads.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace korvel {

WorkerThreads::WorkerThreads(size_t max, Make m) : maxThreads(max), make(std::move(m)) {}

WorkerThreads::~WorkerThreads() {
    finish();
    for (Worker &worker : workers)
        worker.thread.join();
}

std::thread WorkerThreads::makeThread(std::function<void()> f) { return std::thread(std::move(f)); }

bool WorkerThreads::start(Job &job) {
    join();
    const std::lock_guard lock(mutex);
    if (busy() >= maxThreads) { // a busy thread takes it before it ends
        queue.push_back(std::move(job));
        return true;
    }
    // The job moves only after the thread exists, so a failed creation does not lose it.
    const auto handed = std::make_shared<Job>();
    Worker &self = workers.emplace_back();
    try {
        self.thread = make([this, &self, handed] { run(self, *handed); });
    } catch (const std::system_error &) {
        workers.pop_back();
        return false;
    }
    *handed = std::move(job);
    return true;
}

void WorkerThreads::run(Worker &self, Job &first) {
    std::unique_lock lock(mutex); // start() holds the lock until the job has moved
    Job job = std::move(first);
    while (!self.ended) {
        lock.unlock();
        job.work();
        job.work = nullptr;
        lock.lock();
        auto done = std::move(job.done);
        self.ended = queue.empty();
        if (!self.ended) {
            job = std::move(queue.front());
            queue.pop_front();
        }
        lock.unlock();
        done();
        done = nullptr;
        lock.lock();
    }
}

void WorkerThreads::join() {
    std::list<Worker> ended;
    {
        const std::lock_guard lock(mutex);
        for (auto worker = workers.begin(); worker != workers.end();) {
            const auto next = std::next(worker);
            if (worker->ended)
                ended.splice(ended.end(), workers, worker);
            worker = next;
        }
    }
    for (Worker &worker : ended)
        worker.thread.join();
}

bool WorkerThreads::finish() {
    join();
    std::deque<Job> dropped; // destroyed after the lock is released: job captures may call back
    const std::lock_guard lock(mutex);
    dropped.swap(queue);
    return busy() == 0;
}

size_t WorkerThreads::busy() const {
    return static_cast<size_t>(
        std::count_if(workers.begin(), workers.end(), [](const Worker &worker) { return !worker.ended; }));
}

} // namespace korvel
