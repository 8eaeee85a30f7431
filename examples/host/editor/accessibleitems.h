#pragma once

#include "scene.h"

#include <QAccessible>

class QGraphicsProxyWidget;

namespace Host
{

// Lets screen readers and other assistive programs walk through the canvas: from the view to the nodes, from these to
// their fields, and there to the anchor and the control. Nodes say their name, kind, errors and what views show them,
// anchors what they are connected with; controls go by the name of their field. Nodes can be selected and shown, and
// anchors open the choice of connections. For QAccessible::installFactory(), before the first scene is made.
QAccessibleInterface* accessibleItem(const QString& className, QObject* object);

// A node's fields from top to bottom.
std::vector<Ondrel::FieldBase*> fieldsOf(const Node& node);
// The control of a field; null if it has none.
QWidget* controlOf(const Ondrel::FieldBase& field);

} // namespace Host
