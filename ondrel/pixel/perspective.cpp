#include <ondrel/pixel/perspective.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/transformrows_p.h>

using namespace Ondrel;

namespace
{

using Matrix = Eigen::Matrix<double, 3, 3>;

// The bounding box of a rectangle of the picture at `scale`, sent through a matrix for the picture at scale 1.
RectT<float> mappedBox(RectT<int> const& rect, float scale, Matrix const& matrix)
{
    RectT<float> box;
    box.initializeBoundingBox();
    const auto addCorner = [&](int x, int y) {
        const Place mapped = projected(matrix, double(x) / double(scale), double(y) / double(scale));
        box.addPoint(QPointF(mapped.x * double(scale), mapped.y * double(scale)));
    };
    addCorner(rect.left(), rect.top());
    addCorner(rect.right(), rect.top());
    addCorner(rect.right(), rect.bottom());
    addCorner(rect.left(), rect.bottom());
    return box;
}

// Whether an output with these sides, once they are truncated, can be had.
bool canBeMade(RectT<float> const& bounds)
{
    const auto fits = [](float side) { return side >= 0.0f && double(side) <= std::numeric_limits<int>::max(); };
    if (!fits(bounds.width()) || !fits(bounds.height()))
        return false;
    const std::uint64_t pixels = std::uint64_t(bounds.width()) * std::uint64_t(bounds.height());
    return pixels < (std::uint64_t{1} << 30);
}

bool hasSize(Image const& image, RectT<float> const& bounds)
{
    return image.width == std::uint32_t(bounds.width()) && image.height == std::uint32_t(bounds.height());
}

// Halves upward; the nearest int if it does not fit, 0 if it is not a number.
int rounded(float v)
{
    const double whole = std::floor(double(v) + 0.5);
    if (std::isnan(whole))
        return 0;
    return int(std::clamp(whole, double(std::numeric_limits<int>::min()), double(std::numeric_limits<int>::max())));
}

RectT<int> rounded(RectT<float> const& rect)
{
    return RectT<int>(rounded(rect.x()), rounded(rect.y()), rounded(rect.width()), rounded(rect.height()));
}

} // namespace

void CalculateTransformOutputBoundingRect(unsigned int width, unsigned int height, float scale, TransformSize size,
                                          Eigen::Matrix<double, 3, 3> const& matrix, Ondrel::RectT<float>& rect)
{
    if (size == TransformSizeKeep)
        rect = RectT<float>(0.0f, 0.0f, float(width), float(height));
    else if (size == TransformSizeBounding)
        rect = mappedBox(RectT<int>(0, 0, int(width), int(height)), scale, matrix);
}

Ondrel::RectT<int> Transform(Ondrel::Image const& image, Ondrel::RectT<int> region, double scale, TransformSize size,
                             Ondrel::FilterMethod filter, Eigen::Matrix<double, 3, 3> const& matrix,
                             std::shared_ptr<const Ondrel::Image>& output)
{
    if (scale == 0.0)
        return RectT<int>::invalid();
    RectT<float> bounds;
    CalculateTransformOutputBoundingRect(image.width, image.height, float(scale), size, matrix, bounds);
    if (!canBeMade(bounds))
        return RectT<int>::invalid();

    RectT<float> area = bounds;
    std::shared_ptr<const Image> target;
    if (!region.isInvalid() && output && hasSize(*output, bounds)) {
        area.subtractRect(mappedBox(region, float(scale), matrix));
        target = output;
    } else {
        target = std::make_shared<Image>(unsigned(bounds.width()), unsigned(bounds.height()));
    }
    area.translate(-bounds.left(), -bounds.top());
    area.subtractRect(RectT<float>(0.0f, 0.0f, float(target->width), float(target->height)));

    const RectT<int> written = rounded(area);
    transformRows(image, filter, pixelMapping(matrix, scale, bounds), written, {*target, target != output});
    output = std::move(target);
    return written;
}
