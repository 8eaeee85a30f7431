#include <ondrel/core/platform.h>
#include <ondrel/core/xml.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/nodecolors_p.h>
#include <ondrel/nodes/previewnode.h>

#include <QGraphicsSceneContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>
#include <QTime>
#include <QTimer>

namespace Ondrel
{
namespace
{

constexpr int kIconSize = 16;
constexpr int kIconOffset = 22; // from the right edge to the icon's left one
constexpr int kLoadingInterval = 100;

// A header icon in the palette's text colour, and in the dark text colour for the yellow header.
struct Icon {
    QSvgRenderer normal;
    QSvgRenderer highlighted;

    void loadIfNeeded(const QString& fileName, const QString& normalColor, const QString& highlightedColor)
    {
        const QString path = Platform::IconsDirectory() + fileName;
        if (!normal.isValid())
            LoadSvgWithReplace(normal, path, QStringLiteral("#000000"), normalColor);
        if (!highlighted.isValid())
            LoadSvgWithReplace(highlighted, path, QStringLiteral("#000000"), highlightedColor);
    }

    void render(QPainter& painter, bool highlight, const QRectF& target)
    {
        (highlight ? highlighted : normal).render(&painter, target);
    }
};

// One set for all nodes.
struct Icons {
    Icon loading;
    Icon primary;
    Icon secondary;
    Icon primaryAndSecondary;
};

Icons& icons()
{
    static Icons shared;
    return shared;
}

} // namespace

PreviewNode::PreviewNode(QGraphicsItem* parent, bool createOutput)
    : Node(parent)
    , m_loadingTimer(new QTimer(this))
    , previewField(new ImagePreviewField(QStringLiteral("preview"), this))
{
    const QString normal = QGuiApplication::palette().color(QPalette::Text).name();
    const QString highlighted = NodeColors::header().name();
    icons().loading.loadIfNeeded(QStringLiteral("node_loading.svg"), normal, highlighted);
    icons().primary.loadIfNeeded(QStringLiteral("node_primary.svg"), normal, highlighted);
    icons().secondary.loadIfNeeded(QStringLiteral("node_secondary.svg"), normal, highlighted);
    icons().primaryAndSecondary.loadIfNeeded(QStringLiteral("node_primary_and_secondary.svg"), normal, highlighted);

    connect(m_loadingTimer, SIGNAL(timeout()), this, SLOT(updateHeader()));
    connect(previewField, SIGNAL(imageChanged()), this, SLOT(layout()));
    inputFields.push_back(previewField);
    if (createOutput)
        outputFields.push_back(
            new OutputField(QStringLiteral("image"), this, createAnchor(Anchor::Output), QStringLiteral("Image")));
}

void PreviewNode::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    Node::paint(painter, option, widget);
    paintEmblem(*painter);
    if (m_loading)
        paintLoading(*painter);
}

void PreviewNode::paintEmblem(QPainter& painter) const
{
    const int right = int(rect().width());
    const int y = int(qreal(headerHeight()) * 0.5) - kIconSize / 2;
    const QRectF single(right - kIconOffset, y, kIconSize, kIconSize);
    if (m_emblem == EmblemPrimary)
        icons().primary.render(painter, isFirstSelected(), single);
    else if (m_emblem == EmblemSecondary)
        icons().secondary.render(painter, isFirstSelected(), single);
    else if (m_emblem == EmblemPrimaryAndSecondary)
        icons().primaryAndSecondary.render(painter, isFirstSelected(), single.adjusted(-kIconSize, 0, 0, 0));
}

// One turn a second by the clock, so that all nodes turn alike and none keeps a state.
void PreviewNode::paintLoading(QPainter& painter) const
{
    const qreal half = kIconSize * 0.5;
    painter.save();
    painter.translate(int(rect().width()) - kIconOffset + half, qreal(headerHeight()) * 0.5);
    painter.rotate(QTime::currentTime().msec() / 1000.0 * 360.0);
    painter.translate(-half, -half);
    icons().loading.render(painter, isFirstSelected(), QRectF(0, 0, kIconSize, kIconSize));
    painter.restore();
}

void PreviewNode::setInputImage(std::shared_ptr<const Image> /*image*/) {}

void PreviewNode::setPreviewImage(std::shared_ptr<const Image> image)
{
    previewField->setImage(std::move(image));
}

void PreviewNode::setLoading(bool loading)
{
    if (m_loading == loading)
        return;
    m_loading = loading;
    if (loading)
        m_loadingTimer->start(kLoadingInterval);
    else
        m_loadingTimer->stop();
    updateHeader();
}

void PreviewNode::setRequestedThumbnail(const QString& fieldName, unsigned int index,
                                        const std::shared_ptr<const Image>& image)
{
    const int input = inputIndexOfFieldByName(fieldName);
    auto* field = input < 0 ? nullptr : qobject_cast<ComboBoxInputField*>(inputFields[std::size_t(input)]);
    if (field)
        field->setRequestedThumbnail(index, image);
}

void PreviewNode::setEmblem(Emblem emblem, bool replace)
{
    const bool replaces = emblem == EmblemNone || emblem == EmblemPrimaryAndSecondary || replace;
    m_emblem = replaces ? emblem : Emblem(m_emblem | emblem);
    updateHeader();
}

void PreviewNode::clearEmblem(Emblem emblem)
{
    m_emblem = Emblem(m_emblem & ~emblem);
    updateHeader();
}

PreviewNode::Emblem PreviewNode::emblem() const
{
    return m_emblem;
}

void PreviewNode::toggleEmblemPrimary()
{
    toggleEmblem(EmblemPrimary);
}

void PreviewNode::toggleEmblemSecondary()
{
    toggleEmblem(EmblemSecondary);
}

void PreviewNode::toggleEmblem(Emblem part)
{
    m_emblem = Emblem(m_emblem ^ part);
    Q_EMIT emblemChanged(this, m_emblem);
    updateHeader();
}

void PreviewNode::anchorHasBeenConnected(const Anchor* /*anchor*/, const QString& /*name*/) {}

void PreviewNode::anchorHasBeenDisconnected(const Anchor* /*anchor*/) {}

void PreviewNode::inputGeometryChanged(NodeData* /*data*/) {}

void PreviewNode::availableColorProfilesChanged() {}

void PreviewNode::contextMenuEvent(QGraphicsSceneContextMenuEvent* event)
{
    // A derived node or the host may keep the menu and its actions, so nobody deletes it.
    auto* menu = new QMenu;
    QAction* primary = menu->addAction(QStringLiteral("Primary Preview"), this, SLOT(toggleEmblemPrimary()));
    primary->setCheckable(true);
    primary->setChecked(m_emblem & EmblemPrimary);
    QAction* secondary = menu->addAction(QStringLiteral("Secondary Preview"), this, SLOT(toggleEmblemSecondary()));
    secondary->setCheckable(true);
    secondary->setChecked(m_emblem & EmblemSecondary);
    displayingContextMenu(menu, primary, secondary);
    if (!menu->isEmpty())
        menu->popup(event->screenPos());
    event->accept();
}

void PreviewNode::displayingContextMenu(QMenu* /*menu*/, QAction* /*primaryAction*/, QAction* /*secondaryAction*/) {}

void PreviewNode::thumbnailsRequested(ComboBoxInputField* inputField)
{
    Q_EMIT thumbnailsRequested(this, inputField->name(), inputField->values());
}

void PreviewNode::updateHeader()
{
    update(QRectF(0, 0, rect().width(), qreal(headerHeight())));
}

} // namespace Ondrel
