#include "util/Ahead.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace util {

namespace {

class Worker {
  public:
    void Add(std::function<void()> work) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (!m_isStarted) Start();
            m_queue.push_back(std::move(work));
        }
        m_wake.notify_one();
    }

  private:
    // On failure the queue just grows; all that stands in it is done by whoever needs it.
    void Start() {
        m_isStarted = true;
        try {
            std::thread([this] { Loop(); }).detach();
        } catch (const std::system_error&) {
            return;
        }
    }

    [[noreturn]] void Loop() {
        for (;;) Next()();
    }

    std::function<void()> Next() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait(lock, [this] { return !m_queue.empty(); });
        std::function<void()> work = std::move(m_queue.front());
        m_queue.pop_front();
        return work;
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_queue;
    bool m_isStarted = false;
};

}  // namespace

void RunAside(std::function<void()> work) {
    static Worker& s_worker = *new Worker;  // abandoned at exit, with its thread
    s_worker.Add(std::move(work));
}

}  // namespace util
