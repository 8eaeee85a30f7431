#include "maps.h"

namespace Essentials
{

std::vector<Ondrel::TransformMap> mapsOf(const Eigen::Matrix3d& transform, const QSize& resultSize)
{
    if (resultSize.isEmpty())
        return {};
    Ondrel::TransformMap map;
    map.inputField = "image";
    map.outputField = "image";
    map.transform = transform;
    map.rect = Ondrel::RectT<int>(QPoint(0, 0), resultSize);
    return {map};
}

Eigen::Matrix3d translation(double dx, double dy)
{
    Eigen::Matrix3d matrix = Eigen::Matrix3d::Identity();
    matrix(0, 2) = dx;
    matrix(1, 2) = dy;
    return matrix;
}

Eigen::Matrix3d scaling(double x, double y)
{
    return Eigen::Vector3d(x, y, 1).asDiagonal();
}

} // namespace Essentials
