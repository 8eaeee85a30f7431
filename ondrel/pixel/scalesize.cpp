#include <ondrel/pixel/scale.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr unsigned int kLargestEdge = 15000;

// Clamped before the conversion: a float outside the range of the type has no defined integer. Not a number gives 0.
unsigned int clampedToUnsigned(double value)
{
    if (!(value > 0.0))
        return 0;
    return unsigned(std::min(value, double(std::numeric_limits<unsigned int>::max())));
}

// Halves go up. The sum is exact in double, which keeps 0.49999997 from becoming 1.
unsigned int roundedToUnsigned(float value)
{
    return clampedToUnsigned(std::floor(double(value) + 0.5));
}

struct Request {
    unsigned int imageWidth;
    unsigned int imageHeight;
    unsigned int width;
    unsigned int height;
};

// Before the two are compared, as comparisons with what is not a number depend on their order.
float factorFromPercent(float percent)
{
    return percent > 0.0f ? percent / 100.0f : 0.0f;
}

void applyPercentage(Request& request, QString const& aspect, float percentWidth, float percentHeight)
{
    float fx = factorFromPercent(percentWidth);
    float fy = factorFromPercent(percentHeight);
    if (aspect != QLatin1String("Ignore"))
        fx = fy = aspect == QLatin1String("Keep") ? std::min(fx, fy) : std::max(fx, fy);
    request.width = roundedToUnsigned(float(request.imageWidth) * fx);
    request.height = roundedToUnsigned(float(request.imageHeight) * fy);
}

void applyPixels(Request& request, QString const& aspect, unsigned int pixelWidth, unsigned int pixelHeight,
                 float pixelFactor)
{
    request.width = clampedToUnsigned(double(float(pixelWidth) * pixelFactor));
    request.height = clampedToUnsigned(double(float(pixelHeight) * pixelFactor));
    if (aspect == QLatin1String("Ignore"))
        return;
    const float fx = float(request.width) / float(request.imageWidth);
    const float fy = float(request.height) / float(request.imageHeight);
    const bool heightDecides = aspect == QLatin1String("Keep") ? fy <= fx : fx <= fy;
    if (heightDecides)
        request.width = roundedToUnsigned(fy * float(request.imageWidth));
    else
        request.height = roundedToUnsigned(fx * float(request.imageHeight));
}

} // namespace

void CalculateScaleSize(QString const& unit, QString aspect, unsigned int imageWidth, unsigned int imageHeight,
                        float percentWidth, float percentHeight, unsigned int pixelWidth, unsigned int pixelHeight,
                        float pixelFactor, unsigned int& width, unsigned int& height)
{
    width = height = 0;
    if (imageWidth == 0 || imageHeight == 0)
        return;
    Request request{imageWidth, imageHeight, 0, 0};
    if (unit == QLatin1String("Percentage"))
        applyPercentage(request, aspect, percentWidth, percentHeight);
    else if (unit == QLatin1String("Pixels"))
        applyPixels(request, aspect, pixelWidth, pixelHeight, pixelFactor);
    width = std::min(request.width, kLargestEdge);
    height = std::min(request.height, kLargestEdge);
}
