#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/nodes/fieldbase.h>

#include <QImage>

#include <memory>

class BackgroundWorkQueue;

namespace Ondrel
{

// A thumbnail of an image, which paints itself. It is rendered in the background, and only the newest image is: one
// that waits is dropped for the next.
class ONDREL_EXPORT ImagePreviewField : public InputField
{
    Q_OBJECT
public:
    ImagePreviewField(QString name, QGraphicsItem* parent);

    // Renders the image with 182 pixels on its longer side, the other one rounded (a side of 0 gives no thumbnail). A
    // null pointer, or an image without pixels, empties the field. The filter, and whether the display profile
    // applies, are the settings of this moment.
    void setImage(std::shared_ptr<const Image> image);

    float minWidth() const override;  // 182
    float minHeight() const override; // of the thumbnail; 0 without one

    // The thumbnail over a chequered backdrop in a thin frame, centred horizontally.
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

Q_SIGNALS:
    void imageChanged(); // another thumbnail, or none: the height may be another

public Q_SLOTS:
    void imageFinished(const QImage& image, int priority); // of the background work

private:
    BackgroundWorkQueue* m_queue;
    QImage m_image;
    QImage m_picture; // m_image over its backdrop; null until it is painted
};

} // namespace Ondrel
