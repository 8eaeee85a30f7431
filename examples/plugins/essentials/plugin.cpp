#include "plugin.h"

#include "nodes.h"

namespace Essentials
{

std::vector<Host::NodeEntry> Plugin::nodes() const
{
    return {
        colourProfileNode(), cropNode(),   gaussianBlurNode(), imageNode(),  mergeNode(),
        mirrorNode(),        outputNode(), resizeNode(),       rotateNode(),
    };
}

} // namespace Essentials
