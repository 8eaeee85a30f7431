#pragma once

#include <QObject>

class QMenu;

namespace Host
{

class ImagePane;
class SceneView;

// Moves between the canvas and the view of the picture, and zooms the one that has the focus, by keys. User-interface
// thread only.
class PaneKeys : public QObject
{
    Q_OBJECT
public:
    PaneKeys(ImagePane& picture, SceneView& canvas, QObject* parent);
    void addActions(QMenu& menu);

public Q_SLOTS:
    void goToOtherPane();
    void zoomIn();
    void zoomOut();

private:
    void zoom(double factor);

    ImagePane& m_picture;
    SceneView& m_canvas;
};

} // namespace Host
