// ondrel-editor: an editor of node graphs. Exit status: 0 all done, 1 a script could not be played to its end, 2 the
// command line made no sense.

#include "application.h"
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
#include <QDir>
#include <QIcon>

#include <algorithm>
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
    parser.setApplicationDescription("Edits pictures by graphs of nodes.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("project", "A project to open.", "[PROJECT]");
    parser.addPositionalArgument("images", "Pictures to make nodes of, in that project or a new one.", "[IMAGE...]");
    parser.addOptions({{"plugins", "The folder of plug-ins (default: beside the program).", "FOLDER",
                        QDir(QCoreApplication::applicationDirPath()).filePath("plugins")},
                       {"script", "Play what is in a file, and stop.", "FILE"},
                       {"out", "Where the script's pictures go (default: here).", "FOLDER", "."}});
    const bool isParsed = parser.parse(QCoreApplication::arguments());
    const QStringList files = parser.positionalArguments();
    if (!isParsed || std::count_if(files.begin(), files.end(), Host::FileOpener::isProjectName) > 1) {
        const QString reason = parser.errorText().isEmpty() ? "one project at a time" : parser.errorText();
        std::fprintf(stderr, "ondrel-editor: %s\n", qUtf8Printable(reason));
        return 2;
    }
    parser.process(application); // for --help and --version

    Host::NodeTypes types;
    const QStringList problems = Host::loadPlugins(parser.value("plugins"), types);
    for (const QString& problem : problems)
        std::fprintf(stderr, "%s\n", qUtf8Printable(problem));
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
