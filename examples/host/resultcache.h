#pragma once

#include "plugininterface.h"

#include <QByteArray>

#include <cstddef>
#include <list>
#include <mutex>
#include <unordered_map>

namespace Host
{

// Results of nodes under a budget of bytes; the least recently used go first. Any thread.
class ResultCache
{
public:
    explicit ResultCache(std::size_t byteBudget);

    bool find(const QByteArray& key, Result& result); // and makes it the most recently used
    void insert(const QByteArray& key, const Result& result);
    void clear();
    void setByteBudget(std::size_t bytes);
    std::size_t byteBudget() const;
    std::size_t bytes() const; // of the pixels of all results; those of an image in two results count twice

private:
    struct Entry {
        QByteArray key;
        Result result;
        std::size_t bytes;
    };
    void dropOldest();

    mutable std::mutex m_mutex;
    std::size_t m_budget;
    std::size_t m_bytes = 0;
    std::list<Entry> m_entries; // the most recently used first
    std::unordered_map<std::string, std::list<Entry>::iterator> m_index;
};

} // namespace Host
