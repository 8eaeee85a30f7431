#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fieldbase.h>
#include <ondrel/nodes/nodecolors_p.h>
#include <ondrel/nodes/nodefont_p.h>

#include <QPainter>

#include <algorithm>

namespace Ondrel
{
namespace
{

constexpr int kAnchorSize = 15;
constexpr int kLabelOffset = 19; // from the anchor's outer edge to the text

void placeAnchor(Anchor& anchor, float x, float rowHeight)
{
    anchor.setPos(qreal(x), (qreal(rowHeight) - kAnchorSize) * 0.5);
    anchor.setRect(0, 0, kAnchorSize, kAnchorSize);
}

} // namespace

FieldBase::FieldBase(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName)
    : QGraphicsRectItem(parent)
    , m_name(std::move(name))
    , m_anchor(anchor)
    , m_displayName(std::move(displayName))
{
    takeAnchor(FieldBase::minHeight()); // a derived field is not there yet
}

void FieldBase::setDisplayName(const QString& displayName)
{
    m_displayName = displayName;
    update();
}

void FieldBase::setSize(float width, float height, float labelWidth)
{
    noticeScene();
    setRect(0, 0, qreal(width), qreal(height));
    sizeChanged(width, height, labelWidth);
}

void FieldBase::setRect(double x, double y, double w, double h)
{
    QGraphicsRectItem::setRect(x, y, w, h);
}

void FieldBase::setRect(const QRectF& rect)
{
    QGraphicsRectItem::setRect(rect);
}

void FieldBase::layout()
{
    takeAnchor(minHeight());
}

void FieldBase::takeAnchor(float rowHeight)
{
    if (!m_anchor)
        return;
    m_anchor->setParentItem(this);
    placeAnchor(*m_anchor, 0, rowHeight);
}

QVariant FieldBase::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemVisibleHasChanged || change == ItemSceneHasChanged)
        noticeScene();
    return QGraphicsRectItem::itemChange(change, value);
}

// A field that is made below an item in a scene hears nothing of it: the base class is told while it is constructed.
// Such a field notices when it is first sized.
void FieldBase::noticeScene()
{
    if (m_addedToSceneDone || !scene())
        return;
    m_addedToSceneDone = true;
    addedToScene();
}

float FieldBase::minWidth() const
{
    return labelWidth() + float(m_anchor ? kLabelOffset : 0);
}

float FieldBase::minHeight() const
{
    return float(std::max(fieldFontMetrics().height(), kAnchorSize));
}

float FieldBase::labelWidth() const
{
    return float(fieldFontMetrics().horizontalAdvance(m_displayName));
}

int FieldBase::type() const
{
    return Type;
}

void FieldBase::addedToScene() {}

void FieldBase::sizeChanged(float /*width*/, float /*height*/, float /*labelWidth*/) {}

InputField::InputField(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName)
    : FieldBase(std::move(name), parent, anchor, std::move(displayName))
{
}

void InputField::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/, QWidget* /*widget*/)
{
    QFont font = painter->font();
    font.setPixelSize(kFieldFontSize);
    painter->setFont(font);
    painter->setPen(NodeColors::text());
    const qreal x = anchor() ? kLabelOffset : 0;
    painter->drawText(QRectF(x, 0, rect().width() - x, qreal(minHeight())), Qt::AlignLeft | Qt::AlignVCenter,
                      displayName());
}

OutputField::OutputField(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName)
    : FieldBase(std::move(name), parent, anchor, std::move(displayName))
{
}

void OutputField::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/, QWidget* /*widget*/)
{
    painter->setFont(plainFont(painter->font(), kFieldFontSize));
    painter->setPen(NodeColors::text());
    painter->drawText(QRectF(0, 0, rect().width() - kLabelOffset, qreal(minHeight())),
                      Qt::AlignRight | Qt::AlignVCenter, displayName());
}

void OutputField::sizeChanged(float width, float /*height*/, float /*labelWidth*/)
{
    if (anchor())
        placeAnchor(*anchor(), width - kAnchorSize, minHeight());
}

} // namespace Ondrel
