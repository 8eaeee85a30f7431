#pragma once

#include "../../host/plugininterface.h"

// The nodes of the plug-in, one function each.
namespace Essentials
{

template <class Behaviour>
Host::NodeEntry entryOf(const QString& nodeName)
{
    Host::NodeEntry entry;
    entry.nodeName = nodeName;
    entry.behaviour = std::make_shared<const Behaviour>();
    return entry;
}

Host::NodeEntry colourProfileNode();
Host::NodeEntry cropNode();
Host::NodeEntry curvesNode();
Host::NodeEntry erodeDilateNode();
Host::NodeEntry gaussianBlurNode();
Host::NodeEntry gradientNode();
Host::NodeEntry histogramNode();
Host::NodeEntry imageNode();
Host::NodeEntry levelsNode();
Host::NodeEntry medianNode();
Host::NodeEntry mergeNode();
Host::NodeEntry mirrorNode();
Host::NodeEntry outputNode();
Host::NodeEntry paintNode();
Host::NodeEntry perspectiveNode();
Host::NodeEntry rawImageNode();
Host::NodeEntry resizeNode();
Host::NodeEntry rotateNode();
Host::NodeEntry softProofNode();
Host::NodeEntry splitChannelsNode();
Host::NodeEntry translateNode();
Host::NodeEntry unsharpMaskNode();

} // namespace Essentials
