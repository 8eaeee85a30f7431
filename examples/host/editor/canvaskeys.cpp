#include "canvaskeys.h"

#include "connectiondialog.h"
#include "document.h"
#include "scene.h"
#include "sceneview.h"

#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>

#include <cmath>
#include <limits>

namespace Host
{
namespace
{

constexpr double kStep = 10;   // scene units
constexpr int kScroll = 60;    // screen pixels
constexpr double kAside = 2.5; // what a distance across the direction counts more than one along it

QPointF directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {0, 0};
    }
}

} // namespace

CanvasKeys::CanvasKeys(Document& document, Scene& scene, SceneView& view)
    : QObject(&view)
    , m_document(document)
    , m_scene(scene)
    , m_view(view)
{
    view.installEventFilter(this);
}

void CanvasKeys::addActions(QMenu& menu)
{
    menu.addAction(tr("Select &all nodes"), this, SLOT(selectAll()), QKeySequence::SelectAll)
        ->setObjectName("selectAllNodes");
    menu.addAction(tr("&Rename node..."), this, SLOT(renameSelected()), QKeySequence("F2"))
        ->setObjectName("renameNode");
    menu.addAction(tr("C&onnections of node..."), this, SLOT(connectSelected()), QKeySequence("C"))
        ->setObjectName("connectNode");
}

bool CanvasKeys::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyPress)
        return press(*static_cast<QKeyEvent*>(event)) || QObject::eventFilter(object, event);
    if (event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat())
        ++m_gesture;
    return QObject::eventFilter(object, event);
}

bool CanvasKeys::press(const QKeyEvent& event)
{
    if (m_scene.focusItem()) {
        if (event.key() != Qt::Key_Escape || m_scene.focusItem()->type() == FrameTitle::Type)
            return false;
        m_scene.focusItem()->clearFocus();
        return true;
    }
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        return enterControls();
    const QPointF direction = directionOf(event.key());
    if (direction.isNull())
        return false;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::AltModifier)
        return move(direction);
    if (modifiers == Qt::ControlModifier)
        scroll(direction);
    else
        goTo(direction, modifiers == Qt::ShiftModifier);
    return true;
}

NodeId CanvasKeys::current() const
{
    const std::vector<NodeId> selected = m_scene.selectedNodes();
    return selected.size() == 1 ? selected.front() : 0;
}

// The one that is near in the direction, and not far aside.
NodeId CanvasKeys::nextFrom(QPointF point, QPointF direction) const
{
    NodeId next = 0;
    double least = std::numeric_limits<double>::infinity();
    for (const auto& [id, record] : m_document.graph().nodes) {
        const PreviewNode* const item = m_scene.item(id);
        if (!item)
            continue;
        const QPointF way = item->sceneBoundingRect().center() - point;
        const double along = QPointF::dotProduct(way, direction);
        const double aside = std::abs(way.x() * direction.y()) + std::abs(way.y() * direction.x());
        if (along > 1 && along + kAside * aside < least) {
            least = along + kAside * aside;
            next = id;
        }
    }
    return next;
}

bool CanvasKeys::goTo(QPointF direction, bool extends)
{
    std::vector<NodeId> selected = m_scene.selectedNodes();
    const PreviewNode* from = m_scene.item(m_last);
    if (!from || !from->isSelected())
        from = selected.empty() ? nullptr : m_scene.item(selected.back());
    const QPointF start = from ? from->sceneBoundingRect().center()
                               : m_view.mapToScene(m_view.viewport()->rect().center()) - direction * 1e5;
    const NodeId next = nextFrom(start, direction);
    if (next == 0)
        return false;
    if (!extends)
        selected.clear();
    selected.push_back(next);
    m_scene.selectNodes(selected);
    m_last = next;
    m_view.ensureVisible(m_scene.item(next));
    return true;
}

bool CanvasKeys::move(QPointF direction)
{
    std::map<NodeId, QPointF> positions;
    for (const NodeId id : m_scene.selectedNodes())
        positions[id] = m_document.graph().node(id)->position + direction * kStep;
    if (!positions.empty())
        m_document.moveNodes(positions, m_gesture);
    return !positions.empty();
}

void CanvasKeys::scroll(QPointF direction)
{
    QScrollBar* const bar = direction.x() != 0 ? m_view.horizontalScrollBar() : m_view.verticalScrollBar();
    bar->setValue(bar->value() + int(direction.x() + direction.y()) * kScroll);
}

bool CanvasKeys::enterControls()
{
    PreviewNode* const item = m_scene.item(current());
    return item && item->focusNextPrevChild(true, nullptr, nullptr);
}

void CanvasKeys::selectAll()
{
    std::vector<NodeId> all;
    for (const auto& [id, record] : m_document.graph().nodes)
        all.push_back(id);
    m_scene.selectNodes(all);
}

void CanvasKeys::renameSelected()
{
    const NodeRecord* const record = m_document.graph().node(current());
    if (!record)
        return;
    QInputDialog dialog(m_view.window());
    dialog.setWindowTitle(tr("Rename node"));
    dialog.setLabelText(tr("Name of the node"));
    dialog.setTextValue(record->name);
    if (dialog.exec() == QDialog::Accepted)
        m_document.renameNode(record->id, uniqueName(m_document.graph(), dialog.textValue().trimmed()));
}

void CanvasKeys::connectSelected()
{
    chooseConnections(current());
}

void CanvasKeys::connectLater(NodeId node)
{
    QMetaObject::invokeMethod(
        this, [this, node] { chooseConnections(node); }, Qt::QueuedConnection);
}

void CanvasKeys::chooseConnections(NodeId node)
{
    if (!m_document.graph().node(node))
        return;
    ConnectionDialog dialog(m_scene, node, m_view.window());
    dialog.exec();
}

} // namespace Host
