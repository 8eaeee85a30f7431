#include "filter.h"
#include "nodes.h"

namespace Essentials
{
namespace
{

// Its values tell the host how to write the file; the picture goes through.
class OutputNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override { return work.image; }
};

} // namespace

Host::NodeEntry outputNode()
{
    return entryOf<OutputNode>("Output");
}

} // namespace Essentials
