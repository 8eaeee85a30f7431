#pragma once

#include <ondrel/ondrel_export.h>

#include <QRect>
#include <QSize>
#include <QVariant>

class QComboBox;
class QDialog;
class QGraphicsProxyWidget;
class QWidget;

namespace Ondrel
{

// Where the popup of a combo box goes, with `size`: under the box, moved to the left or upwards as far as it takes to
// fit. For a box outside of a scene that is in global coordinates, and the bounds are those of its screen. For a box in
// a scene it is in coordinates of the scene, at the zoom of the scene's first view, which bounds it; the popup is put
// into that scene too, on top of all else.
ONDREL_EXPORT QRect CalculateComboBoxPopupGeometry(QWidget* comboBox, QWidget* popup, const QSize& size);

// The proxy that shows the widget, or the nearest of its parents that has one, in a scene; null if there is none.
ONDREL_EXPORT QGraphicsProxyWidget* WidgetParentGraphicsProxyWidget(QWidget* widget);

// Selects the first entry whose Qt::UserRole data equals `data`, as QVariant compares; if there is none, nothing.
ONDREL_EXPORT void SetComboBoxIndexByData(QComboBox* comboBox, const QVariant& data);

// Moves a dialog onto the middle of its parent, laying it out first if it was never shown. Without a parent it stays.
ONDREL_EXPORT void CenterDialogToParent(QDialog* dialog);

} // namespace Ondrel
