#pragma once

#include <ondrel/core/rect.h>
#include <ondrel/nodes/transformgraph.h>

#include <Eigen/Core>

#include <QSize>

#include <vector>

// The picture's way to the screen: photograph, crop, rotation, perspective, each a node of a transform graph.
namespace Route
{

enum NodeId : unsigned long { PhotographNode = 1, CropNode = 2, RotationNode = 3, PerspectiveNode = 4 };

// One change of geometry. The matrix takes points of the picture before to points of the picture after, whose bounding
// box begins at (0, 0), so that one matrix serves both the pixels and the points.
struct Step {
    Eigen::Matrix3d matrix = Eigen::Matrix3d::Identity();
    QSize size; // after
};

// What follows the crop: a rotation by 9 degrees and a tilt of the camera, for a picture of that size.
struct Steps {
    Step rotation;
    Step perspective;
};
Steps stepsFor(QSize cropped);

// The graph for a photograph and the frame that is cut out of it; all of the photograph while the frame is edited.
TransformGraph graphFor(QSize photograph, const Ondrel::RectT<int>& frame);

} // namespace Route
