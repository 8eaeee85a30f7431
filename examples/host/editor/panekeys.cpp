#include "panekeys.h"

#include "imagepane.h"
#include "sceneview.h"

#include "../../mode/canvasview.h"

#include <QMenu>

namespace Host
{
namespace
{

constexpr double kStep = 1.25;

} // namespace

PaneKeys::PaneKeys(ImagePane& picture, SceneView& canvas, QObject* parent)
    : QObject(parent)
    , m_picture(picture)
    , m_canvas(canvas)
{
}

void PaneKeys::addActions(QMenu& menu)
{
    menu.addAction(tr("Go to the &other pane"), this, SLOT(goToOtherPane()), QKeySequence("F6"))
        ->setObjectName("view.otherPane");
    menu.addAction(tr("Zoom &in"), this, SLOT(zoomIn()), QKeySequence::ZoomIn)->setObjectName("view.zoomIn");
    menu.addAction(tr("Zoom o&ut"), this, SLOT(zoomOut()), QKeySequence::ZoomOut)->setObjectName("view.zoomOut");
}

void PaneKeys::goToOtherPane()
{
    QGraphicsView& picture = m_picture.view();
    QGraphicsView& other = m_canvas.hasFocus() ? picture : m_canvas;
    other.setFocus(Qt::OtherFocusReason);
}

void PaneKeys::zoomIn()
{
    zoom(kStep);
}

void PaneKeys::zoomOut()
{
    zoom(1 / kStep);
}

// About the middle, since the pointer may be anywhere.
void PaneKeys::zoom(double factor)
{
    if (m_canvas.hasFocus())
        m_canvas.zoomBy(factor, QGraphicsView::AnchorViewCenter);
    else
        m_picture.setZoom(m_picture.zoom() * factor, m_picture.view().viewport()->rect().center());
}

} // namespace Host
