#include "resultcache.h"

#include <algorithm>
#include <chrono>

namespace Host
{
namespace
{

constexpr std::chrono::milliseconds kLookAgain(5); // whether those that wait are cancelled

std::size_t bytesOf(const ResultCache::WorkResult& result)
{
    std::map<const Ondrel::Image*, std::size_t> images; // several outputs may be one image
    for (const Picture& picture : result.outputs) {
        if (picture.image)
            images[picture.image.get()] = std::size_t(picture.image->width) * picture.image->height * 8;
    }
    std::size_t sum = 256;
    for (const auto& [image, bytes] : images)
        sum += bytes;
    return sum;
}

} // namespace

ResultCache::Claim::~Claim()
{
    if (!m_work)
        return;
    const std::lock_guard lock(m_cache->m_mutex);
    m_cache->end(m_work, nullptr);
}

void ResultCache::Claim::finish(const ResultPtr& result)
{
    const WorkPtr work = std::move(m_work);
    const std::lock_guard lock(m_cache->m_mutex);
    if (result->errors.empty() && work->generation == m_cache->m_generation)
        m_cache->keep(work->key, result);
    m_cache->end(work, result);
}

ResultCache::ResultCache(std::size_t byteBudget)
    : m_budget(byteBudget)
{
}

ResultCache::Answer ResultCache::find(const Key& key, quint64 generation)
{
    const std::lock_guard lock(m_mutex);
    return look(key, generation);
}

ResultCache::Answer ResultCache::begin(const Key& key, quint64 generation, Claim& claim)
{
    const std::lock_guard lock(m_mutex);
    const Answer answer = look(key, generation);
    if (answer.result || answer.work)
        return answer;
    const auto work = std::make_shared<Work>();
    work->key = key;
    work->generation = generation;
    if (generation == m_generation)
        m_running[key] = work;
    claim.m_cache = this;
    claim.m_work = work;
    return answer;
}

ResultCache::Answer ResultCache::look(const Key& key, quint64 generation)
{
    if (generation != m_generation)
        return {};
    const auto kept = m_index.find(key);
    if (kept != m_index.end()) {
        m_entries.splice(m_entries.begin(), m_entries, kept->second);
        return {kept->second->result, nullptr};
    }
    const auto held = m_held.find(key);
    const ResultPtr result = held == m_held.end() ? nullptr : held->second.lock();
    if (result)
        return {result, nullptr};
    const auto running = m_running.find(key);
    return {nullptr, running == m_running.end() ? nullptr : running->second};
}

void ResultCache::await(const std::vector<WorkPtr>& works, const std::function<bool()>& isCancelled)
{
    const auto isOver = [](const WorkPtr& work) { return work->isOver; };
    std::unique_lock lock(m_mutex);
    while (std::none_of(works.begin(), works.end(), isOver) && !isCancelled())
        m_over.wait_for(lock, kLookAgain);
}

ResultCache::ResultPtr ResultCache::resultOf(const WorkPtr& work) const
{
    const std::lock_guard lock(m_mutex);
    return work->result;
}

void ResultCache::end(const WorkPtr& work, const ResultPtr& result)
{
    work->isOver = true;
    work->result = result;
    const auto running = m_running.find(work->key);
    if (running != m_running.end() && running->second == work)
        m_running.erase(running);
    m_over.notify_all();
}

void ResultCache::keep(const Key& key, const ResultPtr& result)
{
    if (m_held.size() >= m_lookThroughAt) {
        for (auto held = m_held.begin(); held != m_held.end();)
            held = held->second.expired() ? m_held.erase(held) : std::next(held);
        m_lookThroughAt = 2 * m_held.size() + 64;
    }
    m_held[key] = result;
    const std::size_t bytes = bytesOf(*result);
    m_entries.push_front({key, result, bytes});
    m_index[key] = m_entries.begin();
    m_bytes += bytes;
    dropOldest();
}

void ResultCache::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
    m_index.clear();
    m_bytes = 0;
}

quint64 ResultCache::generation() const
{
    const std::lock_guard lock(m_mutex);
    return m_generation;
}

void ResultCache::beginGeneration(const std::function<void()>& change)
{
    const std::lock_guard lock(m_mutex);
    if (change)
        change();
    ++m_generation;
    m_entries.clear();
    m_index.clear();
    m_held.clear();
    m_running.clear();
    m_bytes = 0;
}

void ResultCache::setByteBudget(std::size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    m_budget = bytes;
    dropOldest();
}

std::size_t ResultCache::byteBudget() const
{
    const std::lock_guard lock(m_mutex);
    return m_budget;
}

std::size_t ResultCache::bytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}

void ResultCache::dropOldest()
{
    while (m_bytes > m_budget && !m_entries.empty()) {
        m_bytes -= m_entries.back().bytes;
        m_index.erase(m_entries.back().key);
        m_entries.pop_back();
    }
}

} // namespace Host
