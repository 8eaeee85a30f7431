#pragma once

#include <ondrel/ondrel_export.h>

#include <cstdint>
class ONDREL_EXPORT RunTimeStatistics
{
public:
    enum Statistic : unsigned int { ImageMemory = 0 };
    static RunTimeStatistics& Instance();
    static std::uint64_t Get(Statistic s);
    static void Add(Statistic s, unsigned long n);
    static void Subtract(Statistic s, unsigned long n);
};
