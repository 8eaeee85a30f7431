#include "perspective_reference.h"

#include "geometry_reference.h"
#include "painter_reference.h"

#include <Eigen/LU>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace OndrelReference
{
namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using RectF = Ondrel::RectT<float>;
using RectI = Ondrel::RectT<int>;

struct Point {
    double x, y;
};

Point map(const Matrix& m, double x, double y)
{
    const double u = m(0, 0) * x + m(0, 1) * y + m(0, 2);
    const double v = m(1, 0) * x + m(1, 1) * y + m(1, 2);
    const double w = m(2, 0) * x + m(2, 1) * y + m(2, 2);
    return {u / w, v / w};
}

Point middle(Point a, Point b)
{
    return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

// Halves upward.
int rounded(float v)
{
    return int(std::floor(double(v) + 0.5));
}

std::uint16_t* pixel(Image& image, int x, int y)
{
    return image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
}

// Premultiplied, in the range 0 to 1, zeros outside. `x` and `y` are whole numbers.
void fetch(const Image& image, double x, double y, float* rgba)
{
    std::fill_n(rgba, 4, 0.0f);
    if (!(x >= 0.0 && y >= 0.0 && x < double(image.width) && y < double(image.height)))
        return;
    const std::uint16_t* const p = image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
    rgba[3] = float(p[3]) / 65535.0f;
    for (int c = 0; c < 3; ++c)
        rgba[c] = float(p[c]) / 65535.0f * rgba[3];
}

void bilinear(const Image& image, Point at, float* rgba)
{
    std::fill_n(rgba, 4, 0.0f);
    if (!std::isfinite(at.x) || !std::isfinite(at.y))
        return;
    const double x = std::floor(at.x), y = std::floor(at.y);
    const float fx = float(at.x - x), fy = float(at.y - y);
    float p00[4], p10[4], p01[4], p11[4];
    fetch(image, x, y, p00);
    fetch(image, x + 1.0, y, p10);
    fetch(image, x, y + 1.0, p01);
    fetch(image, x + 1.0, y + 1.0, p11);
    for (int c = 0; c < 4; ++c)
        rgba[c] = (p00[c] * (1.0f - fx) + p10[c] * fx) * (1.0f - fy) + (p01[c] * (1.0f - fx) + p11[c] * fx) * fy;
}

float cubic(const float* p, float t)
{
    return p[1] + (0.5f * p[2] - 0.5f * p[0]) * t + (p[0] - 2.5f * p[1] + 2.0f * p[2] - 0.5f * p[3]) * (t * t) +
           (1.5f * p[1] - 0.5f * p[0] - 1.5f * p[2] + 0.5f * p[3]) * (t * t * t);
}

// The sampler of scaling, whose positions are floats, with zeros outside.
void bicubic(const Image& image, Point at, float* rgba)
{
    std::fill_n(rgba, 4, 0.0f);
    const float atX = float(at.x), atY = float(at.y);
    if (!std::isfinite(atX) || !std::isfinite(atY))
        return;
    const float x = std::floor(atX), y = std::floor(atY);
    float rows[4][4]; // [channel][row]
    for (int j = 0; j < 4; ++j) {
        float p[4][4];
        for (int i = 0; i < 4; ++i)
            fetch(image, double(x) + i - 1, double(y) + j - 1, p[i]);
        for (int c = 0; c < 4; ++c) {
            const float four[4] = {p[0][c], p[1][c], p[2][c], p[3][c]};
            rows[c][j] = cubic(four, atX - x);
        }
    }
    for (int c = 0; c < 4; ++c)
        rgba[c] = cubic(rows[c], atY - y);
}

struct Quadrilateral {
    Point corner[4]; // around
    Point centre;

    // Whether two neighbouring corners lie more than one and a half source pixels apart on an axis.
    bool isLarge() const
    {
        for (int i = 0; i < 4; ++i) {
            const Point a = corner[i], b = corner[(i + 1) % 4];
            if (std::fabs(a.x - b.x) > 1.5 || std::fabs(a.y - b.y) > 1.5)
                return true;
        }
        return false;
    }
};

// The four quarters in the order of the corners.
void supersample(const Image& image, const Quadrilateral& q, int depth, float* rgba)
{
    std::fill_n(rgba, 4, 0.0f);
    for (int i = 0; i < 4; ++i) {
        const Point outer = q.corner[i];
        const Point before = middle(q.corner[(i + 3) % 4], outer), after = middle(outer, q.corner[(i + 1) % 4]);
        const Quadrilateral quarter = {{outer, after, q.centre, before}, middle(outer, q.centre)};
        float part[4];
        if (depth > 0 && quarter.isLarge())
            supersample(image, quarter, depth - 1, part);
        else
            bilinear(image, quarter.centre, part);
        for (int c = 0; c < 4; ++c)
            rgba[c] += part[c] * 0.25f;
    }
}

std::uint16_t stored(float v)
{
    if (v > 1.0f)
        return 65535;
    return v > 0.0f ? std::uint16_t(v * 65535.0f) : std::uint16_t(0);
}

void filteredPixel(const Image& image, const Matrix& m, int x, int y, FilterMethod filter, std::uint16_t* out)
{
    const Quadrilateral q = {{map(m, x, y), map(m, x + 1, y), map(m, x + 1, y + 1), map(m, x, y + 1)},
                             map(m, x + 0.5, y + 0.5)};
    float rgba[4];
    if (q.isLarge())
        supersample(image, q, 4, rgba);
    else if (filter == FilterMethod::Bilinear)
        bilinear(image, q.centre, rgba);
    else
        bicubic(image, q.centre, rgba);
    const float inverse = rgba[3] == 0.0f ? 0.0f : 1.0f / rgba[3];
    for (int c = 0; c < 3; ++c)
        out[c] = stored(rgba[c] * inverse);
    out[3] = stored(rgba[3]);
}

void nearestPixel(const Image& image, const Matrix& m, int x, int y, std::uint16_t* out)
{
    const Point at = map(m, x, y);
    const double fromX = std::floor(at.x + 0.5), fromY = std::floor(at.y + 0.5);
    if (fromX >= 0.0 && fromY >= 0.0 && fromX < double(image.width) && fromY < double(image.height))
        std::copy_n(image.data + (std::size_t(fromY) * image.width + std::size_t(fromX)) * 4, 4, out);
}

// From output pixels to source pixels.
Matrix outputToSource(const Matrix& matrix, double scale, const RectF& bounds)
{
    Matrix inverse = Matrix::Zero(), toSource, fromOutput;
    bool invertible = false;
    Matrix candidate;
    matrix.computeInverseWithCheck(candidate, invertible, 1e-12);
    if (invertible)
        inverse = candidate;
    toSource << scale, 0.0, -0.5, 0.0, scale, -0.5, 0.0, 0.0, 1.0;
    fromOutput << 1.0 / scale, 0.0, double(bounds.left()) + 0.5, 0.0, 1.0 / scale, double(bounds.top()) + 0.5, 0.0, 0.0,
        1.0;
    return toSource * inverse * fromOutput;
}

float normalized(float angle)
{
    if (angle < 0.0f)
        angle = 360.0f - std::fmod(-angle, 360.0f);
    return std::fmod(angle, 360.0f);
}

float radians(float angle)
{
    return float(double(angle) * 0.017453292519943295);
}

// The sides of the largest upright rectangle in the turned image.
QSize inscribedSize(const QSize& size, float angle)
{
    const float width = float(size.width()), height = float(size.height());
    const float shorter = std::min(width, height), longer = std::max(width, height);
    const float as = std::fabs(std::sin(radians(angle))), ac = std::fabs(std::cos(radians(angle)));
    if (longer * (2.0f * as * ac) + 0.0001f >= shorter) {
        const float half = shorter * 0.5f;
        return width >= height ? QSize(int(half / as), int(half / ac)) : QSize(int(half / ac), int(half / as));
    }
    const float a2 = std::fabs(std::cos(2.0f * radians(angle)));
    return QSize(int(std::fabs(width * ac - height * as) / a2), int(std::fabs(height * ac - width * as) / a2));
}

// Cut to `target` or set on a blank canvas, with the middle kept.
Image centred(const Image& image, const QSize& target)
{
    int w = int(image.width), h = int(image.height);
    Image canvas = image;
    if (w < target.width() || h < target.height()) {
        canvas = Image(unsigned(std::max(w, target.width())), unsigned(std::max(h, target.height())));
        compose(canvas, -(std::min(w - target.width(), 0) / 2), -(std::min(h - target.height(), 0) / 2), image, 1.0f);
        w = int(canvas.width);
        h = int(canvas.height);
    }
    const int dw = w - target.width(), dh = h - target.height();
    const int left = std::max(dw / 2, 0), top = std::max(dh / 2, 0);
    return crop(canvas, unsigned(left), unsigned(top), unsigned(std::max(dw - left, 0)),
                unsigned(std::max(dh - top, 0)));
}

} // namespace

RectF mappedRect(const RectI& rect, float scale, const Matrix& matrix)
{
    RectF box;
    box.initializeBoundingBox();
    for (const QPoint& corner : {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()}) {
        const Point p = map(matrix, double(corner.x()) / double(scale), double(corner.y()) / double(scale));
        box.addPoint(QPointF(p.x * double(scale), p.y * double(scale)));
    }
    return box;
}

RectI transform(const Image& image, const RectI& region, double scale, bool bounding, FilterMethod filter,
                const Matrix& matrix, std::shared_ptr<const Image>& output)
{
    const RectF bounds = bounding ? mappedRect(RectI(0, 0, int(image.width), int(image.height)), float(scale), matrix)
                                  : RectF(0, 0, float(image.width), float(image.height));
    const auto width = unsigned(bounds.width()), height = unsigned(bounds.height());
    RectF area = bounds;
    Image result(width, height);
    if (!region.isInvalid() && output && output->width == width && output->height == height) {
        area.subtractRect(mappedRect(region, float(scale), matrix));
        result = *output;
    }
    area.translate(-bounds.left(), -bounds.top());
    area.subtractRect(RectF(0, 0, float(width), float(height)));

    const RectI written(rounded(area.x()), rounded(area.y()), rounded(area.width()), rounded(area.height()));
    const Matrix m = outputToSource(matrix, scale, bounds);
    for (int y = written.top(); y < std::min(written.bottom(), int(height)); ++y)
        for (int x = written.left(); x < std::min(written.right(), int(width)); ++x) {
            if (filter == FilterMethod::NearestNeighbor)
                nearestPixel(image, m, x, y, pixel(result, x, y));
            else
                filteredPixel(image, m, x, y, filter, pixel(result, x, y));
        }
    output = std::make_shared<const Image>(std::move(result));
    return written;
}

Matrix rotationMatrix(const QSize& size, float angle)
{
    const double cx = size.width() / 2, cy = size.height() / 2;
    const double s = double(std::sin(radians(angle))), c = double(std::cos(radians(angle)));
    Matrix m;
    m << c, s, cx - c * cx - s * cy, -s, c, cy + s * cx - c * cy, 0.0, 0.0, 1.0;
    return m;
}

QSize rotateSize(const QSize& size, float angle, RotateSize mode)
{
    if (size.width() <= 0 || size.height() <= 0)
        return QSize(0, 0);
    angle = normalized(angle);
    if (mode == RotateSizeKeep || angle == 0.0f || angle == 180.0f)
        return size;
    if (angle == 90.0f || angle == 270.0f)
        return size.transposed();
    if (mode == RotateSizeBounding) {
        const RectF box = mappedRect(RectI(0, 0, size.width(), size.height()), 1.0f, rotationMatrix(size, angle));
        return QSize(int(box.width()), int(box.height()));
    }
    return mode == RotateSizeInscribed ? inscribedSize(size, angle) : QSize(0, 0);
}

Image rotate(const Image& image, float angle, RotateSize mode, FilterMethod filter)
{
    angle = normalized(angle);
    if (angle == 90.0f)
        return rotate90(image, mode);
    if (angle == 180.0f)
        return rotate180(image);
    if (angle == 270.0f)
        return rotate270(image, mode);
    const QSize size(int(image.width), int(image.height)), target = rotateSize(size, angle, mode);
    if (target.width() == 0 || target.height() == 0)
        return Image();
    std::shared_ptr<const Image> turned;
    transform(image, RectI(0, 0, size.width(), size.height()), 1.0, true, filter, rotationMatrix(size, angle), turned);
    return centred(*turned, target);
}

} // namespace OndrelReference
