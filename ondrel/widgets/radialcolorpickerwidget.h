#pragma once

#include <ondrel/ondrel_export.h>

#include <QPointF>
#include <QWidget>

namespace Ondrel
{

// A wheel of hues and saturations with a bar of lightness beside it. Hue 0 lies at the bottom of the wheel, 90 at the
// left: hues grow clockwise. User-interface thread only.
class ONDREL_EXPORT RadialColorPickerWidget : public QWidget
{
    Q_OBJECT
public:
    explicit RadialColorPickerWidget(QWidget* parent);

    // Hue in degrees, saturation and lightness from 0 to 1. Emits nothing.
    void setColor(double hue, double saturation, double lightness);
    void color(double& hue, double& saturation, double& lightness);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // The user has moved one of the markers, on the press, each move and the release.
    void changed();

protected:
    QPointF hueAndSaturationPoint() const; // where the marker on the wheel stands
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class DragPart { Wheel, Bar, None };

    void describe();

    double m_hue = 0;
    double m_saturation = 0;
    double m_lightness = 0.5;
    DragPart m_dragPart = DragPart::None;
};

} // namespace Ondrel
