#pragma once

#include <QPointF>
#include <QtCore/qnamespace.h>

namespace Host
{

// Where an arrow key points, one long; null for other keys.
inline QPointF arrowDirection(int key)
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

} // namespace Host
