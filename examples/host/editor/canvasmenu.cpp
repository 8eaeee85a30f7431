#include "canvasmenu.h"

#include "canvascommands.h"

namespace Host
{

CanvasMenu::CanvasMenu(CanvasCommands& commands, Scene& scene, const CanvasThing& thing, QPointF at, QWidget& window)
    : QMenu(&window)
    , m_commands(commands)
    , m_scene(scene)
    , m_window(window)
{
    setObjectName("canvasMenu");
    if (PreviewNode* const node = scene.item(thing.node))
        fillForNode(*node);
    else if (thing.wire)
        fillForWire(*thing.wire, at);
    else if (thing.frame != 0)
        fillForFrame(thing.frame);
    else
        fillForCanvas(at);
}

void CanvasMenu::addNamed(const std::vector<const char*>& names)
{
    for (const char* const name : names) {
        QAction* const action = name ? m_window.findChild<QAction*>(name) : nullptr;
        if (action)
            addAction(action);
        else if (!name)
            addSeparator();
    }
}

// A kind of node may have something of its own to offer.
void CanvasMenu::fillForNode(PreviewNode& node)
{
    QAction* const primary = addAction(tr("Show in &view"), &m_commands, SLOT(showSelected()));
    QAction* const secondary = addAction(tr("Show as &secondary"), &m_commands, SLOT(showSelectedAsSecondary()));
    addNamed({"view.editInView", nullptr, "edit.cut", "edit.copy", "edit.duplicate", "edit.delete", nullptr,
              "edit.bypass", "edit.replaceNode", "renameNode", "connectNode", "edit.values", nullptr,
              "edit.embedPicture", "edit.savePicture", nullptr, "edit.frameNodes"});
    if (auto* const arrange = m_window.findChild<QMenu*>("arrange"); arrange && m_scene.selectedNodes().size() > 1)
        addMenu(arrange);
    node.displayingContextMenu(this, primary, secondary);
}

void CanvasMenu::fillForWire(const Connection& wire, QPointF at)
{
    addAction(tr("&Insert node..."), &m_commands, [this, wire, at] {
        m_commands.insertIntoWire(wire, at);
    })->setObjectName("insertIntoWire");
    addNamed({"connectNode", nullptr, "edit.delete"});
}

void CanvasMenu::fillForFrame(quint64 id)
{
    addAction(tr("&Edit title"), &m_commands, [this, id] {
        m_commands.editFrameTitle(id);
    })->setObjectName("editFrameTitle");
    addAction(tr("&Select nodes inside"), this, [this, id] {
        m_scene.selectNodes(m_scene.frames().nodesInside(id));
    })->setObjectName("selectFrameNodes");
    addNamed({nullptr, "edit.cut", "edit.copy", "edit.duplicate", "edit.delete"});
}

void CanvasMenu::fillForCanvas(QPointF at)
{
    addAction(tr("&Add node..."), &m_commands, [this, at] { m_commands.searchNode(at); })->setObjectName("addNode");
    addNamed({nullptr, "edit.paste", "selectAllNodes", nullptr, "edit.frameNodes", nullptr, "view.fitAllNodes",
              "view.overview"});
}

} // namespace Host
