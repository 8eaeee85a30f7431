#pragma once

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>

namespace Host
{

// Runs what blocks away from the user-interface thread, and comes back with the result. Each worker has threads of its
// own, so that none waits for another's: an export holds no preview up. User-interface thread only.
class Worker : public QObject
{
    Q_OBJECT
public:
    // With one thread, what is given runs, and comes back, in the order in which it was given; with more, in any.
    explicit Worker(int threads = 1);
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

    QThreadPool m_threads;
    int m_waiting = 0; // for results
};

} // namespace Host
