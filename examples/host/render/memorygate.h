#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

// Lets work begin while the memory that it will need, all together, is within a bound.
class MemoryGate
{
public:
    explicit MemoryGate(std::size_t bound) // 0: none
        : m_bound(bound)
    {
    }

    // Waits until there is room. False if there never will be.
    bool enter(std::size_t bytes)
    {
        std::unique_lock lock(m_mutex);
        if (m_bound == 0)
            return true;
        if (bytes > m_bound)
            return false;
        m_changed.wait(lock, [&] { return bytes <= m_bound - m_used; });
        m_used += bytes;
        return true;
    }

    void leave(std::size_t bytes)
    {
        const std::lock_guard lock(m_mutex);
        if (m_bound != 0)
            m_used -= bytes;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_bound;
    std::size_t m_used = 0;
};
