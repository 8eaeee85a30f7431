#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <future>

// To be opened once, by any thread; any number of threads wait for it. After a minute they go on, with a failure.
class Gate
{
public:
    void open() { m_promise.set_value(); }
    void pass() { EXPECT_EQ(m_future.wait_for(std::chrono::minutes(1)), std::future_status::ready); }

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_future = m_promise.get_future().share();
};
