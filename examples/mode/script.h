#pragma once

#include "cropframe.h"

#include <QDir>
#include <QString>
#include <QStringList>

class QPoint;
class Window;

// Plays events on a window as a user would make them. A line is one command; empty lines and those that begin with "#"
// are skipped.
//
//   drag HANDLE DX DY        with the left button, by pixels of the view; HANDLE as named by handleName()
//   sweep X1 Y1 X2 Y2        a drag between two points of the view
//   scroll DX DY             with the middle button
//   wheel DELTA              at the middle of the view
//   key SEQUENCE             "Ctrl+Z", "Shift+Left"
//   tool NAME                "crop" or "zoom"
//   aspect TEXT              an entry of the combo box
//   edit on|off              the mode, or its result
//   fit
//   expect X Y WIDTH HEIGHT  the node's value, in pixels of the photograph
//   grab NAME                a picture of the window
class Script
{
public:
    Script(Window& window, const QDir& folder);

    // All commands in order. The first one that cannot be done or is not fulfilled ends it; then false, and error()
    // says which line and why.
    bool run(const QString& text);
    QString error() const { return m_error; }

private:
    bool runLine(const QStringList& words);
    bool drag(const QStringList& words);
    bool expect(const QStringList& words);
    bool chooseAspect(const QString& text);
    bool pressKey(const QString& sequence);
    bool grab(const QString& name);
    void moveMouse(const QPoint& from, const QPoint& to, Qt::MouseButton button);
    bool fail(const QString& reason);

    Window& m_window;
    QDir m_folder;
    QString m_error;
};
