#pragma once

#include "plugininterface.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace Host
{

// Results of nodes under a budget of bytes; the least recently used go first. What one evaluation computes, others that
// run at the same time wait for, and what any of them still holds is found beyond the budget too. What has errors
// behind it is not kept: who found it would take it for good. Any thread.
//
// Results may depend on more than their keys say, such as the settings of the display. Who changes that begins a new
// generation: those who ask with the number of an earlier one find nothing and leave nothing.
class ResultCache
{
public:
    using Key = std::string;

    struct WorkResult {
        QHash<QString, Picture> outputs; // by field
        // Of the work and of all work behind it, by keys: these are the same in every graph that has the work, as what
        // is behind it is a part of its own key, while nodes have other numbers in another graph.
        std::map<Key, QString> errors;
    };
    using ResultPtr = std::shared_ptr<const WorkResult>;

    // A result that one evaluation computes, and others may wait for.
    class Work
    {
        friend class ResultCache;
        Key key;
        quint64 generation = 0;
        bool isOver = false;
        ResultPtr result; // null if it was given up
    };
    using WorkPtr = std::shared_ptr<Work>;

    // The right and duty to compute a result, given up at the end unless it is finished.
    class Claim
    {
    public:
        Claim() = default;
        ~Claim();
        Claim(const Claim&) = delete;
        Claim& operator=(const Claim&) = delete;

        // Hands the result to all that wait. One with errors is for them alone.
        void finish(const ResultPtr& result);

    private:
        friend class ResultCache;
        ResultCache* m_cache = nullptr;
        WorkPtr m_work;
    };

    // One of them, or neither.
    struct Answer {
        ResultPtr result;
        WorkPtr work; // another evaluation computes it
    };

    explicit ResultCache(std::size_t byteBudget);

    // Makes what it finds the most recently used.
    Answer find(const Key& key, quint64 generation);
    // With neither result nor work, `claim` is the caller's.
    Answer begin(const Key& key, quint64 generation, Claim& claim);
    // Waits until one of them is over, or `isCancelled` says so, which is asked every few milliseconds.
    void await(const std::vector<WorkPtr>& works, const std::function<bool()>& isCancelled);
    // Of work that is over; null if it was given up, and as long as it is not over.
    ResultPtr resultOf(const WorkPtr& work) const;

    void clear(); // what is being computed is kept nevertheless
    quint64 generation() const;
    // `change` makes the change, while no number can be asked for: who has one of before finds it outdated, and who
    // gets one afterwards sees all of the change. It must not use the cache.
    void beginGeneration(const std::function<void()>& change = {});

    void setByteBudget(std::size_t bytes);
    std::size_t byteBudget() const;
    std::size_t bytes() const; // of the pixels of all results; those of an image in two results count twice

private:
    struct Entry {
        Key key;
        ResultPtr result;
        std::size_t bytes;
    };
    // All of these expect the mutex to be held.
    Answer look(const Key& key, quint64 generation);
    void end(const WorkPtr& work, const ResultPtr& result);
    void keep(const Key& key, const ResultPtr& result);
    void dropOldest();

    mutable std::mutex m_mutex;
    std::condition_variable m_over; // some work is
    quint64 m_generation = 0;
    std::size_t m_budget;
    std::size_t m_bytes = 0;
    std::list<Entry> m_entries; // the most recently used first
    std::unordered_map<Key, std::list<Entry>::iterator> m_index;
    std::unordered_map<Key, std::weak_ptr<const WorkResult>> m_held; // by someone; looked through when it has grown
    std::size_t m_lookThroughAt = 64;
    std::unordered_map<Key, WorkPtr> m_running;
};

} // namespace Host
