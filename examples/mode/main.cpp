// ondrel-mode: one complete editing mode, a crop frame with eight handles over a picture that stands behind a rotation
// and a perspective. Exit status: 0 all done, 1 a script could not be played to its end, 2 the command line made no
// sense.

#include "picture.h"
#include "script.h"
#include "window.h"

#include "../common/darkpalette.h"
#include "../common/playscript.h"

#include <ondrel/core/platform.h>

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

namespace
{

constexpr unsigned int kLongestSide = 1600;

} // namespace

int main(int argc, char** argv)
{
    PlatformPrivate::setup(argc, &argv);
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-mode");
    QCoreApplication::setApplicationVersion("0.1.0");
    QApplication::setPalette(Common::darkPalette(QColor(50, 49, 49)));

    QCommandLineParser parser;
    parser.setApplicationDescription("Cuts a rectangle out of a picture that is shown turned and tilted.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("picture", "PNG, JPEG or TIFF; a painted target if there is none.", "[PICTURE]");
    parser.addOptions({{"script", "Play the events in a file, and stop.", "FILE"},
                       {"out", "Where the script's pictures go (default: here).", "FOLDER", "."}});
    if (!parser.parse(QCoreApplication::arguments()) || parser.positionalArguments().size() > 1) {
        const QString reason = parser.errorText().isEmpty() ? "one picture at a time" : parser.errorText();
        std::fprintf(stderr, "ondrel-mode: %s\n", qUtf8Printable(reason));
        return 2;
    }
    parser.process(application); // for --help and --version
    Window window(loadPicture(parser.positionalArguments().value(0), kLongestSide));
    window.resize(1280, 860);
    if (parser.isSet("script"))
        return Common::playScript<Script>(window, parser.value("script"), parser.value("out"));
    window.show();
    return QApplication::exec();
}
