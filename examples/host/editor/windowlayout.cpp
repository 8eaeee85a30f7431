#include "windowlayout.h"

#include <QAction>
#include <QMainWindow>
#include <QSettings>
#include <QSplitter>

namespace Host
{
namespace
{

const char* const kGeometry = "editor/window/geometry";
const char* const kState = "editor/window/state";
const char* const kPanes = "editor/window/panes";
const char* const kOverview = "editor/window/overview";

} // namespace

WindowLayout::WindowLayout(QMainWindow& window, QSplitter& panes, QAction& overview)
    : QObject(&window)
    , m_window(window)
    , m_panes(panes)
    , m_overview(overview)
{
}

void WindowLayout::keep() const
{
    QSettings settings;
    settings.setValue(kGeometry, m_window.saveGeometry());
    settings.setValue(kState, m_window.saveState());
    settings.setValue(kPanes, m_panes.saveState());
    settings.setValue(kOverview, m_overview.isChecked());
}

void WindowLayout::restore()
{
    const QSettings settings;
    m_window.restoreGeometry(settings.value(kGeometry).toByteArray());
    m_window.restoreState(settings.value(kState).toByteArray());
    m_panes.restoreState(settings.value(kPanes).toByteArray());
    m_overview.setChecked(settings.value(kOverview, true).toBool());
}

} // namespace Host
