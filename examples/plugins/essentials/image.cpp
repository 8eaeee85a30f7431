#include "nodes.h"
#include "stored.h"

namespace Essentials
{
namespace
{

class ImageNode : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request& request) const override
    {
        return guarded([&] {
            const ImagePtr image = storedImage(request.values, false, request.status);
            if (!image || isCancelled(request.status))
                return Host::Result();
            return resultOf(scaledDown(image, request.scale), QSize(int(image->width), int(image->height)));
        });
    }

    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>&) const override
    {
        const QSize size = storedSize(values);
        return size.isEmpty() ? QHash<QString, QSize>() : QHash<QString, QSize>{{"image", size}};
    }
};

} // namespace

Host::NodeEntry imageNode()
{
    return entryOf<ImageNode>("Image");
}

} // namespace Essentials
