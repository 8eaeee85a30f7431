#include <ondrel/color/colortransformer.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/nodecolors_p.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QPainter>
#include <QPointer>
#include <QSettings>

#include <algorithm>
#include <cmath>
#include <functional>

namespace Ondrel
{
namespace
{

constexpr unsigned int kLongerSide = 182;

unsigned int scaledSide(unsigned int side, float scale)
{
    const float rounded = float(side) * scale + 0.5f;
    return std::min(kLongerSide, static_cast<unsigned int>(rounded));
}

QImage thumbnailOf(const Image* image, bool noColorManagement, FilterMethod filter)
{
    if (!image || image->width == 0 || image->height == 0)
        return QImage();
    const unsigned int width = image->width, height = image->height;
    const float scale = std::min(float(kLongerSide) / float(width), float(kLongerSide) / float(height));
    const bool upright = height >= width;
    const Image scaled = Scale(*image, upright ? scaledSide(width, scale) : kLongerSide,
                               upright ? kLongerSide : scaledSide(height, scale), filter);
    return ColorTransformer::toQImage(scaled, noColorManagement);
}

// Opaque, since the backdrop is.
QImage overCheckerboard(const QImage& image)
{
    QImage picture(image.size(), QImage::Format_ARGB32_Premultiplied);
    Checkerboard(picture, 32, 32, QColor(129, 129, 129), QColor(208, 208, 208));
    QPainter(&picture).drawImage(0, 0, image);
    picture.reinterpretAsFormat(QImage::Format_RGB32);
    return picture;
}

} // namespace

ImagePreviewField::ImagePreviewField(QString name, QGraphicsItem* parent)
    : InputField(name, parent, nullptr, QString())
    , m_queue(new BackgroundWorkQueue(this))
{
    connect(m_queue, SIGNAL(qImageFinished(QImage, int, QVariant)), this, SLOT(imageFinished(QImage, int)));
}

void ImagePreviewField::setImage(std::shared_ptr<const Image> image)
{
    const QSettings settings;
    const QString managed = settings.value(QStringLiteral("settings/colormanagement/thumbnails"), "No").toString();
    const QString filterName =
        settings.value(QStringLiteral("settings/performance/interpolation/thumbnail"), "Nearest Neighbor").toString();
    const bool noColorManagement = managed == QLatin1String("No");
    const FilterMethod filter = InterpolationToFilter(filterName);
    const std::function<QImage()> job = [image, noColorManagement, filter] {
        return thumbnailOf(image.get(), noColorManagement, filter);
    };
    m_queue->queueWork(job, 0, true, false, QVariant());
}

float ImagePreviewField::minWidth() const
{
    return float(kLongerSide);
}

float ImagePreviewField::minHeight() const
{
    return float(m_image.height());
}

void ImagePreviewField::imageFinished(const QImage& image, int)
{
    m_image = image;
    m_picture = QImage();
    const QPointer<ImagePreviewField> self(this); // a host may answer by deleting the node
    Q_EMIT imageChanged();
    if (self)
        update();
}

void ImagePreviewField::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    painter->setPen(QColor(0, 0, 0, 0));
    if (m_image.isNull())
        return;
    if (m_picture.isNull()) // kept, as a canvas is painted far more often than its thumbnails change
        m_picture = overCheckerboard(m_image);
    const int width = m_image.width(), height = m_image.height();
    const auto rounded = [](qreal length) { return int(std::lround(length)); };
    const int x = (rounded(rect().width()) - width) / 2 + rounded(rect().x());
    painter->translate(x, rounded(rect().y()));
    painter->drawImage(QRectF(0, 0, width, height), m_picture);

    QPen frame(NodeColors::header());
    painter->setBrush(Qt::NoBrush);
    for (const qreal penWidth : {0.0, 1.5}) {
        frame.setWidthF(penWidth);
        painter->setPen(frame);
        painter->drawRect(QRectF(0, 0, width - 1, height - 1));
    }
}

} // namespace Ondrel
