#pragma once

#include <QObject>

#include <vector>

class QMainWindow;
class QMenu;
class QWidget;

namespace Host
{

class ImagePane;
class SceneView;

// Walks by keys through the canvas, the view of the picture, and all bars and docks that have controls, and zooms the
// canvas or the picture, whichever has the focus. User-interface thread only.
class PaneKeys : public QObject
{
    Q_OBJECT
public:
    PaneKeys(ImagePane& picture, SceneView& canvas, QMainWindow& window);
    void addActions(QMenu& menu);

public Q_SLOTS:
    void goToNextPane();
    void goToPreviousPane();
    void zoomIn();
    void zoomOut();

private:
    void go(int by);
    std::vector<QWidget*> controls() const;
    void zoom(double factor);

    ImagePane& m_picture;
    SceneView& m_canvas;
    QMainWindow& m_window;
};

} // namespace Host
