#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/nodes/fieldbase.h>
#include <ondrel/widgets/histogramwidget.h>

#include <memory>

class QGraphicsProxyWidget;

namespace Ondrel
{

// The histogram of an image, 182 wide until it is laid out. It takes no keyboard focus.
class ONDREL_EXPORT HistogramField : public InputField
{
    Q_OBJECT
public:
    HistogramField(QString name, HistogramWidget::Channel channel, HistogramWidget::Scale scale, QGraphicsItem* parent);
    ~HistogramField() override;
    void setChannel(HistogramWidget::Channel channel);
    void setScaleMode(HistogramWidget::Scale scale);

    // 75 high instead of 150. The owner lays the node out afterwards.
    void setCompressedHeight(bool compressed);

    // Counts in the background, into as many bins as the histogram is wide; see HistogramWidget::update().
    void setImage(std::shared_ptr<const Image> image);

    float minWidth() const override;
    float minHeight() const override;
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override; // nothing

Q_SIGNALS:
    void histogramBuilt();

private:
    HistogramWidget* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel
