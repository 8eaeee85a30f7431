#include <ondrel/core/runtimestatistics.h>

#include <type_traits>

// Images with static storage are destroyed late and still count: the counters must never be destroyed.
static_assert(std::is_trivially_destructible_v<RunTimeStatistics>);

RunTimeStatistics& RunTimeStatistics::Instance()
{
    static RunTimeStatistics statistics;
    return statistics;
}

std::uint64_t RunTimeStatistics::Get(Statistic s)
{
    return Instance().m_counters[s].load();
}

void RunTimeStatistics::Add(Statistic s, unsigned long n)
{
    Instance().m_counters[s].fetch_add(n);
}

void RunTimeStatistics::Subtract(Statistic s, unsigned long n)
{
    Instance().m_counters[s].fetch_sub(n);
}
