#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

// Functions that run together for a while, to show that they may.
namespace OndrelTest
{

// How long a stress runs: 60 seconds where ONDREL_STRESS_SECONDS asks for it, two otherwise.
inline int stressSeconds()
{
    return qEnvironmentVariableIsSet("ONDREL_STRESS_SECONDS") ? qEnvironmentVariableIntValue("ONDREL_STRESS_SECONDS")
                                                              : 2;
}

// Repeats each job on a thread of its own; meanwhile(), over and over, is for the calling thread.
inline void runTogether(
    const std::vector<std::function<void()>>& jobs,
    const std::function<void()>& meanwhile = [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); })
{
    QElapsedTimer timer;
    timer.start();
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (const auto& job : jobs)
        threads.emplace_back([&stop, job] {
            while (!stop)
                job();
        });
    while (timer.elapsed() < stressSeconds() * 1000)
        meanwhile();
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace OndrelTest
