#include "filter.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/gaussianblur.h>

namespace Essentials
{
namespace
{

class GaussianBlurNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const auto radius = [&work](const char* name) {
            return float(number(work.values, name, 0, 1000, 0) * work.scale);
        };
        const float x = radius("radiusx"), y = radius("radiusy");
        if (x == 0 && y == 0)
            return work.image;
        const auto edge = GaussianEdge(choice(work.values, "edge", {"Edge Pixels", "Transparent", "Repeated"}));
        return withProfile(GaussianBlur(*work.image, x, y, edge, work.status), work.image->colorProfile);
    }
};

} // namespace

Host::NodeEntry gaussianBlurNode()
{
    return entryOf<GaussianBlurNode>("Gaussian Blur");
}

} // namespace Essentials
