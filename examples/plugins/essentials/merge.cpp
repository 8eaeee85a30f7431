#include "filter.h"
#include "mergeitem.h"
#include "nodes.h"
#include "profiles.h"
#include "values.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/painter.h>

#include <QStringList>

namespace Essentials
{
namespace
{

const QString kPrefix = "layer";

// The connected layers from the lowest to the top one, by the part of their names behind the prefix: as the order says,
// then any that it does not name.
template <class Connected>
QStringList layerIds(const QVariantMap& values, const Connected& connected)
{
    QStringList ids;
    for (const QString& id : values.value(kPrefix + "_order").toString().split(',', Qt::SkipEmptyParts)) {
        if (connected.contains(kPrefix + id) && !ids.contains(id))
            ids.append(id);
    }
    QStringList others;
    for (auto input = connected.begin(); input != connected.end(); ++input) {
        const QString id = input.key().mid(kPrefix.size());
        if (input.key().startsWith(kPrefix) && !ids.contains(id))
            others.append(id);
    }
    others.sort();
    return ids + others;
}

// The layer in the profile of what it is laid on.
ImagePtr inProfileOf(const ImagePtr& layer, const Image& canvas)
{
    const auto& profile = canvas.colorProfile;
    if (layer->colorProfile == profile || !isPixelProfile(layer->colorProfile) || !isPixelProfile(profile))
        return layer;
    const QByteArray hash(reinterpret_cast<const char*>(profile.data()), int(profile.size()));
    constexpr unsigned int relativeColorimetric = 1;
    return std::make_shared<const Image>(ConvertColorSpace(*layer, "Automatic", hash, relativeColorimetric));
}

class MergeNode : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request& request) const override
    {
        return guarded([&] {
            const QStringList ids = layerIds(request.values, request.inputs);
            if (ids.isEmpty())
                throw Problem(Text::tr("No picture is connected."));
            const Host::Picture lowest = request.inputs.value(kPrefix + ids.first());
            if (!lowest.image || !lowest.image->data)
                throw Problem(Text::tr("No picture is connected."));
            auto canvas = std::make_shared<Image>(lowest.image->width, lowest.image->height);
            canvas->colorProfile = lowest.image->colorProfile;
            for (const QString& id : ids) {
                if (isCancelled(request.status))
                    return Host::Result();
                draw(*canvas, request.inputs.value(kPrefix + id).image,
                     number(request.values, "opacity" + id, 0, 100, 100) / 100);
            }
            return resultOf(canvas, lowest.fullSize);
        });
    }

    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>& inputSizes) const override
    {
        const QStringList ids = layerIds(values, inputSizes);
        return ids.isEmpty() ? QHash<QString, QSize>()
                             : QHash<QString, QSize>{{"image", inputSizes.value(kPrefix + ids.first())}};
    }

    Ondrel::Node* createItem(const QString&) const override { return new MergeItem(kPrefix); }

private:
    static void draw(Image& canvas, const ImagePtr& layer, double opacity)
    {
        if (!layer || !layer->data || opacity == 0)
            return;
        PixelPainter painter(&canvas);
        painter.setOpacity(float(opacity));
        painter.drawImage(0, 0, *inProfileOf(layer, canvas));
    }
};

} // namespace

Host::NodeEntry mergeNode()
{
    Host::NodeEntry entry = entryOf<MergeNode>("Merge");
    entry.variablePrefix = kPrefix;
    entry.variableInput.name = kPrefix;
    entry.variableInput.label = Text::tr("Layer");
    entry.variableInput.dataType = "image";
    Host::InputInfo opacity;
    opacity.name = "opacity";
    opacity.label = Text::tr("Opacity");
    opacity.kind = "slider";
    opacity.initial = "100";
    opacity.minimum = 0;
    opacity.maximum = 100;
    entry.variableChildren = {opacity};
    return entry;
}

} // namespace Essentials
