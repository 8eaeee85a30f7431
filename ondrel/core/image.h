#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QImage>
#include <array>
#include <cstdint>
#include <memory>
#include <ondrel/core/cubicbezierspline.h>
#include <vector>
namespace Ondrel
{
class ONDREL_EXPORT Image
{
public:
    struct Histogram {
        std::vector<unsigned int> luminance, lightness, red, green, blue;
    };

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t sizeBytes = 0;
    std::uint16_t* data = nullptr;
    std::array<unsigned char, 32> colorProfile{};
    bool rawIsMosaic = false;
    std::uint32_t rawFilters = 0;
    bool rawHasInfo = false;
    float rawPreMultipliers[3] = {0, 0, 0};
    float rawCameraMultipliers[3] = {0, 0, 0};
    bool rawIdentityMatrix = false;
    std::uint32_t rawRotation = 0;
    unsigned char rawXTrans[6][6] = {};
    std::shared_ptr<std::vector<CubicBezierSpline::Point>> rawToneCurve;

    Image();
    Image(unsigned int width, unsigned int height);
    explicit Image(QImage image); // explicit: job overloads on QImage and Image results must not be ambiguous
    Image(Image const& other);
    Image(Image&& other);
    Image& operator=(Image const& other);
    Image& operator=(Image&& other);
    ~Image();

    bool canSafelyResize(unsigned int newWidth, unsigned int newHeight) const;
    bool canSafelyAssignInPlace(Image const& other) const;
    std::shared_ptr<const Image> toPtr() const;
    void Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a);
    void Fill(unsigned short r, unsigned short g, unsigned short b, unsigned short a, unsigned int x, unsigned int y,
              unsigned int w, unsigned int h);
    void FastFill(unsigned short value);
    bool SampleAverageRGB(int x, int y, int w, int h, float& r, float& g, float& b) const;
    void BuildHistogram(Histogram& histogram, bool luminance, bool lightness, bool red, bool green, bool blue,
                        unsigned int bins) const;
};
} // namespace Ondrel
ONDREL_EXPORT void Checkerboard(Ondrel::Image& image, unsigned int cellWidth, unsigned int cellHeight,
                                unsigned short r1, unsigned short g1, unsigned short b1, unsigned short a1,
                                unsigned short r2, unsigned short g2, unsigned short b2, unsigned short a2);
ONDREL_EXPORT void Checkerboard(QImage& image, unsigned int cellWidth, unsigned int cellHeight, QColor const& colorA,
                                QColor const& colorB);
