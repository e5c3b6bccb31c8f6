#pragma once

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <utility>

namespace util {

// Has the work done in the program's second thread, one piece after the other. Where there is no such thread,
// never.
void RunAside(std::function<void()> work);

// A value that the second thread makes while the first goes on. What makes it must touch nothing that
// anything else touches: no counted object, no log, no script; so it is given copies.
template <class T>
class Ahead {
  public:
    Ahead() = default;
    explicit Ahead(std::function<T()> make) : m_job(std::make_shared<Job>(std::move(make))) {
        RunAside([job = m_job] { job->Run(); });
    }
    Ahead(Ahead&&) noexcept = default;
    Ahead& operator=(Ahead&& other) noexcept {
        Cancel();
        m_job = std::move(other.m_job);
        return *this;
    }
    ~Ahead() { Cancel(); }

    bool IsEmpty() const { return !m_job; }

    // Once. Waits while it is being made; if nobody has begun, the caller makes it. Throws what making it
    // threw.
    T Take() {
        const std::shared_ptr<Job> job = std::move(m_job);
        job->Run();
        return job->value.get();
    }

  private:
    struct Job {
        explicit Job(std::function<T()> make) : task(std::move(make)), value(task.get_future()) {}

        void Run() {
            if (!isBegun.exchange(true)) task();
        }

        std::packaged_task<T()> task;
        std::future<T> value;
        std::atomic<bool> isBegun{false};
    };

    // What nobody has begun is not made.
    void Cancel() {
        if (m_job) m_job->isBegun = true;
    }

    std::shared_ptr<Job> m_job;
};

}  // namespace util
