#include "canvaskeys.h"

#include "arrowkeys.h"
#include "connectiondialog.h"
#include "sceneview.h"
#include "valuesdialog.h"
#include "wirekeys.h"

#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Host
{
namespace
{

constexpr double kStep = 10;   // scene units
constexpr int kScroll = 60;    // screen pixels
constexpr double kAside = 2.5; // what a distance across the direction counts more than one along it

} // namespace

CanvasKeys::CanvasKeys(Scene& scene, SceneView& view, WireKeys& wires)
    : QObject(&view)
    , m_scene(scene)
    , m_document(scene.document())
    , m_view(view)
    , m_wires(wires)
    , m_gesture(m_document.newGesture())
{
    view.installEventFilter(this);
    connect(&m_document, &Document::reset, this, [this] { m_last = 0; });
    connect(&scene, &Scene::thingSelected, this, [this] { // a wire may be deleted, which leaves nothing selected
        if (const std::optional<Connection> wire = m_scene.wires().selected())
            m_last = wire->to;
    });
}

void CanvasKeys::addActions(QMenu& menu)
{
    menu.addAction(tr("Select &all nodes"), this, SLOT(selectAll()), QKeySequence::SelectAll)
        ->setObjectName("selectAllNodes");
    menu.addAction(tr("&Rename..."), this, SLOT(renameSelected()), QKeySequence("F2"))->setObjectName("renameNode");
    menu.addAction(tr("C&onnections..."), this, SLOT(connectSelected()), QKeySequence("C"))
        ->setObjectName("connectNode");
    menu.addAction(tr("&Values as text..."), this, SLOT(typeValues()), QKeySequence("V"))->setObjectName("edit.values");
}

bool CanvasKeys::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyPress)
        return press(*static_cast<QKeyEvent*>(event)) || QObject::eventFilter(object, event);
    if (event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat())
        m_gesture = m_document.newGesture();
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
        return enter();
    const QPointF direction = arrowDirection(event.key());
    if (direction.isNull())
        return false;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::AltModifier)
        return move(direction);
    if (modifiers == (Qt::AltModifier | Qt::ShiftModifier))
        return resize(direction);
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

// What is near in the direction, and not far aside. A frame is where its title is.
CanvasThing CanvasKeys::nextFrom(QPointF point, QPointF direction, bool nodesOnly) const
{
    CanvasThing next;
    double least = std::numeric_limits<double>::infinity();
    const auto consider = [&](QPointF at, const CanvasThing& thing) {
        const QPointF way = at - point;
        const double along = QPointF::dotProduct(way, direction);
        const double aside = std::abs(way.x() * direction.y()) + std::abs(way.y() * direction.x());
        if (along > 1 && along + kAside * aside < least) {
            least = along + kAside * aside;
            next = thing;
        }
    };
    for (const auto& [id, item] : m_scene.nodeItems())
        consider(item->sceneBoundingRect().center(), {id, std::nullopt, 0});
    if (nodesOnly)
        return next;
    for (const auto& [id, frame] : m_scene.frames().items()) {
        const QRectF title = frame->titleArea();
        consider({std::clamp(point.x(), title.left(), title.right()), title.center().y()}, {0, std::nullopt, id});
    }
    return next;
}

// Without a selection, before all that is in view; but going on where the arrows have been last.
QPointF CanvasKeys::startOf(QPointF direction) const
{
    const CanvasThing selected = m_scene.selectedThing();
    if (const FrameItem* const frame = m_scene.frames().item(selected.frame))
        return frame->titleArea().center();
    const PreviewNode* from = m_scene.item(m_last);
    if (selected.node != 0 && (!from || !from->isSelected()))
        from = m_scene.item(m_scene.selectedNodes().back());
    return from ? from->sceneBoundingRect().center()
                : m_view.mapToScene(m_view.viewport()->rect().center()) - direction * 1e5;
}

bool CanvasKeys::goTo(QPointF direction, bool extends)
{
    if (m_wires.go(direction)) {
        m_last = current();
        return true;
    }
    return select(nextFrom(startOf(direction), direction, extends), extends);
}

bool CanvasKeys::select(const CanvasThing& thing, bool extends)
{
    if (thing.isNothing())
        return false;
    std::vector<NodeId> nodes = extends ? m_scene.selectedNodes() : std::vector<NodeId>();
    if (thing.node != 0)
        nodes.push_back(thing.node);
    m_scene.selectNodes(nodes);
    m_scene.select(thing);
    m_last = thing.node != 0 ? thing.node : m_last;
    if (thing.node != 0)
        m_view.ensureVisible(m_scene.item(thing.node));
    else
        m_view.ensureVisible(m_scene.frames().item(thing.frame)->titleArea());
    return true;
}

bool CanvasKeys::move(QPointF direction)
{
    const CanvasThing selected = m_scene.selectedThing();
    std::map<NodeId, QPointF> positions;
    for (const NodeId id : m_scene.selectedNodes())
        positions[id] = m_document.graph().node(id)->position + direction * kStep;
    if (!positions.empty())
        m_document.moveNodes(positions, m_gesture);
    else if (selected.frame != 0)
        m_scene.frames().moveBy(selected.frame, direction * kStep, m_gesture);
    return !positions.empty() || selected.frame != 0;
}

bool CanvasKeys::resize(QPointF direction)
{
    const quint64 frame = m_scene.selectedThing().frame;
    if (frame != 0)
        m_scene.frames().resizeBy(frame, QSizeF(direction.x(), direction.y()) * kStep, m_gesture);
    return frame != 0;
}

void CanvasKeys::scroll(QPointF direction)
{
    QScrollBar* const bar = direction.x() != 0 ? m_view.horizontalScrollBar() : m_view.verticalScrollBar();
    bar->setValue(bar->value() + int(direction.x() + direction.y()) * kScroll);
}

bool CanvasKeys::enter()
{
    if (const quint64 frame = m_scene.selectedThing().frame) {
        m_scene.selectNodes(m_scene.frames().nodesInside(frame));
        return true;
    }
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
    const CanvasThing selected = m_scene.selectedThing();
    if (FrameItem* const frame = m_scene.frames().item(selected.frame)) {
        m_view.setFocus();
        frame->editTitle();
    } else {
        renameNode(current());
    }
}

void CanvasKeys::renameNode(NodeId node)
{
    const NodeRecord* const record = m_document.graph().node(node);
    if (!record)
        return;
    QInputDialog dialog(m_view.window());
    dialog.setWindowTitle(tr("Rename node"));
    dialog.setLabelText(tr("Name of the node"));
    dialog.setTextValue(record->name);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const NodeRecord* const now = m_document.graph().node(node);
    const QString name = dialog.textValue().trimmed();
    if (now && !name.isEmpty() && name != now->name)
        m_document.renameNode(node, uniqueName(m_document.graph(), name));
}

void CanvasKeys::typeValues()
{
    if (typedInputs(m_document, current()).empty())
        return;
    ValuesDialog dialog(m_document, current(), m_view.window());
    dialog.exec();
}

void CanvasKeys::connectSelected()
{
    const std::optional<Connection> wire = m_scene.selectedThing().wire;
    chooseConnections(wire ? wire->to : current(), wire);
}

void CanvasKeys::connectLater(NodeId node, const std::optional<Connection>& wire)
{
    QMetaObject::invokeMethod(
        this, [this, node, wire] { chooseConnections(node, wire); }, Qt::QueuedConnection);
}

void CanvasKeys::chooseConnections(NodeId node, const std::optional<Connection>& wire)
{
    if (!m_document.graph().node(node))
        return;
    ConnectionDialog dialog(m_scene, node, wire, m_view.window());
    dialog.exec();
}

} // namespace Host
