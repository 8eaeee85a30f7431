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
    QAccessibleInterface* child(int index) const override
    {
        const std::vector<QObject*> all = children();
        return index >= 0 && index < int(all.size()) ? QAccessible::queryAccessibleInterface(all[std::size_t(index)])
                                                     : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        const std::vector<QObject*> all = children();
        const auto found = child ? std::find(all.begin(), all.end(), child->object()) : all.end();
        return found == all.end() ? -1 : int(found - all.begin());
    }
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
        const SceneView* const view = viewOf(m_anchor);
        auto* const keys = view ? view->findChild<CanvasKeys*>() : nullptr;
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
        const SceneView* const view = viewOf(m_node);
        state.selectable = state.multiSelectable = state.focusable = true;
        state.selected = m_node.isSelected();
        state.focused = state.selected && view && view->hasFocus() && !m_node.scene()->focusItem();
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

// The view, whose children are the nodes, by their numbers.
class ViewInterface : public QAccessibleWidget
{
public:
    ViewInterface(SceneView* view, Scene& scene)
        : QAccessibleWidget(view, QAccessible::Pane)
        , m_scene(scene)
    {
    }

    int childCount() const override { return int(m_scene.document().graph().nodes.size()); }
    QAccessibleInterface* child(int index) const override
    {
        const auto& nodes = m_scene.document().graph().nodes;
        if (index < 0 || index >= int(nodes.size()))
            return nullptr;
        return QAccessible::queryAccessibleInterface(m_scene.item(std::next(nodes.begin(), index)->first));
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        const auto* const node = child ? qobject_cast<const Node*>(child->object()) : nullptr;
        const auto& nodes = m_scene.document().graph().nodes;
        const auto found = node ? nodes.find(node->id()) : nodes.end();
        return found == nodes.end() ? -1 : int(std::distance(nodes.begin(), found));
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        auto* const view = static_cast<SceneView*>(widget());
        for (QGraphicsItem* each = view->itemAt(view->viewport()->mapFromGlobal(QPoint(x, y))); each;
             each = each->parentItem()) {
            if (each->type() == Node::Type)
                return QAccessible::queryAccessibleInterface(static_cast<Node*>(each));
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const auto* const proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(m_scene.focusItem());
        if (proxy && proxy->widget())
            return QAccessible::queryAccessibleInterface(proxy->widget());
        const std::vector<NodeId> selected = m_scene.selectedNodes();
        return selected.empty() ? nullptr : QAccessible::queryAccessibleInterface(m_scene.item(selected.front()));
    }

private:
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

QAccessibleInterface* accessibleItem(const QString& className, QObject* object)
{
    if (className == QLatin1String("Host::SceneView")) {
        auto* const view = qobject_cast<SceneView*>(object);
        auto* const scene = view ? qobject_cast<Scene*>(view->scene()) : nullptr;
        return scene ? new ViewInterface(view, *scene) : nullptr;
    }
    if (className == QLatin1String("Ondrel::Node"))
        return new NodeInterface(static_cast<Node*>(object));
    if (className == QLatin1String("Ondrel::FieldBase"))
        return new FieldInterface(static_cast<FieldBase*>(object));
    if (className == QLatin1String("Ondrel::Anchor"))
        return new AnchorInterface(static_cast<Anchor*>(object));
    return nullptr;
}

} // namespace Host
