#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QFuture>
#include <QFutureWatcher>
#include <QImage>
#include <QObject>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <functional>
#include <queue>
#include <utility>
#include <vector>

class ONDREL_EXPORT BackgroundWorkQueue : public QObject, private boost::noncopyable
{
    Q_OBJECT
public:
    struct QImageWork {
        std::function<QImage()> work;
        QVariant userData;
    };
    struct ImageWork {
        std::function<Ondrel::Image()> work;
        QVariant userData;
    };
    explicit BackgroundWorkQueue(QObject* parent);
    void queueWork(std::function<QImage()> work, int priority, bool clearPriority, bool clearLowerPriorities,
                   const QVariant& userData);
    void queueWork(std::function<Ondrel::Image()> work, int priority, bool clearPriority, bool clearLowerPriorities,
                   const QVariant& userData);
    bool isWorking() const;
Q_SIGNALS:
    void qImageFinished(const QImage& image, int priority, const QVariant& userData);
    void imageFinished(const Ondrel::Image& image, int priority, const QVariant& userData);
private Q_SLOTS:
    void qImageFinished();
    void imageFinished();

private:
    void processNextWork();
};
// Image(QImage) is explicit, or a bare lambda returning QImage would be ambiguous between the two overloads; callers
// wrap the job in any case: queueWork(std::function<QImage ()>([...] {...}), ...) moc:
// qImageFinished(QImage,int,QVariant)  imageFinished(Ondrel::Image,int,QVariant)
