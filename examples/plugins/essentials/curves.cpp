#include "curvesitem.h"
#include "curvesvalue.h"
#include "filter.h"
#include "nodes.h"

namespace Essentials
{
namespace
{

bool isPlain(const Ondrel::Curves& curves)
{
    using Ondrel::IsCurveLinear;
    return IsCurveLinear(curves.red) && IsCurveLinear(curves.green) && IsCurveLinear(curves.blue);
}

class CurvesNode : public Filter
{
public:
    Ondrel::Node* createItem(const QString& nodeFileText) const override { return CurvesItem::create(nodeFileText); }

protected:
    // First the curve of all three colors, then one for each.
    ImagePtr process(const Work& work) const override
    {
        const Ondrel::Curves curves = curvesFromValue(work.values.value("curves"));
        ImagePtr image = work.image;
        const auto& profile = work.image->colorProfile;
        if (!Ondrel::IsCurveLinear(curves.all))
            image = withProfile(CurvesRGB(*image, curves.all, curves.all, curves.all), profile);
        if (isPlain(curves) || isCancelled(work.status))
            return image;
        return withProfile(CurvesRGB(*image, curves.red, curves.green, curves.blue), profile);
    }
};

} // namespace

Host::NodeEntry curvesNode()
{
    Host::NodeEntry entry = entryOf<CurvesNode>("Curves");
    Ondrel::Curves straight;
    Ondrel::SetCurvesLinear(straight);
    Host::InputInfo curves;
    curves.name = "curves";
    curves.label = Text::tr("Curves");
    curves.kind = "hidden";
    curves.initial = valueFromCurves(straight);
    entry.moreInputs = {curves};
    return entry;
}

} // namespace Essentials
