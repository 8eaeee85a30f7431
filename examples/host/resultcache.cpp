#include "resultcache.h"

#include <map>

namespace Host
{
namespace
{

std::size_t bytesOf(const Result& result)
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

ResultCache::ResultCache(std::size_t byteBudget)
    : m_budget(byteBudget)
{
}

bool ResultCache::find(const QByteArray& key, Result& result)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_index.find(key.toStdString());
    if (found == m_index.end())
        return false;
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    result = found->second->result;
    return true;
}

void ResultCache::insert(const QByteArray& key, const Result& result)
{
    const std::lock_guard lock(m_mutex);
    if (m_index.count(key.toStdString()) != 0)
        return;
    const std::size_t bytes = bytesOf(result);
    m_entries.push_front({key, result, bytes});
    m_index[key.toStdString()] = m_entries.begin();
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
        m_index.erase(m_entries.back().key.toStdString());
        m_entries.pop_back();
    }
}

} // namespace Host
