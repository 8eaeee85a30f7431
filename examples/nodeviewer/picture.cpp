#include "picture.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceengine.h>

#include <QColor>

#include <algorithm>
#include <cmath>

namespace Viewer
{
namespace
{

std::shared_ptr<const Ondrel::Image> paintHills()
{
    auto image = std::make_shared<Ondrel::Image>(480, 320);
    for (unsigned int x = 0; x < image->width; ++x) {
        for (unsigned int y = 0; y < image->height; ++y) {
            const double fx = x / 480.0, fy = y / 320.0;
            QColor color = QColor::fromHslF(0.08 + 0.5 * (1 - fy) * 0.9, 0.55, 0.75 - 0.4 * (1 - fy));
            for (int hill = 0; hill < 4; ++hill) {
                const double crest = 0.45 + 0.13 * hill + 0.06 * std::sin(fx * (5 + 3 * hill) + 2.1 * hill);
                if (fy > crest)
                    color = QColor::fromHslF(0.55 - 0.07 * hill, 0.3, 0.42 - 0.09 * hill);
            }
            const auto sample = [](double share) { return static_cast<unsigned short>(share * 65535); };
            image->Fill(sample(color.redF()), sample(color.greenF()), sample(color.blueF()), 65535, x, y, 1, 1);
        }
    }
    return image;
}

unsigned short scaled(unsigned short sample, double factor)
{
    return static_cast<unsigned short>(std::min(65535.0, sample * factor));
}

} // namespace

std::shared_ptr<const Ondrel::Image> loadPicture(const QString& file)
{
    Ondrel::ResourceId id;
    std::shared_ptr<const Ondrel::Image> image;
    ResourceEngine& store = ResourceEngine::Get();
    if (!file.isEmpty() && store.AddImage(file.toStdString(), id)) {
        store.CopyImage(id, image, Ondrel::DefaultColorProfileHash, {});
        store.RemoveResource(id);
    }
    return image ? image : paintHills();
}

std::shared_ptr<const Ondrel::Image> tinted(const Ondrel::Image& picture, unsigned int index, unsigned int count)
{
    const unsigned int height = std::max(1u, 182 * picture.height / std::max(1u, picture.width));
    auto small = std::make_shared<Ondrel::Image>(Scale(picture, 182, height, Ondrel::FilterMethod::Bilinear));
    const QColor tint = QColor::fromHsvF(double(index) / std::max(1u, count), index == 0 ? 0.0 : 0.4, 1.0);
    const double factors[] = {tint.redF(), tint.greenF(), tint.blueF()};
    for (std::size_t i = 0; i < std::size_t(small->width) * small->height * 4; ++i) {
        if (i % 4 != 3)
            small->data[i] = scaled(small->data[i], factors[i % 4]);
    }
    return small;
}

} // namespace Viewer
