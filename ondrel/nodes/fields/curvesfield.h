#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/curves.h>
#include <ondrel/core/image.h>
#include <ondrel/nodes/fieldbase.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/widgets/curveswidget.h>

#include <vector>

class QGraphicsProxyWidget;

namespace Ondrel
{

class CurvesEditorWidget;

// An editor for tone curves, 250 by 250 or wider. For the operations see CurvesEditorWidget.
class ONDREL_EXPORT CurvesField : public InputField
{
    Q_OBJECT
public:
    CurvesField(QString name, QGraphicsItem* parent);
    ~CurvesField() override;
    Curves curves() const;
    void setCurves(const Curves& curves); // emits nothing
    void setChannel(CurvesWidget::Channel channel);
    void setChannelGradient(CurvesWidget::Channel channel, const std::vector<GradientStop>& stops);
    void setGradientColorInterpolation(GradientColorInterpolation interpolation);
    void showAllChannelCurves(bool show);
    void setImage(const Image& image);
    float minWidth() const override;
    float minHeight() const override;
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;

Q_SIGNALS:
    void valueChanged();

public Q_SLOTS:
    void resetCurrentChannel();

private:
    CurvesEditorWidget* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel
