// Tells ThreadSanitizer what Qt's synchronisation does. Debian's Qt is not instrumented, so that every hand-over
// through a QMutex, the thread pool or a future would be reported as a race. Linked into test programs of the tsan
// build only: the symbols here stand before Qt's own and call them.

#include <QFutureInterface>
#include <QMetaObject>
#include <QMutex>
#include <QObject>
#include <QRunnable>
#include <QThreadPool>

#include <cstdlib>
#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace
{

constexpr unsigned int kMutex = __tsan_mutex_not_static;

// Qt's own function behind the one of this file.
template <class Function>
Function original(const char* mangledName)
{
    void* const address = dlsym(RTLD_NEXT, mangledName);
    if (!address)
        std::abort();
    return reinterpret_cast<Function>(address);
}

// Runs another job after announcing that what happened before start() happened before it, and that it happens before
// the end of waitForDone().
class AnnouncedJob : public QRunnable
{
public:
    AnnouncedJob(QRunnable* job, QThreadPool* pool)
        : m_job(job)
        , m_pool(pool)
    {
    }

    __attribute__((no_sanitize("thread"))) void run() override
    {
        __tsan_acquire(this);
        const bool deletes = m_job->autoDelete();
        m_job->run();
        if (deletes)
            delete m_job;
        __tsan_release(m_pool);
    }

private:
    QRunnable* m_job;
    QThreadPool* m_pool;
};

// Calls another slot after announcing that what happened before it was posted happened before it.
class AnnouncedSlot : public QtPrivate::QSlotObjectBase
{
public:
    explicit AnnouncedSlot(QtPrivate::QSlotObjectBase* slot)
        : QSlotObjectBase(&act)
        , m_slot(slot)
    {
    }

private:
    __attribute__((no_sanitize("thread"))) static void act(int what, QSlotObjectBase* self, QObject* receiver,
                                                           void** arguments, bool*)
    {
        __tsan_acquire(self);
        auto* const announced = static_cast<AnnouncedSlot*>(self);
        if (what == Call)
            announced->m_slot->call(receiver, arguments);
        if (what != Destroy)
            return;
        announced->m_slot->destroyIfLastRef();
        delete announced;
    }

    QtPrivate::QSlotObjectBase* m_slot;
};

} // namespace

void QMutex::lock() noexcept
{
    static const auto lock = original<void (*)(QMutex*)>("_ZN6QMutex4lockEv");
    __tsan_mutex_pre_lock(this, kMutex);
    lock(this);
    __tsan_mutex_post_lock(this, kMutex, 0);
}

void QMutex::unlock() noexcept
{
    static const auto unlock = original<void (*)(QMutex*)>("_ZN6QMutex6unlockEv");
    __tsan_mutex_pre_unlock(this, kMutex);
    unlock(this);
    __tsan_mutex_post_unlock(this, kMutex);
}

bool QMutex::tryLock(int timeout) noexcept
{
    static const auto tryLock = original<bool (*)(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    const unsigned int flags = kMutex | __tsan_mutex_try_lock;
    __tsan_mutex_pre_lock(this, flags);
    const bool locked = tryLock(this, timeout);
    __tsan_mutex_post_lock(this, flags | (locked ? 0 : __tsan_mutex_try_lock_failed), 0);
    return locked;
}

void QThreadPool::start(QRunnable* job, int priority)
{
    static const auto start = original<void (*)(QThreadPool*, QRunnable*, int)>("_ZN11QThreadPool5startEP9QRunnablei");
    if (!job)
        return start(this, job, priority);
    auto* const announced = new AnnouncedJob(job, this); // the pool deletes it after run()
    __tsan_release(announced);
    start(this, announced, priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    static const auto wait = original<bool (*)(QThreadPool*, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool done = wait(this, milliseconds);
    if (done)
        __tsan_acquire(this);
    return done;
}

bool QFutureInterfaceBase::derefT() const
{
    static const auto deref = original<bool (*)(const QFutureInterfaceBase*)>("_ZNK20QFutureInterfaceBase6derefTEv");
    // The private data, shared by all copies of the future, stands behind the vtable pointer.
    void* const shared = *reinterpret_cast<void* const*>(reinterpret_cast<const char*>(this) + sizeof(void*));
    __tsan_release(shared);
    const bool alive = deref(this);
    if (!alive)
        __tsan_acquire(shared);
    return alive;
}

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
                                   void* result)
{
    static const auto invoke = original<bool (*)(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    auto* const announced = new AnnouncedSlot(slot);
    __tsan_release(announced);
    return invoke(object, announced, type, result);
}
