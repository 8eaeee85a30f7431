#include "blocking.h"

#include <QCoreApplication>
#include <QThread>

namespace Host
{

void assertMayBlock([[maybe_unused]] const char* function)
{
    Q_ASSERT_X(!qApp || !qApp->inherits("QApplication") || QThread::currentThread() != qApp->thread(), function,
               "blocks, so it may not run on the user-interface thread");
}

} // namespace Host
