#pragma once

#include <QObject>
#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace Host
{

// Runs what blocks away from the user-interface thread, one after the other or beside each other as threads are free,
// and comes back with the result.
class Worker : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~Worker() override; // waits for all that runs; what would come back then does not

    // `work` runs on another thread and gives what is to be done afterwards on this one. If it throws, for which memory
    // may have been too short, `otherwise` is called here instead, with a sentence about why; where there is none,
    // failed() is emitted.
    void run(std::function<std::function<void()>()> work, std::function<void(const QString& reason)> otherwise = {});
    bool isBusy() const { return m_waiting > 0; }

Q_SIGNALS:
    void failed(QString reason);

private:
    std::function<void()> resultOf(const std::function<std::function<void()>()>& work,
                                   const std::function<void(const QString&)>& otherwise);
    void leave();

    std::mutex m_mutex;
    std::condition_variable m_idle;
    int m_running = 0; // on other threads
    int m_waiting = 0; // for their results, here
};

} // namespace Host
