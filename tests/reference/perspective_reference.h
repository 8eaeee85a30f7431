#pragma once

#include <Eigen/Core>
#include <QSize>
#include <ondrel/core/image.h>
#include <ondrel/core/rect.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/scale.h>

#include <memory>

namespace OndrelReference
{

using Matrix = Eigen::Matrix<double, 3, 3>;

// The box of the corners of `rect` under the matrix, for a picture at `scale`.
Ondrel::RectT<float> mappedRect(const Ondrel::RectT<int>& rect, float scale, const Matrix& matrix);

// Transform for a scale other than 0, pixel for pixel. Positions are doubles, pixels floats.
Ondrel::RectT<int> transform(const Ondrel::Image& image, const Ondrel::RectT<int>& region, double scale, bool bounding,
                             Ondrel::FilterMethod filter, const Matrix& matrix,
                             std::shared_ptr<const Ondrel::Image>& output);

// The turn about the centre of an image, counter-clockwise, from an angle in degrees.
Matrix rotationMatrix(const QSize& size, float angle);
QSize rotateSize(const QSize& size, float angle, RotateSize mode);
Ondrel::Image rotate(const Ondrel::Image& image, float angle, RotateSize mode, Ondrel::FilterMethod filter);

} // namespace OndrelReference
