#include <ondrel/nodes/layouts.h>
#include <ondrel/nodes/node.h>
#include <ondrel/nodes/nodebackdrop.h>
#include <ondrel/nodes/nodefont_p.h>

#include <QCursor>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsTextItem>
#include <QLineF>

#include <algorithm>

namespace Ondrel
{
namespace
{

constexpr qreal kLeastWidth = 200;
constexpr qreal kOutline = 2; // room for the selection's outline
constexpr float kFarthestAnchor = 10000;

template <class Field, class Matches>
int indexOf(const std::vector<Field*>& fields, Matches matches)
{
    const auto found = std::find_if(fields.begin(), fields.end(), matches);
    return found == fields.end() ? -1 : static_cast<int>(found - fields.begin());
}

template <class Field>
int indexByName(const std::vector<Field*>& fields, const QString& name)
{
    return indexOf(fields, [&](const Field* field) { return field->name() == name; });
}

template <class Field>
int indexByAnchor(const std::vector<Field*>& fields, const Anchor* anchor)
{
    return anchor ? indexOf(fields, [=](Field* field) { return field->anchor() == anchor; }) : -1;
}

// Null beyond the end. The index of a lookup that found nothing, -1, is beyond every end.
template <class Field>
Field* fieldAt(const std::vector<Field*>& fields, unsigned long index)
{
    return index < fields.size() ? fields[index] : nullptr;
}

template <class Field>
Field* fieldAt(const std::vector<Field*>& fields, int index)
{
    return fieldAt(fields, static_cast<unsigned long>(index));
}

QString nameOf(const FieldBase* field)
{
    return field ? field->name() : QString();
}

QString displayNameOf(const FieldBase* field)
{
    return field ? field->displayName() : QString();
}

Anchor* anchorOf(FieldBase* field)
{
    return field ? field->anchor() : nullptr;
}

template <class Field>
void findClosest(const std::vector<Field*>& fields, const QPoint& point, Anchor** closest, float& distance)
{
    for (Field* field : fields) {
        if (!field->anchor())
            continue;
        const QPointF center = field->anchor()->sceneBoundingRect().center();
        const float length = static_cast<float>(QLineF(point, center).length());
        if (length < distance) {
            distance = length;
            *closest = field->anchor();
        }
    }
}

} // namespace

Node::Node(QGraphicsItem* parent)
    : QGraphicsRectItem(parent)
    , m_backdrop(new NodeBackdrop(this))
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setCursor(Qt::ArrowCursor);
    m_backdrop->setFlag(ItemStacksBehindParent);
}

// The fields die after this, with the item. What their controls still report then must find no node.
Node::~Node()
{
    for (QGraphicsItem* child : childItems())
        if (auto* field = dynamic_cast<FieldBase*>(child))
            QObject::disconnect(field, nullptr, this, nullptr);
}

QVariant Node::itemChange(GraphicsItemChange change, const QVariant& value)
{
    const bool entered = change == ItemSceneHasChanged || (change == ItemVisibleHasChanged && value.toBool());
    if (entered && scene())
        layout();
    return QGraphicsRectItem::itemChange(change, value);
}

QRectF Node::boundingRect() const
{
    return rect().adjusted(-kOutline, -kOutline, kOutline, kOutline);
}

void Node::setInputValue(unsigned long /*index*/, QVariant /*value*/) {}

QString Node::inputDisplayNameOfFieldByIndex(unsigned long index) const
{
    return displayNameOf(fieldAt(inputFields, index));
}

QString Node::outputDisplayNameOfFieldByIndex(unsigned long index) const
{
    return displayNameOf(fieldAt(outputFields, index));
}

QString Node::inputDisplayNameOfFieldByAnchor(Anchor* anchor) const
{
    return displayNameOf(fieldAt(inputFields, inputIndexOfFieldByAnchor(anchor)));
}

QString Node::outputDisplayNameOfFieldByAnchor(Anchor* anchor) const
{
    return displayNameOf(fieldAt(outputFields, outputIndexOfFieldByAnchor(anchor)));
}

void Node::findClosestAnchor(const QPoint& point, Anchor::IODirection direction, const Anchor* /*exclude*/,
                             Anchor** anchorOut, float& distanceOut) const
{
    *anchorOut = nullptr;
    distanceOut = kFarthestAnchor;
    if (direction == Anchor::Input)
        findClosest(inputFields, point, anchorOut, distanceOut);
    else
        findClosest(outputFields, point, anchorOut, distanceOut);
}

bool Node::isGroupNode() const
{
    return false;
}

int Node::type() const
{
    return Type;
}

unsigned long Node::inputFieldCount() const
{
    return inputFields.size();
}

unsigned long Node::outputFieldCount() const
{
    return outputFields.size();
}

int Node::inputIndexOfFieldByName(const QString& name) const
{
    return indexByName(inputFields, name);
}

int Node::outputIndexOfFieldByName(const QString& name) const
{
    return indexByName(outputFields, name);
}

int Node::inputIndexOfFieldByAnchor(Anchor* anchor) const
{
    return indexByAnchor(inputFields, anchor);
}

int Node::outputIndexOfFieldByAnchor(Anchor* anchor) const
{
    return indexByAnchor(outputFields, anchor);
}

QString Node::inputNameOfFieldByIndex(unsigned long index) const
{
    return nameOf(fieldAt(inputFields, index));
}

QString Node::outputNameOfFieldByIndex(unsigned long index) const
{
    return nameOf(fieldAt(outputFields, index));
}

QString Node::inputNameOfFieldByAnchor(Anchor* anchor) const
{
    return nameOf(fieldAt(inputFields, inputIndexOfFieldByAnchor(anchor)));
}

QString Node::outputNameOfFieldByAnchor(Anchor* anchor) const
{
    return nameOf(fieldAt(outputFields, outputIndexOfFieldByAnchor(anchor)));
}

Anchor* Node::inputAnchorOfFieldByIndex(unsigned long index)
{
    return anchorOf(fieldAt(inputFields, index));
}

Anchor* Node::outputAnchorOfFieldByIndex(unsigned long index)
{
    return anchorOf(fieldAt(outputFields, index));
}

Anchor* Node::inputAnchorOfFieldByName(const QString& name)
{
    return anchorOf(fieldAt(inputFields, inputIndexOfFieldByName(name)));
}

Anchor* Node::outputAnchorOfFieldByName(const QString& name)
{
    return anchorOf(fieldAt(outputFields, outputIndexOfFieldByName(name)));
}

void Node::setHeader(const QString& header)
{
    m_header = header;
    update();
}

void Node::setDebugText(const QString& text)
{
    if (text.isEmpty()) {
        if (!m_debugTextItem)
            return;
        delete m_debugTextItem;
        m_debugTextItem = nullptr;
        update(); // a graphics effect, which may keep a picture of the node, is not told of the end of a child
        return;
    }
    if (!m_debugTextItem)
        m_debugTextItem = new QGraphicsTextItem(this);
    m_debugTextItem->setHtml(QStringLiteral("<div style=\"background-color: rgba(0,0,0,0.5);\">") + text +
                             QStringLiteral("</div>"));
    m_debugTextItem->setPos(0, -m_debugTextItem->boundingRect().height());
}

void Node::setFirstSelected(bool firstSelected)
{
    if (m_firstSelected == firstSelected)
        return;
    m_firstSelected = firstSelected;
    update();
}

float Node::headerHeight()
{
    return static_cast<float>(headerFontMetrics().height() + 12);
}

QSizeF Node::headerSize() const
{
    return QSizeF(headerFontMetrics().horizontalAdvance(m_header) + 12, qreal(headerHeight()) + 5);
}

Anchor* Node::createAnchor(Anchor::IODirection direction)
{
    auto* anchor = new Anchor(this, direction);
    connect(anchor, SIGNAL(mousePressEvent(Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorMousePressEvent(Anchor*, QGraphicsSceneMouseEvent*)));
    connect(anchor, SIGNAL(mouseReleaseEvent(Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorMouseReleaseEvent(Anchor*, QGraphicsSceneMouseEvent*)));
    connect(anchor, SIGNAL(mouseMoveEvent(Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorMouseMoveEvent(Anchor*, QGraphicsSceneMouseEvent*)));
    return anchor;
}

void Node::anchorMousePressEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    Q_EMIT fieldAnchorPressEvent(this, anchor, event);
}

void Node::anchorMouseReleaseEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    Q_EMIT fieldAnchorReleaseEvent(this, anchor, event);
}

void Node::anchorMouseMoveEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    Q_EMIT fieldAnchorMoveEvent(this, anchor, event);
}

void Node::setNodeLayout(Layout* newNodeLayout)
{
    m_nodeLayout = newNodeLayout;
    layout();
}

void Node::layout()
{
    const QSizeF header = headerSize();
    float outputLabelWidth = 0;
    float inputLabelWidth = 0;
    const QSizeF content =
        m_nodeLayout ? m_nodeLayout->calculateSize(&outputLabelWidth, &inputLabelWidth)
                     : VerticalLayout::calculateSize(inputFields, outputFields, &outputLabelWidth, &inputLabelWidth);
    const QRectF size(rect().x(), rect().y(), std::max({content.width(), header.width(), kLeastWidth}),
                      content.height() + header.height());
    prepareGeometryChange();
    setRect(size);
    m_backdrop->setTargetRect(size.adjusted(0, 1, 0, 0));

    const auto width = static_cast<float>(size.width());
    const auto firstRow = static_cast<float>(header.height());
    if (m_nodeLayout)
        m_nodeLayout->layout(width, outputLabelWidth, inputLabelWidth, firstRow);
    else
        VerticalLayout::layout(width, outputLabelWidth, inputLabelWidth, firstRow, inputFields, outputFields);

    // Upper rows cover lower ones, so that what opens below a control is seen.
    for (std::size_t i = 0; i < inputFields.size(); ++i)
        inputFields[i]->setZValue(qreal(inputFields.size() - i));
    Q_EMIT moved(this, false);
}

} // namespace Ondrel
