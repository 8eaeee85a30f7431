// ondrel-controls: every control of the library in one window. With --grab FOLDER it saves pictures of all controls in
// all states instead, at one, one and a half and two device pixels to a pixel, and of controls in a scene.

#include "controls.h"
#include "sheets.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>

#include <cstdio>

namespace
{

bool save(const QImage& image, const QDir& folder, const QString& name)
{
    const QString file = folder.filePath(name + ".png");
    const bool saved = image.save(file);
    if (saved)
        std::printf("%s\n", qUtf8Printable(file));
    else
        std::fprintf(stderr, "%s: could not be written\n", qUtf8Printable(file));
    return saved;
}

int grabAll(const QString& path)
{
    if (!QDir().mkpath(path))
        return 1;
    const QDir folder(path);
    bool ok = true;
    for (const double scale : {1.0, 1.5, 2.0})
        ok = save(stateSheet(darkPalette(), scale), folder, QString("controls-dark-%1").arg(scale)) && ok;
    ok = save(stateSheet(lightPalette(), 1.0), folder, "controls-light-1") && ok;
    for (const double zoom : {0.5, 1.0, 2.0})
        ok = save(sceneSheet(zoom), folder, QString("scene-%1").arg(zoom)) && ok;
    ok = save(popupSheet(1.0), folder, "popups-1") && ok;
    return ok ? 0 : 1;
}

// Two columns of controls under their names.
QWidget* makeWindow()
{
    auto* content = new QWidget;
    auto* layout = new QGridLayout;
    content->setLayout(layout);
    int index = 0;
    for (const Control& control : allControls()) {
        QWidget* const widget = control.make(content);
        widget->setMinimumSize(control.size);
        layout->addWidget(new QLabel(control.name), index / 2 * 2, index % 2);
        layout->addWidget(widget, index / 2 * 2 + 1, index % 2);
        ++index;
    }
    auto* area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setWidget(content);
    area->resize(640, 900);
    return area;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-controls");
    QCommandLineParser parser;
    parser.setApplicationDescription("Shows every control of the library.");
    parser.addHelpOption();
    parser.addOptions({{"grab", "Save pictures of all controls in all states, and stop.", "FOLDER"},
                       {"light", "Use light colours."}});
    parser.process(application);
    if (parser.isSet("grab"))
        return grabAll(parser.value("grab"));
    QApplication::setPalette(parser.isSet("light") ? lightPalette() : darkPalette());
    QWidget* const window = makeWindow();
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle("Ondrel controls");
    window->show();
    return QApplication::exec();
}
