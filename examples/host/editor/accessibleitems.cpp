#include "accessibleitems.h"

#include "canvaskeys.h"
#include "sceneview.h"

#include <ondrel/nodes/fieldbase.h>

#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QGraphicsProxyWidget>

#include <algorithm>

namespace Host
{
namespace
{

using Ondrel::FieldBase;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Host::Canvas)
};

SceneView* viewOf(const QGraphicsItem& item)
{
    const QGraphicsScene* const scene = item.scene();
    return scene && !scene->views().isEmpty() ? qobject_cast<SceneView*>(scene->views().front()) : nullptr;
}

CanvasKeys* keysOf(const QGraphicsItem& item)
{
    const SceneView* const view = viewOf(item);
    return view ? view->findChild<CanvasKeys*>() : nullptr;
}

// That keys on the canvas are for what is selected.
bool hasKeys(const QGraphicsItem& item)
{
    const SceneView* const view = viewOf(item);
    return view && view->hasFocus() && !item.scene()->focusItem();
}

Scene* sceneOf(const QGraphicsItem& item)
{
    return qobject_cast<Scene*>(item.scene());
}

template <class Item>
Item* itemAbove(const QGraphicsItem& item)
{
    for (QGraphicsItem* each = item.parentItem(); each; each = each->parentItem()) {
        if (each->type() == Item::Type)
            return static_cast<Item*>(each);
    }
    return nullptr;
}

QAccessibleInterface* interfaceAt(const std::vector<QObject*>& all, int index)
{
    return index >= 0 && index < int(all.size()) ? QAccessible::queryAccessibleInterface(all[std::size_t(index)])
                                                 : nullptr;
}

int indexIn(const std::vector<QObject*>& all, const QAccessibleInterface* child)
{
    const auto found = child ? std::find(all.begin(), all.end(), child->object()) : all.end();
    return found == all.end() ? -1 : int(found - all.begin());
}

// What all items have in common: a place on the screen, and children that are looked up anew each time.
class ItemInterface : public QAccessibleObject
{
public:
    ItemInterface(QObject* object, QGraphicsItem& item)
        : QAccessibleObject(object)
        , m_item(item)
    {
    }

    QRect rect() const override
    {
        const SceneView* const view = viewOf(m_item);
        if (!view)
            return QRect();
        const QRect inView = view->mapFromScene(m_item.sceneBoundingRect()).boundingRect();
        return QRect(view->viewport()->mapToGlobal(inView.topLeft()), inView.size());
    }

    int childCount() const override { return int(children().size()); }
    QAccessibleInterface* child(int index) const override { return interfaceAt(children(), index); }
    int indexOfChild(const QAccessibleInterface* child) const override { return indexIn(children(), child); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        for (int i = childCount() - 1; i >= 0; --i) {
            if (child(i)->rect().contains(x, y))
                return child(i);
        }
        return nullptr;
    }
    QWindow* window() const override
    {
        const SceneView* const view = viewOf(m_item);
        return view ? view->window()->windowHandle() : nullptr;
    }

protected:
    virtual std::vector<QObject*> children() const { return {}; }
    QGraphicsItem& item() const { return m_item; }

private:
    QGraphicsItem& m_item;
};

class AnchorInterface : public ItemInterface, public QAccessibleActionInterface
{
public:
    explicit AnchorInterface(Anchor* anchor)
        : ItemInterface(anchor, *anchor)
        , m_anchor(*anchor)
    {
    }

    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(itemAbove<FieldBase>(m_anchor));
    }
    QAccessible::Role role() const override { return QAccessible::PushButton; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.checkable = true;
        state.checked = m_anchor.connected();
        return state;
    }
    QString text(QAccessible::Text kind) const override
    {
        const FieldBase* const field = itemAbove<FieldBase>(m_anchor);
        if (kind == QAccessible::Name && field)
            return (m_anchor.direction() == Anchor::Output ? Texts::tr("Output %1") : Texts::tr("Input %1"))
                .arg(field->displayName());
        return kind == QAccessible::Description ? connections() : QString();
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override
    {
        const Node* const node = itemAbove<Node>(m_anchor);
        CanvasKeys* const keys = keysOf(m_anchor);
        if (action == pressAction() && node && keys)
            keys->connectLater(node->id());
    }

private:
    QString connections() const
    {
        Node* const node = itemAbove<Node>(m_anchor);
        Scene* const scene = sceneOf(m_anchor);
        if (!node || !scene)
            return QString();
        const Graph& graph = scene->document().graph();
        const bool isOutput = m_anchor.direction() == Anchor::Output;
        const QString field =
            isOutput ? node->outputNameOfFieldByAnchor(&m_anchor) : node->inputNameOfFieldByAnchor(&m_anchor);
        QStringList others;
        for (const Connection& connection : graph.touching(node->id())) {
            if (isOutput && connection.from == node->id() && connection.output == field)
                others.append(graph.node(connection.to)->name);
            if (!isOutput && connection.to == node->id() && connection.input == field)
                others.append(graph.node(connection.from)->name);
        }
        return others.isEmpty() ? Texts::tr("not connected") : Texts::tr("connected with %1").arg(others.join(", "));
    }

    Anchor& m_anchor;
};

class FieldInterface : public ItemInterface
{
public:
    explicit FieldInterface(FieldBase* field)
        : ItemInterface(field, *field)
        , m_field(*field)
    {
    }

    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(itemAbove<Node>(m_field));
    }
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QAccessible::State state() const override { return QAccessible::State(); }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? m_field.displayName() : QString();
    }

protected:
    std::vector<QObject*> children() const override
    {
        std::vector<QObject*> children;
        if (m_field.anchor() && m_field.anchor()->isVisible())
            children.push_back(m_field.anchor());
        if (QWidget* const control = controlOf(m_field))
            children.push_back(control);
        return children;
    }

private:
    FieldBase& m_field;
};

class NodeInterface : public ItemInterface, public QAccessibleActionInterface
{
public:
    explicit NodeInterface(Node* node)
        : ItemInterface(node, *node)
        , m_node(*node)
    {
    }

    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(viewOf(m_node)); }
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.selectable = state.multiSelectable = state.focusable = true;
        state.selected = m_node.isSelected();
        state.focused = state.selected && hasKeys(m_node);
        return state;
    }
    QString text(QAccessible::Text kind) const override
    {
        Scene* const scene = sceneOf(m_node);
        const NodeRecord* const record = scene ? scene->document().graph().node(m_node.id()) : nullptr;
        if (!record)
            return QString();
        if (kind == QAccessible::Name)
            return record->name;
        return kind == QAccessible::Description ? description(*scene, *record) : QString();
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    // Showing in the view is what a press of the emblem does.
    QStringList actionNames() const override { return {setFocusAction(), pressAction()}; }
    QString localizedActionName(const QString& action) const override
    {
        return action == pressAction() ? Texts::tr("Show in the view")
                                       : QAccessibleActionInterface::localizedActionName(action);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override
    {
        Scene* const scene = sceneOf(m_node);
        if (scene && action == setFocusAction())
            scene->selectNodes({m_node.id()});
        else if (scene && action == pressAction())
            scene->show(m_node.id(), PreviewNode::EmblemPrimary);
    }

protected:
    std::vector<QObject*> children() const override
    {
        const std::vector<FieldBase*> fields = fieldsOf(m_node);
        return {fields.begin(), fields.end()};
    }

private:
    QString description(Scene& scene, const NodeRecord& record) const
    {
        QStringList parts;
        if (const NodeType* const type = scene.document().types().find(record.type))
            parts.append(type->title);
        if (record.bypassed)
            parts.append(Texts::tr("bypassed"));
        if (scene.primary() == record.id)
            parts.append(Texts::tr("shown in the view"));
        if (scene.secondary() == record.id)
            parts.append(Texts::tr("shown as secondary"));
        if (!m_node.toolTip().isEmpty())
            parts.append(m_node.toolTip()); // why it could not do its work
        return parts.join(", ");
    }

    Node& m_node;
};

// What keys go to once it is selected: it alone.
class SingleInterface : public ItemInterface, public QAccessibleActionInterface
{
public:
    using ItemInterface::ItemInterface;

    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(viewOf(item())); }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.selectable = state.focusable = true;
        state.selected = isSelected();
        state.focused = state.selected && hasKeys(item());
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override { return {setFocusAction(), pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    virtual bool isSelected() const = 0;
};

class FrameInterface : public SingleInterface
{
public:
    explicit FrameInterface(FrameItem* frame)
        : SingleInterface(frame, *frame)
        , m_frame(*frame)
    {
    }

    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QString text(QAccessible::Text kind) const override
    {
        Scene* const scene = sceneOf(m_frame);
        if (kind == QAccessible::Name)
            return m_frame.title();
        if (kind != QAccessible::Description || !scene)
            return QString();
        QStringList inside;
        for (const NodeId node : scene->frames().nodesInside(m_frame.id()))
            inside.append(scene->document().graph().node(node)->name);
        return inside.isEmpty() ? Texts::tr("empty frame") : Texts::tr("frame around %1").arg(inside.join(", "));
    }
    QString localizedActionName(const QString& action) const override
    {
        return action == pressAction() ? Texts::tr("Edit title")
                                       : QAccessibleActionInterface::localizedActionName(action);
    }
    void doAction(const QString& action) override
    {
        Scene* const scene = sceneOf(m_frame);
        CanvasKeys* const keys = keysOf(m_frame);
        if (!scene || !keys || !actionNames().contains(action))
            return;
        scene->select({0, std::nullopt, m_frame.id()});
        if (action == pressAction())
            keys->renameSelected();
    }

protected:
    bool isSelected() const override
    {
        Scene* const scene = sceneOf(m_frame);
        return scene && scene->selectedThing().frame == m_frame.id();
    }

private:
    FrameItem& m_frame;
};

class WireInterface : public SingleInterface
{
public:
    explicit WireInterface(SceneWire* wire)
        : SingleInterface(wire, wire->item)
        , m_wire(*wire)
    {
    }

    QAccessible::Role role() const override { return QAccessible::Link; }
    QString text(QAccessible::Text kind) const override
    {
        const Graph& graph = m_wire.scene.document().graph();
        const NodeRecord* const from = graph.node(m_wire.connection.from);
        const NodeRecord* const to = graph.node(m_wire.connection.to);
        if (!from || !to)
            return QString();
        if (kind == QAccessible::Name)
            return Texts::tr("Wire from %1 to %2").arg(from->name, to->name);
        return kind == QAccessible::Description ? fields() : QString();
    }
    QString localizedActionName(const QString& action) const override
    {
        return action == pressAction() ? Texts::tr("Connect otherwise")
                                       : QAccessibleActionInterface::localizedActionName(action);
    }
    void doAction(const QString& action) override
    {
        CanvasKeys* const keys = keysOf(m_wire.item);
        if (!keys || !actionNames().contains(action))
            return;
        m_wire.scene.select({0, m_wire.connection, 0});
        if (action == pressAction())
            keys->connectLater(m_wire.connection.to, m_wire.connection);
    }

protected:
    bool isSelected() const override { return m_wire.scene.selectedThing().wire == m_wire.connection; }

private:
    QString fields() const
    {
        const Connection& wire = m_wire.connection;
        const PreviewNode* const from = m_wire.scene.item(wire.from);
        const PreviewNode* const to = m_wire.scene.item(wire.to);
        if (!from || !to)
            return QString();
        const auto index = [](int found) { return static_cast<unsigned long>(found); };
        return Texts::tr("%1 to %2")
            .arg(from->outputDisplayNameOfFieldByIndex(index(from->outputIndexOfFieldByName(wire.output))),
                 to->inputDisplayNameOfFieldByIndex(index(to->inputIndexOfFieldByName(wire.input))));
    }

    SceneWire& m_wire;
};

// The view, whose children are the nodes, by their numbers, then the frames and the wires.
class ViewInterface : public QAccessibleWidget
{
public:
    ViewInterface(SceneView* view, Scene& scene)
        : QAccessibleWidget(view, QAccessible::Pane)
        , m_scene(scene)
    {
    }

    int childCount() const override { return int(children().size()); }
    QAccessibleInterface* child(int index) const override { return interfaceAt(children(), index); }
    int indexOfChild(const QAccessibleInterface* child) const override { return indexIn(children(), child); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        auto* const view = static_cast<SceneView*>(widget());
        return interfaceOf(m_scene.thingAt(view->mapToScene(view->viewport()->mapFromGlobal(QPoint(x, y)))));
    }
    QAccessibleInterface* focusChild() const override
    {
        const auto* const proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(m_scene.focusItem());
        if (proxy && proxy->widget())
            return QAccessible::queryAccessibleInterface(proxy->widget());
        return interfaceOf(m_scene.selectedThing());
    }

private:
    std::vector<QObject*> children() const
    {
        std::vector<QObject*> all;
        for (const auto& [id, node] : m_scene.nodeItems())
            all.push_back(node);
        for (const auto& [id, frame] : m_scene.frames().items())
            all.push_back(frame);
        for (const auto& wire : m_scene.wires().all())
            all.push_back(wire.get());
        return all;
    }
    QAccessibleInterface* interfaceOf(const CanvasThing& thing) const
    {
        QObject* const object = objectOf(m_scene, thing);
        return object ? QAccessible::queryAccessibleInterface(object) : nullptr;
    }

    Scene& m_scene;
};

} // namespace

std::vector<FieldBase*> fieldsOf(const Node& node)
{
    std::vector<FieldBase*> fields;
    for (QGraphicsItem* const each : node.childItems()) {
        if (each->type() == FieldBase::Type && each->isVisible())
            fields.push_back(static_cast<FieldBase*>(each));
    }
    std::stable_sort(fields.begin(), fields.end(),
                     [](const FieldBase* a, const FieldBase* b) { return a->scenePos().y() < b->scenePos().y(); });
    return fields;
}

QWidget* controlOf(const FieldBase& field)
{
    for (QGraphicsItem* const each : field.childItems()) {
        if (const auto* const proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(each))
            return proxy->widget();
    }
    return nullptr;
}

QObject* objectOf(Scene& scene, const CanvasThing& thing)
{
    if (PreviewNode* const node = scene.item(thing.node))
        return node;
    if (thing.wire)
        return scene.wires().find(*thing.wire);
    return scene.frames().item(thing.frame);
}

QAccessibleInterface* accessibleItem(const QString& className, QObject* object)
{
    if (className == QLatin1String("Host::SceneView")) {
        auto* const view = qobject_cast<SceneView*>(object);
        auto* const scene = view ? qobject_cast<Scene*>(view->scene()) : nullptr;
        return scene ? new ViewInterface(view, *scene) : nullptr;
    }
    if (className == QLatin1String("Host::FrameItem"))
        return new FrameInterface(static_cast<FrameItem*>(object));
    if (className == QLatin1String("Host::SceneWire"))
        return new WireInterface(static_cast<SceneWire*>(object));
    if (className == QLatin1String("Ondrel::Node"))
        return new NodeInterface(static_cast<Node*>(object));
    if (className == QLatin1String("Ondrel::FieldBase"))
        return new FieldInterface(static_cast<FieldBase*>(object));
    if (className == QLatin1String("Ondrel::Anchor"))
        return new AnchorInterface(static_cast<Anchor*>(object));
    return nullptr;
}

} // namespace Host
