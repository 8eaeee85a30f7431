#pragma once

#include "graph.h"

#include <QObject>

namespace Host
{

class Document;
class Scene;
class SceneView;

// Names the controls inside nodes for screen readers, by their fields, and tells them what is selected. What they see
// of nodes, fields, anchors, frames and wires is in accessibleitems.h.
class CanvasAccessibility : public QObject
{
    Q_OBJECT
public:
    CanvasAccessibility(Document& document, Scene& scene, SceneView& view);

Q_SIGNALS:
    void told(QObject* object); // that it has the keys now

private Q_SLOTS:
    void nameAllControls();
    void nameControlsOf(Host::NodeId node);
    void tellSelection();

private:
    Document& m_document;
    Scene& m_scene;
};

} // namespace Host
