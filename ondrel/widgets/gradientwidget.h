#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/pixel/gradient.h>

#include <QImage>
#include <QWidget>

#include <vector>

namespace Ondrel
{

// A strip with a gradient as the image pipeline would render it; in an interpolation other than plain RGB by
// GradientLinear, for the display's profile. Translucent gradients stand on squares of grey. User-interface thread
// only.
class ONDREL_EXPORT GradientWidget : public QWidget
{
    Q_OBJECT
public:
    enum Direction { LeftToRight = 0, RightToLeft = 1, TopToBottom = 2, BottomToTop = 3 };

    explicit GradientWidget(QWidget* parent);
    void setDirection(Direction direction);
    void setColorInterpolation(GradientColorInterpolation interpolation);

    // Passed through SanitizeGradientStops.
    void setStops(const std::vector<GradientStop>& stops);
    std::vector<GradientStop> stops() const;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintGradientBar(QPainter& painter, const QRect& rect);

private:
    void describe();
    bool isTranslucent() const;
    QImage rendered(const QSize& size) const;

    Direction m_direction = LeftToRight;
    GradientColorInterpolation m_colorInterpolation = GradientColorInterpolationRGB;
    std::vector<GradientStop> m_stops = {{0.0f, 0, 0, 0, 65535}, {1.0f, 65535, 65535, 65535, 65535}};
    QImage m_cache; // the strip as it was rendered last
};

} // namespace Ondrel
