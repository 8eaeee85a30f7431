// ondrel-editor: an editor of node graphs. Exit status: 0 all done, 1 a script could not be played to its end, 2 the
// command line made no sense.

#include "application.h"
#include "commandline.h"
#include "editorwindow.h"
#include "fileopener.h"
#include "preferences.h"
#include "projectfiles.h"
#include "script.h"

#include "../../common/darkpalette.h"
#include "../../common/playscript.h"

#include <ondrel/core/platform.h>
#include <ondrel/pixel/opencl.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

#include <cstdio>

int main(int argc, char** argv)
{
    PlatformPrivate::setup(argc, &argv);
    QApplication application(argc, argv);
    Host::nameApplication();
    QGuiApplication::setDesktopFileName("org.ondrel.Editor");
    QApplication::setWindowIcon(QIcon(":/desktop/org.ondrel.Editor.svg"));
    QApplication::setPalette(Common::darkPalette(QColor(50, 49, 49)));

    QCommandLineParser parser;
    Host::addOptions(parser);
    const QString problem = Host::parseArguments(parser, QCoreApplication::arguments());
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "ondrel-editor: %s\n", qUtf8Printable(problem));
        return 2;
    }
    parser.process(application); // for --help and --version

    Host::NodeTypes types;
    const QStringList files = parser.positionalArguments();
    const QStringList problems = Host::loadPlugins(parser.value("plugins"), types);
    for (const QString& each : problems)
        std::fprintf(stderr, "%s\n", qUtf8Printable(each));
    int status = 0;
    {
        Host::EditorWindow window(types);
        window.resize(1400, 900);
        if (!problems.isEmpty())
            window.showMessage(problems.join("  "));
        window.preferences().device().start();
        if (!files.isEmpty())
            window.opener().open(files);
        if (parser.isSet("script")) {
            status = Common::playScript<Host::Script>(window, parser.value("script"), parser.value("out"));
        } else {
            window.restoreLayout();
            window.show();
            if (files.isEmpty())
                window.files().offerUnsaved();
            status = QApplication::exec();
        }
    }
    PixelOpenCL::instance()->disable();
    return status;
}
