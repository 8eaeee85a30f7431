// ondrel_host_soak PLUGINS MINUTES [SEED]: edits at random for so long, and evaluates, cancels, saves, reopens, imports
// and exports in between. Meant to run under a sanitizer, which ends it at the first error. Exit status: 0 all went
// well, 1 the editor did not come to rest, 2 the command line makes no sense.

#include "application.h"
#include "document.h"
#include "editorwindow.h"
#include "exportcommands.h"
#include "exporter.h"
#include "imagepane.h"
#include "importer.h"
#include "pictures.h"
#include "projectfiles.h"
#include "randomedits.h"
#include "scene.h"
#include "script.h"

#include <ondrel/core/platform.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

using namespace Host;

namespace
{

constexpr qint64 kMillisecondsAMinute = 60000;
constexpr qint64 kLongestWait = 5 * kMillisecondsAMinute; // for what a slow node still computes when it is cancelled

class Soak
{
public:
    Soak(const NodeTypes& types, unsigned int seed)
        : m_window(types)
        , m_script(m_window, QDir(m_folder.path()))
    {
        m_window.setAttribute(Qt::WA_DontShowOnScreen);
        m_window.resize(1200, 900);
        m_window.show();
        makePicture("photo.png", 90, 60);
        makePicture("large.jpg", 900, 700);
        m_script.run("import " + path("photo.png") + " 0 0");
        m_edits = std::make_unique<RandomEdits>(m_window, m_script, seed, "photo");
        m_script.run("save " + path("soak.ondrel"));
    }

    bool run(double minutes)
    {
        m_clock.start();
        qint64 told = 0;
        while (double(m_clock.elapsed()) < minutes * double(kMillisecondsAMinute)) {
            if (!act()) {
                std::printf("The editor does not come to rest. The last steps: %s\n",
                            qPrintable(m_edits->log().mid(std::max(0, int(m_edits->log().size()) - 20)).join(' ')));
                return false;
            }
            if (m_clock.elapsed() / kMillisecondsAMinute > told) {
                told = m_clock.elapsed() / kMillisecondsAMinute;
                report();
            }
        }
        return settle();
    }

    void report() const
    {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        std::printf("%.1f minutes, %d edits", double(m_clock.elapsed()) / double(kMillisecondsAMinute),
                    int(m_edits->log().size()));
        for (const auto& [what, count] : m_counts)
            std::printf(", %s %d", what, count);
        std::printf(", peak memory %ld MiB\n", usage.ru_maxrss / 1024);
        std::fflush(stdout);
    }

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    void makePicture(const QString& name, int width, int height) const
    {
        QImage picture(width, height, QImage::Format_RGB888);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                picture.setPixelColor(x, y, QColor(x % 256, (x * y / 50) % 256, (x * 7 + y * 13) % 256));
        }
        picture.save(path(name));
    }

    // False if the editor hangs.
    bool act()
    {
        const int what = m_edits->below(100);
        if (what < 78)
            return edit();
        if (what < 84)
            return show();
        if (what < 88)
            return save();
        if (what < 91)
            return reopen();
        if (what < 94)
            return exportShown();
        if (what < 97)
            return import();
        ++m_counts["settled"];
        return settle();
    }

    // The next edit often comes while pictures of this one are being computed, which cancels them.
    bool edit()
    {
        m_edits->step();
        QElapsedTimer clock;
        clock.start();
        const int pause = m_edits->below(4) == 0 ? m_edits->below(60) : 0;
        do {
            QApplication::processEvents();
        } while (clock.elapsed() < pause);
        return true;
    }

    bool show()
    {
        ++m_counts["shown"];
        const auto& nodes = m_window.document().graph().nodes;
        const NodeId node = std::next(nodes.begin(), m_edits->below(int(nodes.size())))->first;
        const bool second = m_edits->below(3) == 0;
        m_window.scene().show(node, second ? PreviewNode::EmblemSecondary : PreviewNode::EmblemPrimary);
        return true;
    }

    bool save()
    {
        ++m_counts["saved"];
        m_window.files().save(path("soak.ondrel"));
        return filesAreDone();
    }

    bool reopen()
    {
        ++m_counts["reopened"];
        m_window.files().open(path("soak.ondrel"));
        return filesAreDone();
    }

    bool exportShown()
    {
        ++m_counts["exported"];
        const char* const endings[] = {"png", "jpg", "tif"};
        m_window.exportCommands().exportPicture(path(QString("out.") + endings[m_edits->below(3)]), {});
        if (m_edits->below(2) != 0)
            return true;
        ++m_counts["exports cancelled"];
        QApplication::processEvents();
        m_window.exporter().cancel();
        return true;
    }

    // Of a file that is damaged now and then. What is imported is taken away again, to stay with a few nodes.
    bool import()
    {
        ++m_counts["imported"];
        QFile source(path("large.jpg"));
        if (!source.open(QIODevice::ReadOnly))
            return false;
        QByteArray bytes = source.readAll();
        for (int i = m_edits->below(3); i > 0; --i)
            bytes[m_edits->below(bytes.size())] = char(m_edits->below(256));
        QFile damaged(path("damaged.jpg"));
        if (!damaged.open(QIODevice::WriteOnly) || damaged.write(bytes) != bytes.size())
            return false;
        damaged.close();
        m_window.importer().import({damaged.fileName()}, QPointF(0, 300));
        if (!waitUntil([this] { return !m_window.importer().isBusy(); }))
            return false;
        if (m_edits->below(2) == 0)
            m_window.document().undoStack().undo();
        return true;
    }

    bool filesAreDone()
    {
        return waitUntil([this] { return !m_window.files().isBusy(); });
    }

    bool settle()
    {
        return waitUntil([this] { return m_window.isSettled(); });
    }

    template <typename Condition>
    static bool waitUntil(Condition isReached)
    {
        QElapsedTimer clock;
        clock.start();
        do {
            QApplication::processEvents(QEventLoop::AllEvents, 20);
        } while (!isReached() && clock.elapsed() < kLongestWait);
        return isReached();
    }

    QTemporaryDir m_folder;
    EditorWindow m_window;
    Script m_script;
    std::unique_ptr<RandomEdits> m_edits;
    QElapsedTimer m_clock;
    std::map<const char*, int> m_counts;
};

} // namespace

int main(int argc, char** argv)
{
    // Nothing of the user's is read or written.
    const QTemporaryDir home;
    for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(name, home.path().toLocal8Bit());
    PlatformPrivate::setup(argc, &argv);
    const QApplication application(argc, argv);
    nameApplication();
    bool isNumber = false;
    const QStringList arguments = QCoreApplication::arguments();
    const double minutes = arguments.value(2).toDouble(&isNumber);
    if (arguments.size() < 3 || !isNumber) {
        std::fputs("usage: ondrel_host_soak PLUGINS MINUTES [SEED]\n", stderr);
        return 2;
    }
    NodeTypes types;
    const QStringList problems = loadPlugins(arguments[1], types);
    if (types.all().empty() || !problems.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(problems.join('\n')));
        return 2;
    }
    Soak soak(types, arguments.value(3, "1").toUInt());
    const bool ok = soak.run(minutes);
    soak.report();
    return ok ? 0 : 1;
}
