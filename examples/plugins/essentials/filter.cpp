#include "filter.h"

#include <algorithm>
#include <cmath>

namespace Essentials
{

QSize scaledSize(const QSize& fullSize, double scale)
{
    const auto side = [scale](int length) { return std::max(1, int(std::lround(double(length) * scale))); };
    return fullSize.isEmpty() ? QSize(0, 0) : QSize(side(fullSize.width()), side(fullSize.height()));
}

void refuseAbsurdSize(const QSize& size)
{
    if (size.isEmpty())
        throw Problem(Text::tr("The result has no pixels."));
    if (qint64(size.width()) * size.height() > (qint64(1) << 28))
        throw Problem(Text::tr("A picture of %1 by %2 pixels is too large.").arg(size.width()).arg(size.height()));
}

Host::Result resultOf(const ImagePtr& image, const QSize& fullSize, const QString& output)
{
    Host::Result result;
    if (image)
        result.outputs.insert(output, {image, fullSize});
    return result;
}

ImagePtr withProfile(Image&& image, const std::array<unsigned char, 32>& profile)
{
    image.colorProfile = profile;
    return std::make_shared<const Image>(std::move(image));
}

Host::Result Filter::evaluate(const Host::Request& request) const
{
    return guarded([&] {
        const Host::Picture input = request.inputs.value("image");
        if (!input.image || !input.image->data || input.fullSize.isEmpty())
            throw Problem(Text::tr("No picture is connected."));
        const QSize full = outputSizes(request.values, {{"image", input.fullSize}}).value("image");
        refuseAbsurdSize(scaledSize(full, request.scale));
        const Work work{input.image, input.fullSize, full, request.scale, request.values, request.status};
        return isCancelled(request.status) ? Host::Result() : resultOf(process(work), full);
    });
}

} // namespace Essentials
