#pragma once

#include <ondrel/core/rect.h>

#include <QSize>
#include <QString>

#include <Eigen/Core>

namespace Ondrel
{

// How one output field of a node relates geometrically to one of its input fields.
struct TransformMap {
    bool enabled = true; // when false, no route is followed from the input to the output
    QString inputField;
    QString outputField;
    QSize inputSizeHint; // the size that the node would like at this input; (-1, -1) if it has no wish

    // Homogeneous; takes a point of the input, a column vector on the right, to the output's coordinates.
    Eigen::Matrix3d transform = Eigen::Matrix3d::Identity();
    RectT<int> rect; // what the output covers, in the output's coordinates
};

} // namespace Ondrel
