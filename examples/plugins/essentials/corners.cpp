#include "corners.h"

namespace Essentials
{

bool isConvex(const Corners& corners)
{
    int left = 0, right = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const Eigen::Vector2d a = corners[(i + 1) % 4] - corners[i], b = corners[(i + 2) % 4] - corners[(i + 1) % 4];
        const double cross = a.x() * b.y() - a.y() * b.x();
        left += cross < -1e-6 ? 1 : 0;
        right += cross > 1e-6 ? 1 : 0;
    }
    return left == 4 || right == 4;
}

} // namespace Essentials
