#include "imagepane.h"

#include "../../mode/canvasview.h"

#include <ondrel/color/colormanager.h>

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

bool isOfMiddleButton(const QEvent& event)
{
    if (event.type() == QEvent::MouseMove)
        return static_cast<const QMouseEvent&>(event).buttons().testFlag(Qt::MiddleButton);
    return (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonRelease) &&
           static_cast<const QMouseEvent&>(event).button() == Qt::MiddleButton;
}

} // namespace

ImagePane::ImagePane(QWidget* parent)
    : QWidget(parent)
    , m_canvas(new CanvasItem)
    , m_view(new CanvasView(&m_scene))
    , m_readOut(new QLabel(this))
{
    m_scene.addItem(m_canvas);
    m_view->viewport()->setMouseTracking(true);
    m_view->viewport()->installEventFilter(this);
    m_view->setAcceptDrops(false); // files are the window's
    m_view->viewport()->setAcceptDrops(false);
    m_view->setAccessibleName(tr("Picture"));
    m_readOut->setAccessibleName(tr("Colour under the pointer"));
    m_readOut->setText(" ");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_readOut);
    connect(m_view, &CanvasView::zoomWanted, this,
            [this](double factor, QPoint anchor) { setZoom(m_zoom * factor, anchor); });
    connect(m_view, SIGNAL(resized()), this, SLOT(placeScene()));
}

void ImagePane::setPicture(const Picture& picture)
{
    m_newest = picture;
    render();
}

void ImagePane::setSecondPicture(const Picture& picture)
{
    m_second = picture;
    render();
}

void ImagePane::setOptions(const ViewOptions& options)
{
    m_options = options;
    render();
    Q_EMIT optionsChanged();
}

void ImagePane::render()
{
    m_again = m_rendering;
    if (m_rendering)
        return;
    m_rendering = true;
    m_worker.run([this, first = m_newest, second = m_second, options = m_options]() -> std::function<void()> {
        const QImage rendered = renderForView(first, second, options);
        return [this, first, rendered] {
            m_rendering = false;
            show(first, rendered);
            if (m_again)
                render();
        };
    });
}

void ImagePane::show(const Picture& picture, const QImage& rendered)
{
    const bool sameSize = picture.fullSize == m_picture.fullSize;
    m_picture = picture;
    m_rendered = rendered;
    m_canvas->setPicture(rendered, picture.image ? picture.fullSize : QSize());
    if (!sameSize)
        placeScene();
    m_view->viewport()->update();
    Q_EMIT pictureShown();
}

// By the left button with Ctrl.
bool ImagePane::moveWipe(const QMouseEvent& event)
{
    const bool moves = m_options.compare == ViewOptions::Wipe && event.buttons().testFlag(Qt::LeftButton) &&
                       event.modifiers().testFlag(Qt::ControlModifier);
    if (!moves || m_picture.fullSize.isEmpty())
        return false;
    m_options.wipe = std::clamp(m_view->mapToScene(event.pos()).x() / m_picture.fullSize.width(), 0.0, 1.0);
    render();
    return true;
}

double ImagePane::fittingZoom(QSize fullSize) const
{
    const QSize view = m_view->viewport()->size();
    if (fullSize.isEmpty() || view.isEmpty())
        return 1;
    const double zoom =
        std::min(double(view.width()) / fullSize.width(), double(view.height()) / fullSize.height()) * 0.96;
    return std::clamp(zoom, kSmallest, 1.0);
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

// Room around the picture in every direction, so that it can be scrolled anywhere at any zoom.
void ImagePane::placeScene()
{
    if (m_fitting)
        m_zoom = fittingZoom(m_picture.fullSize);
    m_view->setTransform(QTransform::fromScale(m_zoom, m_zoom));
    const QSizeF room = QSizeF(m_view->viewport()->size()) / m_zoom;
    m_scene.setSceneRect(m_canvas->boundingRect().adjusted(-room.width(), -room.height(), room.width(), room.height()));
    if (m_fitting)
        m_view->centerOn(m_canvas);
    Q_EMIT placed();
}

bool ImagePane::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::MouseMove) {
        auto* const mouse = static_cast<QMouseEvent*>(event);
        if (mouse->buttons().testFlag(Qt::MiddleButton)) {
            const QPoint moved = mouse->pos() - m_lastPosition;
            m_view->horizontalScrollBar()->setValue(m_view->horizontalScrollBar()->value() - moved.x());
            m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value() - moved.y());
            m_fitting = m_fitting && moved.isNull();
        }
        m_lastPosition = mouse->pos();
        showColour(m_view->mapToScene(mouse->pos()));
    } else if (event->type() == QEvent::MouseButtonPress) {
        m_lastPosition = static_cast<QMouseEvent*>(event)->pos();
    } else if (event->type() == QEvent::Leave) {
        m_readOut->setText(" ");
    }
    const bool isOfMouse = event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress;
    if (isOfMouse && moveWipe(*static_cast<QMouseEvent*>(event)))
        return true;
    if (isOfMiddleButton(*event))
        return true; // a mode would scroll as well
    return QWidget::eventFilter(object, event);
}

void ImagePane::showColour(QPointF position)
{
    m_readOut->setText(" ");
    if (!m_picture.image || m_picture.fullSize.isEmpty())
        return;
    const Ondrel::Image& image = *m_picture.image;
    const double x = position.x() * image.width / m_picture.fullSize.width();
    const double y = position.y() * image.height / m_picture.fullSize.height();
    if (x < 0 || y < 0 || x >= image.width || y >= image.height)
        return;
    const std::uint16_t* const pixel = image.data + (std::size_t(y) * image.width + std::size_t(x)) * 4;
    Ondrel::Image one(1, 1);
    std::copy_n(pixel, 4, one.data);
    one.colorProfile = image.colorProfile;
    const std::vector<float> lab = Ondrel::ColorManager::toLab(one);
    m_readOut->setText(tr("%1, %2   R %3  G %4  B %5  A %6   L %7  a %8  b %9")
                           .arg(int(position.x()))
                           .arg(int(position.y()))
                           .arg(pixel[0])
                           .arg(pixel[1])
                           .arg(pixel[2])
                           .arg(pixel[3])
                           .arg(double(lab[0]), 0, 'f', 1)
                           .arg(double(lab[1]), 0, 'f', 1)
                           .arg(double(lab[2]), 0, 'f', 1));
}

} // namespace Host
