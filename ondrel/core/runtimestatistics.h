#pragma once

#include <ondrel/ondrel_export.h>

#include <atomic>
#include <cstdint>

// Counters of the whole process, one for each value of Statistic, starting at 0. Every function may be called from any
// thread; the counters are sequentially consistent atomics.
class ONDREL_EXPORT RunTimeStatistics
{
public:
    enum Statistic : unsigned int {
        ImageMemory = 0 // bytes of pixel memory that are mapped for all Ondrel::Image objects
    };

    static RunTimeStatistics& Instance();

    // The present value of the counter.
    static std::uint64_t Get(Statistic s);

    // Adds n to the counter, or subtracts n from it.
    static void Add(Statistic s, unsigned long n);
    static void Subtract(Statistic s, unsigned long n);

private:
    std::atomic<std::uint64_t> m_counters[1] = {};
};
