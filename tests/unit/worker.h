// SPDX-License-Identifier: MIT
// A thread for tests of what the daemon's threads do.
#pragma once

#include <QThread>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <utility>

/// A QThread that does one piece of work. Its end is announced by means of the standard library as
/// well, which the thread sanitizer understands: Qt's own means it does not see.
class Worker
{
public:
    explicit Worker(std::function<void()> work)
        : m_thread(QThread::create([this, work = std::move(work)] {
            work();
            m_done.set_value();
        }))
    {
    }

    QThread *thread() const { return m_thread.get(); }
    void start() { m_thread->start(); }

    /// Waits at most @p timeoutMs for the end of the work and of the thread.
    bool wait(int timeoutMs)
    {
        const auto limit = std::chrono::milliseconds(timeoutMs);
        return m_done.get_future().wait_for(limit) == std::future_status::ready
            && m_thread->wait(ulong(timeoutMs));
    }

private:
    std::promise<void> m_done;
    std::unique_ptr<QThread> m_thread;
};
