#pragma once

#include <ondrel/nodes/modeinterface.h>

#include <optional>

// A mode whose subject is the picture of the edited node, wherever that lies on the one in view.
class PictureMode : public Ondrel::ModeInterface
{
public:
    using ModeInterface::ModeInterface;

protected:
    bool ready() const { return transformSeries.pathCount() > 0 && !displaySize.isEmpty(); }
    QSize pictureSize() const { return transformSeries.baseSize(); }
    QTransform pictureToView() const;
    std::optional<QPointF> pictureAt(const QPointF& viewPoint) const;
};
