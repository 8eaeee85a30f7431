#include <ondrel/color/colortransformer.h>
#include <ondrel/core/image.h>
#include <ondrel/nodes/nodebackdrop.h>
#include <ondrel/pixel/gaussianblur.h>

#include <QCache>
#include <QImage>
#include <QPainter>

namespace
{

constexpr int kReach = 17; // of the shadow, beyond what throws it
constexpr int kPiece = 25; // side of a corner, thickness of an edge
constexpr int kKeptLengths = 64;

// Two edges that face each other, stretched to one length.
struct EdgePair {
    QImage first;
    QImage second;
};

struct ShadowImages {
    QImage source;
    QImage topLeft, topRight, bottomLeft, bottomRight;
    QImage left, top, right, bottom; // one pixel long
    // By length. Many nodes share a few sizes, and stretching takes longer than drawing.
    QCache<int, EdgePair> upright{kKeptLengths};
    QCache<int, EdgePair> level{kKeptLengths};
};

QImage blurredSource()
{
    QImage shape(52, 52, QImage::Format_ARGB32);
    shape.fill(0);
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(kReach, kReach, 18, 18, 8, 8);
    painter.end();
    const Ondrel::Image blurred =
        GaussianBlur_CPU(Ondrel::Image(shape), kReach, kReach, GaussianEdge::Blank, Ondrel::RunStatus());
    return Ondrel::ColorTransformer::toQImage(blurred, true);
}

// Empty until the first backdrop; images want an application to be there.
ShadowImages& shadow()
{
    static ShadowImages shared;
    return shared;
}

void buildShadow(ShadowImages& images)
{
    images.source = blurredSource();
    const int right = images.source.width() - kPiece;
    const int bottom = images.source.height() - kPiece;
    const int middleX = images.source.width() / 2;
    const int middleY = images.source.height() / 2;
    images.topLeft = images.source.copy(0, 0, kPiece, kPiece);
    images.topRight = images.source.copy(right, 0, kPiece, kPiece);
    images.bottomLeft = images.source.copy(0, bottom, kPiece, kPiece);
    images.bottomRight = images.source.copy(right, bottom, kPiece, kPiece);
    images.left = images.source.copy(0, middleY, kPiece, 1);
    images.top = images.source.copy(middleX, 0, 1, kPiece);
    images.right = images.source.copy(right, middleY, kPiece, 1);
    images.bottom = images.source.copy(middleX, bottom, 1, kPiece);
}

QImage stretched(const QImage& edge, int width, int height)
{
    return edge.scaled(width, height, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

EdgePair uprightEdges(ShadowImages& images, int length)
{
    if (!images.upright.contains(length))
        images.upright.insert(
            length, new EdgePair{stretched(images.left, kPiece, length), stretched(images.right, kPiece, length)});
    return *images.upright.object(length);
}

EdgePair levelEdges(ShadowImages& images, int length)
{
    if (!images.level.contains(length))
        images.level.insert(
            length, new EdgePair{stretched(images.top, length, kPiece), stretched(images.bottom, length, kPiece)});
    return *images.level.object(length);
}

} // namespace

NodeBackdrop::NodeBackdrop(QGraphicsItem* parent)
    : QGraphicsRectItem(parent)
{
    if (shadow().source.isNull())
        buildShadow(shadow());
}

int NodeBackdrop::type() const
{
    return Type;
}

void NodeBackdrop::setTargetRect(const QRectF& target)
{
    const QRectF grown = target.adjusted(-kReach, -kReach, kReach, kReach);
    const QRectF current = rect();
    if (!qFuzzyCompare(grown.x(), current.x()) || !qFuzzyCompare(grown.y(), current.y()) ||
        !qFuzzyCompare(grown.width(), current.width()) || !qFuzzyCompare(grown.height(), current.height()))
        setRect(grown);
}

void NodeBackdrop::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/, QWidget* /*widget*/)
{
    ShadowImages& images = shadow();
    if (images.source.isNull())
        return;
    const qreal right = rect().width() - kPiece;
    const qreal bottom = rect().height() - kPiece;
    painter->translate(rect().topLeft());
    painter->drawImage(QPointF(0, 0), images.topLeft);
    painter->drawImage(QPointF(right, 0), images.topRight);
    painter->drawImage(QPointF(0, bottom), images.bottomLeft);
    painter->drawImage(QPointF(right, bottom), images.bottomRight);

    const EdgePair upright = uprightEdges(images, int(rect().height()) - 2 * kPiece);
    const EdgePair level = levelEdges(images, int(rect().width()) - 2 * kPiece);
    painter->drawImage(QPointF(0, kPiece), upright.first);
    painter->drawImage(QPointF(kPiece, 0), level.first);
    painter->drawImage(QPointF(right, kPiece), upright.second);
    painter->drawImage(QPointF(kPiece, bottom), level.second);
}
