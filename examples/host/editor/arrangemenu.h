#pragma once

#include "snapping.h"

#include <QMenu>

#include <functional>

namespace Host
{

class Scene;

// Lines up the selected nodes, or spreads them out; each is one step of undo.
class ArrangeMenu : public QMenu
{
    Q_OBJECT
public:
    ArrangeMenu(Scene& scene, QWidget* parent);

private:
    using Arrangement = std::function<std::vector<QPointF>(const std::vector<QRectF>&)>;
    void add(const QString& text, const char* shortcut, const char* name, const Arrangement& arrangement);
    void arrange(const QString& step, const Arrangement& arrangement);

    Scene& m_scene;
};

} // namespace Host
