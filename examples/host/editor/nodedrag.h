#pragma once

#include "nodeitem.h"

#include <QGraphicsItem>
#include <QLineF>

#include <memory>
#include <vector>

namespace Host
{

class Scene;

// The lines at which a dragged node has snapped to others, above everything. Each is an item of its own: one for all of
// them would have the whole canvas between them drawn again with every move.
class GuideLines
{
public:
    explicit GuideLines(QGraphicsScene& scene);
    void setLines(const std::vector<QLineF>& lines);
    const std::vector<QLineF>& lines() const { return m_lines; }

private:
    QGraphicsScene& m_scene;
    std::vector<QLineF> m_lines;
    std::vector<std::unique_ptr<QGraphicsLineItem>> m_items;
};

// The nodes that are dragged with the mouse: they snap to the others that are in view, a single one that hovers over a
// wire is spliced into it, and all of it becomes one step of undo.
class NodeDrag
{
public:
    explicit NodeDrag(Scene& scene);

    void begin();
    void move(const Node& held, bool snaps); // after the toolkit has moved the selected nodes
    void end();
    const std::vector<QLineF>& guides() const { return m_guides.lines(); }

private:
    void snap(const Node& held, const std::vector<NodeId>& selected);
    void findWire(const std::vector<NodeId>& selected);

    Scene& m_scene;
    GuideLines m_guides;
    std::vector<QRectF> m_others; // what to snap to
};

} // namespace Host
