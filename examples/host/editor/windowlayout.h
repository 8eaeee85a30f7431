#pragma once

#include <QObject>

class QAction;
class QMainWindow;
class QSplitter;

namespace Host
{

// What the user has made of the window, from one run to the next: its size and place, the docks, how the canvas and the
// view share it, and whether the overview is shown. User-interface thread only.
class WindowLayout : public QObject
{
    Q_OBJECT
public:
    WindowLayout(QMainWindow& window, QSplitter& panes, QAction& overview);
    void keep() const;
    void restore(); // leaves as it is what was never kept, or makes no sense

private:
    QMainWindow& m_window;
    QSplitter& m_panes;
    QAction& m_overview;
};

} // namespace Host
