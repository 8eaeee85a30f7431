#include "imagepane.h"

#include "panecursor.h"
#include "pictureitem.h"
#include "wipehandle.h"

#include "../../mode/canvasview.h"

#include <ondrel/color/colormanager.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr double kSmallest = 0.02, kLargest = 16;
constexpr double kWipeStep = 0.01; // by a key
constexpr int kGap = 4;            // between both views
constexpr int kScrollBar = 10;

QLabel* captionOver(QWidget* viewport, const QString& text)
{
    auto* const label = new QLabel(text, viewport);
    label->setStyleSheet("background: rgba(14, 14, 14, 170); color: rgb(201, 198, 198); padding: 2px 7px;"
                         "border-radius: 3px;");
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->move(8, 8);
    label->hide();
    return label;
}

bool isOfMiddleButton(const QEvent& event)
{
    if (event.type() == QEvent::MouseMove)
        return static_cast<const QMouseEvent&>(event).buttons().testFlag(Qt::MiddleButton);
    return (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonRelease) &&
           static_cast<const QMouseEvent&>(event).button() == Qt::MiddleButton;
}

// Assistive programs read a label's name alone.
void setText(QLabel& label, const QString& title, const QString& text)
{
    label.setText(text);
    label.setAccessibleName(text.trimmed().isEmpty() ? title : title + ": " + text);
}

// The same part in both: their scenes and zooms are equal.
void scrollTogether(QScrollBar* one, QScrollBar* other)
{
    QObject::connect(one, SIGNAL(valueChanged(int)), other, SLOT(setValue(int)));
    QObject::connect(other, SIGNAL(valueChanged(int)), one, SLOT(setValue(int)));
}

} // namespace

ImagePane::ImagePane(QWidget* parent)
    : QWidget(parent)
    , m_canvas(new PictureItem)
    , m_secondCanvas(new PictureItem)
    , m_view(new CanvasView(&m_scene))
    , m_secondView(new CanvasView(&m_secondScene))
    , m_caption(captionOver(m_view->viewport(), QString()))
    , m_secondCaption(captionOver(m_secondView->viewport(), tr("Secondary")))
    , m_wipe(new WipeHandle(m_view->viewport()))
    , m_readOut(new QLabel(this))
    , m_zoomText(new QLabel(this))
{
    m_scene.addItem(m_canvas);
    m_secondScene.addItem(m_secondCanvas);
    m_view->setAccessibleName(tr("Picture"));
    m_secondView->setAccessibleName(tr("Secondary picture"));
    m_readOut->setObjectName("readOut");
    m_zoomText->setObjectName("zoom");
    readOutAt(std::nullopt);
    auto* const views = new QHBoxLayout;
    views->setSpacing(kGap);
    views->addWidget(m_view, 1);
    views->addWidget(m_secondView, 1);
    auto* const below = new QHBoxLayout;
    below->setContentsMargins(6, 0, 6, 0);
    below->addWidget(m_readOut, 1);
    below->addWidget(m_zoomText);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(views, 1);
    layout->addLayout(below);
    addView(*m_view);
    addView(*m_secondView);
    m_secondView->setFocusPolicy(Qt::NoFocus); // keys are for the first one and its mode
    m_secondView->hide();
    m_wipe->hide();
    scrollTogether(m_view->horizontalScrollBar(), m_secondView->horizontalScrollBar());
    scrollTogether(m_view->verticalScrollBar(), m_secondView->verticalScrollBar());
    for (const QScrollBar* const bar : {m_view->horizontalScrollBar(), m_view->verticalScrollBar()})
        connect(bar, SIGNAL(valueChanged(int)), this, SLOT(placeWipe()));
    connect(m_wipe, SIGNAL(dragged(double)), this, SLOT(moveWipe(double)));
    connect(m_wipe, &WipeHandle::stepped, this, [this](int steps) { setWipe(m_options.wipe + steps * kWipeStep); });
    connect(&m_renderer, SIGNAL(rendered()), this, SLOT(takeRendered()));
    new PaneCursor(*this);
}

void ImagePane::addView(CanvasView& view)
{
    view.viewport()->setMouseTracking(true);
    view.viewport()->installEventFilter(this);
    view.setAcceptDrops(false); // files are the window's
    view.horizontalScrollBar()->setFixedHeight(kScrollBar);
    view.verticalScrollBar()->setFixedWidth(kScrollBar);
    view.viewport()->setAcceptDrops(false);
    connect(&view, &CanvasView::zoomWanted, this,
            [this](double factor, QPoint anchor) { setZoom(m_zoom * factor, anchor); });
    connect(&view, SIGNAL(resized()), this, SLOT(placeScene()));
}

void ImagePane::setPicture(const Picture& picture)
{
    m_renderer.setFirst(picture);
}

void ImagePane::setSecondPicture(const Picture& picture)
{
    m_renderer.setSecond(picture);
}

const Picture& ImagePane::shownPicture() const
{
    return compare() == ViewOptions::Second ? secondPicture() : picture();
}

QImage ImagePane::rendered() const
{
    return m_renderer.first().rendered.marked();
}

QImage ImagePane::secondRendered() const
{
    return m_renderer.second().rendered.marked();
}

void ImagePane::setOptions(const ViewOptions& options)
{
    m_options = options;
    m_renderer.setOptions(options);
    arrange();
    Q_EMIT pictureShown();
    Q_EMIT optionsChanged();
}

ViewOptions::Compare ImagePane::compare() const
{
    return picture().image && secondPicture().image ? m_options.compare : ViewOptions::First;
}

void ImagePane::takeRendered()
{
    arrange();
    const QSize size = picture().image ? picture().fullSize : QSize();
    if (size != m_fullSize) {
        m_fullSize = size;
        placeScene();
    }
    Q_EMIT pictureShown();
}

// What lies where.
void ImagePane::arrange()
{
    const QSize size = picture().image ? picture().fullSize : QSize();
    const PictureItem::Layer first{m_renderer.first().rendered, QRectF(QPointF(0, 0), size)};
    const PictureItem::Layer second{m_renderer.second().rendered, placeOver(secondPicture().fullSize, size)};
    const ViewOptions::Compare now = compare();
    m_canvas->setLayers(size, now == ViewOptions::Second ? second : first,
                        now == ViewOptions::Wipe ? second : PictureItem::Layer(), m_options.wipe * size.width());
    m_secondCanvas->setLayers(size, second, PictureItem::Layer(), 0);
    m_caption->setText(now == ViewOptions::Second ? tr("Secondary")
                       : now == ViewOptions::Wipe ? tr("Primary | Secondary")
                                                  : tr("Primary"));
    m_caption->adjustSize();
    m_caption->setVisible(now != ViewOptions::First);
    m_secondCaption->show();
    m_secondView->setVisible(now == ViewOptions::SideBySide);
    m_wipe->setVisible(now == ViewOptions::Wipe);
    placeWipe();
    m_view->viewport()->update();
    m_secondView->viewport()->update();
}

void ImagePane::placeWipe()
{
    if (m_wipe->isHidden())
        return;
    m_wipe->setGripOnly(m_view->mode() != nullptr);
    const QPolygon corners = m_view->mapFromScene(m_canvas->boundingRect());
    const double x = m_view->viewportTransform().map(QPointF(m_options.wipe * m_canvas->boundingRect().width(), 0)).x();
    m_wipe->placeAt(x, corners.boundingRect());
}

void ImagePane::moveWipe(double viewX)
{
    const QPointF inScene = m_view->viewportTransform().inverted().map(QPointF(viewX, 0));
    if (!m_canvas->boundingRect().isEmpty())
        setWipe(inScene.x() / m_canvas->boundingRect().width());
}

void ImagePane::setWipe(double part)
{
    m_options.wipe = std::clamp(part, 0.0, 1.0);
    arrange();
}

double ImagePane::fittingZoom(QSize fullSize) const
{
    const QSize view = m_view->viewport()->size();
    if (fullSize.isEmpty() || view.isEmpty())
        return pixelZoom();
    const double zoom =
        std::min(double(view.width()) / fullSize.width(), double(view.height()) / fullSize.height()) * 0.96;
    return std::clamp(zoom, kSmallest, pixelZoom());
}

double ImagePane::scaleFor(QSize fullSize) const
{
    const double zoom = m_fitting ? fittingZoom(fullSize) : m_zoom;
    return std::clamp(zoom * devicePixelRatioF(), 1.0 / 64, 1.0);
}

void ImagePane::fit()
{
    m_fitting = true;
    placeScene();
    Q_EMIT zoomChanged();
}

void ImagePane::showPixels()
{
    setZoom(pixelZoom(), m_view->viewport()->rect().center());
}

void ImagePane::setZoom(double zoom, QPoint anchor)
{
    const QPointF fixed = m_view->mapToScene(anchor);
    m_fitting = false;
    m_zoom = std::clamp(zoom, kSmallest, kLargest);
    placeScene();
    const QPoint off = anchor - m_view->mapFromScene(fixed);
    m_view->horizontalScrollBar()->setValue(m_view->horizontalScrollBar()->value() - off.x());
    m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value() - off.y());
    Q_EMIT zoomChanged();
}

void ImagePane::scrollBy(QPoint way)
{
    m_fitting = m_fitting && way.isNull();
    m_view->horizontalScrollBar()->setValue(m_view->horizontalScrollBar()->value() + way.x());
    m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value() + way.y());
}

// Room around the picture in every direction, so that it can be scrolled anywhere at any zoom.
void ImagePane::placeScene()
{
    if (m_fitting)
        m_zoom = fittingZoom(m_fullSize);
    const QSizeF room = QSizeF(m_view->viewport()->size()) / m_zoom;
    const QRectF area = m_canvas->boundingRect().adjusted(-room.width(), -room.height(), room.width(), room.height());
    for (CanvasView* const view : {m_view, m_secondView}) {
        view->setTransform(QTransform::fromScale(m_zoom, m_zoom));
        view->setSceneRect(area);
    }
    if (m_fitting)
        m_view->centerOn(m_canvas);
    m_secondView->horizontalScrollBar()->setValue(m_view->horizontalScrollBar()->value());
    m_secondView->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value());
    placeWipe();
    showZoom();
    Q_EMIT placed();
}

bool ImagePane::eventFilter(QObject* object, QEvent* event)
{
    CanvasView& view = object == m_secondView->viewport() ? *m_secondView : *m_view;
    if (event->type() == QEvent::Leave)
        readOutAt(std::nullopt);
    const bool isMove = event->type() == QEvent::MouseMove;
    if (isMove || event->type() == QEvent::MouseButtonPress) {
        const auto& mouse = *static_cast<QMouseEvent*>(event);
        if (isMove)
            handleMouse(view, mouse);
        m_lastPosition = mouse.pos();
        const bool wipes = mouse.buttons().testFlag(Qt::LeftButton) && mouse.modifiers().testFlag(Qt::ControlModifier);
        if (wipes && compare() == ViewOptions::Wipe) {
            moveWipe(mouse.localPos().x());
            return true;
        }
    }
    if (isOfMiddleButton(*event))
        return true; // a mode would scroll as well
    return QWidget::eventFilter(object, event);
}

void ImagePane::handleMouse(CanvasView& view, const QMouseEvent& event)
{
    if (event.buttons().testFlag(Qt::MiddleButton))
        scrollBy(m_lastPosition - event.pos());
    showColour(found(&view == m_secondView, view.mapToScene(event.pos())));
}

ImagePane::Found ImagePane::found(bool inSecondView, QPointF scenePosition) const
{
    const ViewOptions::Compare now = compare();
    const bool behindWipe =
        now == ViewOptions::Wipe && scenePosition.x() >= m_options.wipe * m_canvas->boundingRect().width();
    if (!inSecondView && now != ViewOptions::Second && !behindWipe)
        return {&picture(), scenePosition};
    const QSize size = secondPicture().fullSize;
    const QRectF place = placeOver(size, picture().fullSize);
    const QPointF in = scenePosition - place.topLeft();
    return {&secondPicture(), QPointF(in.x() * size.width() / place.width(), in.y() * size.height() / place.height())};
}

void ImagePane::readOutAt(const std::optional<QPointF>& position)
{
    static const Picture none;
    showColour(position ? found(false, *position) : Found{&none, QPointF()});
}

void ImagePane::showColour(const Found& found)
{
    setText(*m_readOut, tr("Colour under the pointer"), " ");
    if (!found.picture->image || found.picture->fullSize.isEmpty())
        return;
    const Ondrel::Image& image = *found.picture->image;
    const double x = found.position.x() * image.width / found.picture->fullSize.width();
    const double y = found.position.y() * image.height / found.picture->fullSize.height();
    if (!(x >= 0 && y >= 0 && x < image.width && y < image.height))
        return;
    const std::uint16_t* const pixel = image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
    Ondrel::Image one(1, 1);
    std::copy_n(pixel, 4, one.data);
    one.colorProfile = image.colorProfile;
    const std::vector<float> lab = Ondrel::ColorManager::toLab(one);
    setText(*m_readOut, tr("Colour under the pointer"),
            tr("%1, %2   R %3  G %4  B %5  A %6   L %7  a %8  b %9")
                .arg(int(found.position.x()))
                .arg(int(found.position.y()))
                .arg(pixel[0])
                .arg(pixel[1])
                .arg(pixel[2])
                .arg(pixel[3])
                .arg(double(lab[0]), 0, 'f', 1)
                .arg(double(lab[1]), 0, 'f', 1)
                .arg(double(lab[2]), 0, 'f', 1));
}

void ImagePane::showZoom()
{
    const double percent = m_zoom * devicePixelRatioF() * 100;
    setText(*m_zoomText, tr("Zoom"),
            m_fullSize.isEmpty() ? QString() : tr("%1 %").arg(percent, 0, 'f', percent < 10 ? 1 : 0));
}

} // namespace Host
