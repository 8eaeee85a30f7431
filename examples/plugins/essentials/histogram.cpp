#include "histogramitem.h"
#include "nodes.h"

namespace Essentials
{
namespace
{

// Has no result: its item shows the picture at its input.
class HistogramNode : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request&) const override { return {}; }

    QHash<QString, QSize> outputSizes(const QVariantMap&, const QHash<QString, QSize>&) const override { return {}; }

    Ondrel::Node* createItem(const QString& nodeFileText) const override { return HistogramItem::create(nodeFileText); }
};

} // namespace

Host::NodeEntry histogramNode()
{
    return entryOf<HistogramNode>("Histogram");
}

} // namespace Essentials
