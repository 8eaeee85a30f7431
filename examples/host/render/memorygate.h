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

    // Waits until there is room for `after` bytes in place of the `before` ones that the caller holds. False, and all
    // is as it was, if there never will be. Of those that hold something, one at a time may wait for more.
    bool change(std::size_t before, std::size_t after)
    {
        std::unique_lock lock(m_mutex);
        if (m_bound == 0)
            return true;
        if (after > m_bound)
            return false;
        m_changed.wait(lock, [&] { return after <= m_bound - (m_used - before); });
        m_used = m_used - before + after;
        m_changed.notify_all();
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_bound;
    std::size_t m_used = 0;
};
