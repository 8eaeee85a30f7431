// ondrel-nodeviewer: node files as nodes on a canvas. Exit status: 0 all done, 1 some file makes no node or the picture
// could not be saved, 2 the command line made no sense.

#include "canvas.h"
#include "canvasview.h"
#include "options.h"
#include "picture.h"

#include "../common/darkpalette.h"

#include <ondrel/core/platform.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSettings>

#include <cstdio>

namespace
{

using namespace Viewer;

// A host chooses how its previews are scaled, as long as the user has not.
void chooseThumbnailFilter()
{
    QSettings settings;
    const QString key = "settings/performance/interpolation/thumbnail";
    if (!settings.contains(key))
        settings.setValue(key, "Bilinear");
}

bool fill(Canvas& canvas, const Options& options)
{
    bool complete = true;
    for (const QString& file : options.files)
        complete = canvas.addFile(file) && complete;
    for (const Wires::Link& link : options.links) {
        if (canvas.connectLink(link))
            continue;
        std::fprintf(stderr, "no wire from %s.%s to %s.%s\n", qUtf8Printable(link.fromNode),
                     qUtf8Printable(link.output), qUtf8Printable(link.toNode), qUtf8Printable(link.input));
        complete = false;
    }
    if (!options.selected.isEmpty())
        complete = canvas.selectNode(options.selected) && complete;
    if (!options.primary.isEmpty())
        complete = canvas.showAsPrimary(options.primary) && complete;
    return complete;
}

// Previews come from the background, and change the heights of nodes.
void settle(const Canvas& canvas)
{
    QElapsedTimer clock;
    clock.start();
    while (!canvas.previewsReady() && clock.elapsed() < 10000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}

bool grab(Canvas& canvas, const Options& options)
{
    CanvasView view(canvas);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    settle(canvas);
    canvas.arrangeNodes();
    QApplication::processEvents();
    if (view.picture(options.scale).save(options.grab, "PNG"))
        return true;
    std::fprintf(stderr, "%s: could not be written\n", qUtf8Printable(options.grab));
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    PlatformPrivate::setup(argc, &argv);
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-nodeviewer");
    QCoreApplication::setApplicationVersion("0.1.0");
    QApplication::setPalette(Common::darkPalette(QColor(76, 75, 75)));
    chooseThumbnailFilter();
    const Options options = readOptions(QCoreApplication::arguments());

    Canvas canvas(loadPicture(options.picture));
    const bool complete = fill(canvas, options);
    if (!options.grab.isEmpty())
        return grab(canvas, options) && complete ? 0 : 1;
    if (canvas.items().isEmpty())
        return 1;
    CanvasView view(canvas);
    view.resize(1400, 900);
    view.show();
    return QApplication::exec();
}
