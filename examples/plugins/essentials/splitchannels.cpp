#include "../../common/rows.h"

#include "filter.h"
#include "nodes.h"

namespace Essentials
{
namespace
{

const char* const kOutputs[] = {"red", "green", "blue", "alpha"};

class SplitChannelsNode : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request& request) const override
    {
        return guarded([&] {
            const Host::Picture input = request.inputs.value("image");
            if (!input.image || !input.image->data)
                throw Problem(Text::tr("No picture is connected."));
            Host::Result result;
            for (std::size_t channel = 0; channel < 4 && !isCancelled(request.status); ++channel)
                result.outputs.insert(kOutputs[channel],
                                      {greyOf(*input.image, channel, request.status), input.fullSize});
            return result;
        });
    }

    QHash<QString, QSize> outputSizes(const QVariantMap&, const QHash<QString, QSize>& inputSizes) const override
    {
        QHash<QString, QSize> sizes;
        for (const char* const output : kOutputs) {
            if (inputSizes.contains("image"))
                sizes.insert(output, inputSizes.value("image"));
        }
        return sizes;
    }

private:
    // One channel in all three colours, opaque.
    static ImagePtr greyOf(const Image& image, std::size_t channel, const Ondrel::RunStatus& status)
    {
        Image grey(image.width, image.height);
        Examples::forRows(0, image.height, status, [&](unsigned int y) {
            const std::size_t first = std::size_t(y) * image.width * 4, end = first + std::size_t(image.width) * 4;
            for (std::size_t i = first; i < end; i += 4) {
                grey.data[i] = grey.data[i + 1] = grey.data[i + 2] = image.data[i + channel];
                grey.data[i + 3] = 65535;
            }
        });
        return withProfile(std::move(grey), image.colorProfile);
    }
};

} // namespace

Host::NodeEntry splitChannelsNode()
{
    return entryOf<SplitChannelsNode>("Split Channels");
}

} // namespace Essentials
