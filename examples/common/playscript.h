#pragma once

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QString>

#include <cstdio>

namespace Common
{

// Plays a file on a window that is shown without a screen; pictures go into the folder, which is made. A Player is
// built from the window and the folder, and has run(text) and error(). The program's exit status: 0, or 1 with the
// reason on the error stream.
template <class Player, class Window>
int playScript(Window& window, const QString& file, const QString& folder)
{
    QFile script(file);
    if (!script.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(file), qUtf8Printable(script.errorString()));
        return 1;
    }
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "%s: the folder could not be made\n", qUtf8Printable(folder));
        return 1;
    }
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QApplication::processEvents();
    Player player(window, QDir(folder));
    if (player.run(QString::fromUtf8(script.readAll())))
        return 0;
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(file), qUtf8Printable(player.error()));
    return 1;
}

} // namespace Common
