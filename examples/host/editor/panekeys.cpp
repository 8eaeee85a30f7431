#include "panekeys.h"

#include "imagepane.h"
#include "sceneview.h"

#include "../../mode/canvasview.h"

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>

namespace Host
{
namespace
{

constexpr double kStep = 1.25;

} // namespace

PaneKeys::PaneKeys(ImagePane& picture, SceneView& canvas, QMainWindow& window)
    : QObject(&window)
    , m_picture(picture)
    , m_canvas(canvas)
    , m_window(window)
{
}

void PaneKeys::addActions(QMenu& menu)
{
    menu.addAction(tr("Go to the &next pane"), this, SLOT(goToNextPane()), QKeySequence("F6"))
        ->setObjectName("view.otherPane"); // the name that kept shortcuts have
    menu.addAction(tr("Go to the pre&vious pane"), this, SLOT(goToPreviousPane()), QKeySequence("Shift+F6"))
        ->setObjectName("view.previousPane");
    menu.addAction(tr("Zoom &in"), this, SLOT(zoomIn()), QKeySequence::ZoomIn)->setObjectName("view.zoomIn");
    menu.addAction(tr("Zoom o&ut"), this, SLOT(zoomOut()), QKeySequence::ZoomOut)->setObjectName("view.zoomOut");
}

// The control of each pane that gets the focus: the first one, or the one that has it.
std::vector<QWidget*> PaneKeys::controls() const
{
    std::vector<QWidget*> found{&m_canvas, &m_picture.view()};
    QList<QWidget*> panes;
    for (QToolBar* const bar : m_window.findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly))
        panes.append(bar);
    for (QDockWidget* const dock : m_window.findChildren<QDockWidget*>(QString(), Qt::FindDirectChildrenOnly))
        panes.append(dock);
    panes.append(m_window.statusBar());
    for (const QWidget* const pane : panes) {
        QWidget* const focused = QApplication::focusWidget();
        const auto takesKeys = [](const QWidget* each) {
            return each->isVisible() && each->isEnabled() && (each->focusPolicy() & Qt::TabFocus) != 0;
        };
        const QList<QWidget*> all = pane->findChildren<QWidget*>();
        const auto first = std::find_if(all.begin(), all.end(), takesKeys);
        if (focused && pane->isAncestorOf(focused))
            found.push_back(focused);
        else if (pane->isVisible() && first != all.end())
            found.push_back(*first);
    }
    return found;
}

void PaneKeys::go(int by)
{
    const std::vector<QWidget*> all = controls();
    const auto hasFocus = [](const QWidget* each) {
        return each->hasFocus() || (QApplication::focusWidget() && each->isAncestorOf(QApplication::focusWidget()));
    };
    const auto now = std::find_if(all.begin(), all.end(), hasFocus);
    const int count = int(all.size()), from = now == all.end() ? 0 : int(now - all.begin());
    all[std::size_t((from + by + count) % count)]->setFocus(by > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void PaneKeys::goToNextPane()
{
    go(1);
}

void PaneKeys::goToPreviousPane()
{
    go(-1);
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
