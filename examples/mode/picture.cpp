#include "picture.h"

#include "route.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceengine.h>

#include <algorithm>
#include <cmath>

namespace
{

// Squares of 100 pixels with a brighter middle: lines show how the geometry bends.
Ondrel::Image paintTarget()
{
    Ondrel::Image image(1200, 800);
    image.Fill(12000, 17000, 23000, 65535);
    for (unsigned int y = 0; y < image.height; y += 100) {
        for (unsigned int x = 0; x < image.width; x += 100) {
            if ((x + y) / 100 % 2 == 0)
                image.Fill(static_cast<unsigned short>(20000 + x * 30), static_cast<unsigned short>(24000 + y * 30),
                           40000, 65535, x, y, 100, 100);
        }
    }
    image.Fill(65535, 58000, 30000, 65535, 590, 390, 20, 20);
    return image;
}

unsigned int scaledSide(unsigned int side, double factor)
{
    return std::max(1u, static_cast<unsigned int>(std::lround(side * factor)));
}

Ondrel::Image scaled(const Ondrel::Image& image, double factor)
{
    return Scale(image, scaledSide(image.width, factor), scaledSide(image.height, factor),
                 Ondrel::FilterMethod::Bilinear);
}

Ondrel::Image transformed(const Ondrel::Image& image, const Route::Step& step, double zoom)
{
    std::shared_ptr<const Ondrel::Image> result;
    Transform(image, Ondrel::RectT<int>::invalid(), zoom, TransformSizeBounding, Ondrel::FilterMethod::Bilinear,
              step.matrix, result);
    return result ? *result : Ondrel::Image();
}

} // namespace

std::shared_ptr<const Ondrel::Image> loadPicture(const QString& file, unsigned int longest)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Ondrel::Image> image;
    ResourceEngine& store = ResourceEngine::Get();
    if (!file.isEmpty() && store.AddImage(file.toStdString(), id)) {
        store.CopyImage(id, image, Ondrel::DefaultColorProfileHash, {});
        store.RemoveResource(id);
    }
    if (!image || image->width == 0 || image->height == 0)
        return paintTarget().toPtr();
    const double factor = double(longest) / std::max(image->width, image->height);
    if (factor >= 1)
        return image;
    Ondrel::Image small = scaled(*image, factor);
    small.colorProfile = image->colorProfile;
    return std::make_shared<const Ondrel::Image>(std::move(small));
}

Ondrel::Image renderPicture(const Ondrel::Image& photograph, const Ondrel::RectT<int>& frame, double zoom)
{
    const Ondrel::Image cut = SubImage(photograph, frame);
    const Route::Steps steps = Route::stepsFor(frame.size());
    Ondrel::Image result = transformed(transformed(scaled(cut, zoom), steps.rotation, zoom), steps.perspective, zoom);
    result.colorProfile = photograph.colorProfile;
    return result;
}
