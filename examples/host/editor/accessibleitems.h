#pragma once

#include "scene.h"

#include <QAccessible>

class QGraphicsProxyWidget;

namespace Host
{

// Lets screen readers and other assistive programs walk through the canvas: from the view to the nodes, frames and
// wires, from nodes to their fields, and there to the anchor and the control. Nodes say their name, kind, errors and
// what views show them, frames their title and their nodes, wires and anchors what they connect; controls go by the
// name of their field. Nodes can be selected and shown, frames selected and retitled, wires selected, and these and
// anchors open the choice of connections. For QAccessible::installFactory(), before the first scene is made.
QAccessibleInterface* accessibleItem(const QString& className, QObject* object);

// What has the interface of a thing on the canvas; null if there is none.
QObject* objectOf(Scene& scene, const CanvasThing& thing);
// A node's fields from top to bottom.
std::vector<Ondrel::FieldBase*> fieldsOf(const Node& node);
// The control of a field; null if it has none.
QWidget* controlOf(const Ondrel::FieldBase& field);

} // namespace Host
