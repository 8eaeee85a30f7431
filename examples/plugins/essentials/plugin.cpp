#include "plugin.h"

#include "nodes.h"

namespace Essentials
{

std::vector<Host::NodeEntry> Plugin::nodes() const
{
    return {colourProfileNode(), cropNode(),       curvesNode(), erodeDilateNode(), gaussianBlurNode(),
            gradientNode(),      histogramNode(),  imageNode(),  levelsNode(),      medianNode(),
            mergeNode(),         mirrorNode(),     outputNode(), paintNode(),       perspectiveNode(),
            rawImageNode(),      resizeNode(),     rotateNode(), softProofNode(),   splitChannelsNode(),
            translateNode(),     unsharpMaskNode()};
}

} // namespace Essentials
