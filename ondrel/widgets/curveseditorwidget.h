#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/curves.h>
#include <ondrel/core/image.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/widgets/curveswidget.h>

#include <QWidget>

#include <vector>

namespace Ondrel
{

class GradientWidget;

// A CurvesWidget with strips along its left and bottom edges that show what its axes mean. User-interface thread only.
class ONDREL_EXPORT CurvesEditorWidget : public QWidget
{
    Q_OBJECT
public:
    explicit CurvesEditorWidget(QWidget* parent);
    Curves curves() const;
    void setCurves(const Curves& curves); // emits nothing
    void showAllChannelCurves(bool show);
    void resetCurrentChannel();
    void setImage(const Ondrel::Image& image);

    // Chooses the curve to edit. The strips then run from black to the channel's primary, or white, also where
    // setChannelGradient() had given the channel other colours.
    void setChannel(CurvesWidget::Channel channel);

    // The colours of the strips for a channel, shown if it is the current one. Fewer than two stops are ignored.
    void setChannelGradient(CurvesWidget::Channel channel, const std::vector<GradientStop>& stops);
    void setGradientColorInterpolation(GradientColorInterpolation interpolation);

Q_SIGNALS:
    void changed();

private:
    void showStops(const std::vector<GradientStop>& stops);

    GradientWidget* m_verticalGradient;
    GradientWidget* m_horizontalGradient;
    CurvesWidget* m_curvesWidget;
    std::vector<std::vector<GradientStop>> m_channelGradients;
};

} // namespace Ondrel
