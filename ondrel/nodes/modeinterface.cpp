#include <ondrel/core/platform.h>
#include <ondrel/nodes/modeinterface.h>
#include <ondrel/work/memoryawareundocommand.h>

#include <QGraphicsItem>
#include <QGraphicsView>
#include <QIcon>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>

namespace Ondrel
{
namespace
{

struct Ratio {
    float x, y;
};

Ratio ratioOf(const QSize& size, const QSize& to)
{
    return {float(double(size.width()) / double(to.width())), float(double(size.height()) / double(to.height()))};
}

// Each product in single precision.
QPointF scaled(const QPointF& p, const Ratio& ratio)
{
    return QPointF(qreal(float(p.x() * qreal(ratio.x))), qreal(float(p.y() * qreal(ratio.y))));
}

} // namespace

ModeInterface::ModeInterface(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<Rect>();
    qRegisterMetaType<Rect>("Rect"); // as moc writes it in the signals
    qRegisterMetaType<std::size_t>("size_t");
    qRegisterMetaType<std::uint64_t>("std::uint64_t");
}

ModeInterface::~ModeInterface() = default;

void ModeInterface::initialize(QGraphicsView* newView, QGraphicsScene* newScene, QGraphicsItem* newCanvasItem)
{
    view = newView;
    scene = newScene;
    canvasItem = newCanvasItem;
}

void ModeInterface::createDockWidgets(std::vector<QDockWidget*>& /*widgets*/) {}

void ModeInterface::createToolButtons(std::vector<QToolButton*>& /*buttons*/) {}

QWidget* ModeInterface::createStatusBarWidget()
{
    return nullptr;
}

void ModeInterface::show(unsigned long newNodeId)
{
    nodeId = newNodeId;
}

void ModeInterface::hide(bool /*closing*/) {}

void ModeInterface::canvasGeometryChanged(const QSize& newDisplaySize, const QSize& newRealSize,
                                          const Ondrel::TransformSeries& series)
{
    displaySize = newDisplaySize;
    realSize = newRealSize;
    transformSeries = series;
}

void ModeInterface::canvasChanged(const std::shared_ptr<const Ondrel::Image>& newCanvas)
{
    canvas = newCanvas;
}

void ModeInterface::currentToolAboutToChange() {}

void ModeInterface::currentToolChanged(const QString& /*tool*/) {}

void ModeInterface::nodeInputChanged(unsigned long /*fieldIndex*/, const QVariant& /*value*/) {}

void ModeInterface::viewMousePressEvent(QMouseEvent* /*event*/) {}

void ModeInterface::viewMouseMoveEvent(QMouseEvent* /*event*/) {}

void ModeInterface::viewMouseReleaseEvent(QMouseEvent* /*event*/) {}

void ModeInterface::viewMouseLeaveEvent(QEvent* /*event*/) {}

void ModeInterface::viewKeyPressEvent(QKeyEvent* /*event*/) {}

void ModeInterface::viewDrawOverCanvas(QPainter* /*painter*/, const QRectF& /*rect*/) {}

bool ModeInterface::previewMode() const
{
    return false;
}

bool ModeInterface::isPaintingMode() const
{
    return false;
}

void ModeInterface::emitInputValueChanged(unsigned long changedNodeId, unsigned long fieldIndex,
                                          Ondrel::RectT<int> updatedRect)
{
    Q_EMIT inputValueChanged(std::uint64_t{changedNodeId}, std::size_t{fieldIndex}, updatedRect);
}

QToolButton* ModeInterface::createToolButton(const QString& toolTip, const QString& iconFileName,
                                             const QKeySequence& shortcut)
{
    auto* button = new QToolButton;
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setShortcut(shortcut);
    button->setIcon(QIcon(Platform::IconsDirectory() + iconFileName));
    return button;
}

QPointF ModeInterface::mapFromRealToDisplay(QPointF p) const
{
    return scaled(p, ratioOf(displaySize, realSize));
}

QPointF ModeInterface::mapFromDisplayToReal(QPointF p) const
{
    return scaled(p, ratioOf(realSize, displaySize));
}

QPointF ModeInterface::scaleFromSceneToDisplay(QPointF p) const
{
    const QTransform transform = view->transform();
    return QPointF(p.x() * transform.m11(), p.y() * transform.m22());
}

QPointF ModeInterface::scaleFromDisplayToScene(QPointF p) const
{
    const QTransform transform = view->transform();
    return QPointF(p.x() / transform.m11(), p.y() / transform.m22());
}

QPointF ModeInterface::mapFromSceneToDisplay(QPointF p) const
{
    return scaleFromSceneToDisplay(p - canvasItem->pos());
}

QPointF ModeInterface::mapFromDisplayToScene(QPointF p) const
{
    return scaleFromDisplayToScene(p) + canvasItem->pos();
}

QPointF ModeInterface::mapFromSceneToReal(QPointF p) const
{
    return mapFromDisplayToReal(mapFromSceneToDisplay(p));
}

QPointF ModeInterface::mapFromRealToScene(QPointF p) const
{
    return mapFromDisplayToScene(mapFromRealToDisplay(p));
}

QPointF ModeInterface::mapFromViewToDisplay(QPointF p) const
{
    return mapFromSceneToDisplay(view->mapToScene(p.toPoint()));
}

QPointF ModeInterface::mapFromViewToReal(QPointF p) const
{
    return mapFromSceneToReal(view->mapToScene(p.toPoint()));
}

QPointF ModeInterface::mapFromDisplayToView(QPointF p) const
{
    return QPointF(view->mapFromScene(mapFromDisplayToScene(p)));
}

QPointF ModeInterface::mapFromRealToView(QPointF p) const
{
    return QPointF(view->mapFromScene(mapFromRealToScene(p)));
}

QTransform ModeInterface::transformFromRealToDisplay() const
{
    const Ratio ratio = ratioOf(displaySize, realSize);
    return QTransform::fromScale(qreal(ratio.x), qreal(ratio.y));
}

QTransform ModeInterface::transformFromDisplayToReal() const
{
    const Ratio ratio = ratioOf(realSize, displaySize);
    return QTransform::fromScale(qreal(ratio.x), qreal(ratio.y));
}

// Products, in which the left factor acts first; the members scale() and translate() would act before what is there.
QTransform ModeInterface::transformFromDisplayToView() const
{
    const QTransform toView = view->transform();
    const QPointF position = canvasItem->pos();
    return QTransform::fromScale(1 / toView.m11(), 1 / toView.m22()) *
           QTransform::fromTranslate(position.x(), position.y()) * toView *
           QTransform::fromTranslate(-view->horizontalScrollBar()->value(), -view->verticalScrollBar()->value());
}

QTransform ModeInterface::transformFromRealToView() const
{
    return transformFromRealToDisplay() * transformFromDisplayToView();
}

void ModeInterface::scaleFromRealToCanvas(float& scaleX, float& scaleY) const
{
    const Ratio ratio = ratioOf(displaySize, realSize);
    scaleX = std::min(ratio.x, 1.0f);
    scaleY = std::min(ratio.y, 1.0f);
}

} // namespace Ondrel
