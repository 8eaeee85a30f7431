#pragma once

#include "scene.h"

#include <QMenu>

namespace Host
{

class CanvasCommands;

// The context menu of what lies at a point of the canvas. Most of it are actions of the window's own menus, found by
// their names, so that they say their shortcuts.
class CanvasMenu : public QMenu
{
    Q_OBJECT
public:
    CanvasMenu(CanvasCommands& commands, Scene& scene, const CanvasThing& thing, QPointF at, QWidget& window);

private:
    void fillForNode(PreviewNode& node);
    void fillForWire(const Connection& wire, QPointF at);
    void fillForFrame(quint64 id);
    void fillForCanvas(QPointF at);
    void addNamed(const std::vector<const char*>& names); // those that the window has; null for a separator

    CanvasCommands& m_commands;
    Scene& m_scene;
    QWidget& m_window;
};

} // namespace Host
