// main() of every test program: an application object without a display, a home directory and settings of its own that
// vanish at the end, and a listener that fails a test in which Qt complains about a connection.

#include <ondrel/core/parallel_p.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QByteArray>
#include <QDir>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <stdexcept>

namespace
{

void failOnConnectWarnings(QtMsgType, const QMessageLogContext&, const QString& message)
{
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (message.startsWith(QLatin1String("QObject::connect:")))
        ADD_FAILURE() << qPrintable(message);
}

// Sets the C and the C++ locale. False if the system does not have it.
bool useLocale(const char* name)
{
    try {
        std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
        return false;
    }
    return std::setlocale(LC_ALL, name) != nullptr;
}

void useRowEngine(const QByteArray& name)
{
    if (name == "shuffled")
        Ondrel::setParallelEngine(Ondrel::ParallelEngine::Shuffled);
    else if (name == "threads")
        Ondrel::setParallelEngine(Ondrel::ParallelEngine::Threads);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir home;
    if (!home.isValid())
        return 2;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + "/.local/share").toLocal8Bit());
    qputenv("XDG_CACHE_HOME", (home.path() + "/.cache").toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path() + "/.config");

    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-tests");
    qInstallMessageHandler(failOnConnectWarnings);

    const QByteArray locale = qgetenv("ONDREL_TEST_LOCALE");
    if (!locale.isEmpty() && !useLocale(locale.constData())) {
        std::fprintf(stderr, "The locale %s is not installed.\n", locale.constData());
        return 2;
    }
    useRowEngine(qgetenv("ONDREL_TEST_ROWS"));
    return RUN_ALL_TESTS();
}
