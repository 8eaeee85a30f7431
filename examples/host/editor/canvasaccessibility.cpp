#include "canvasaccessibility.h"

#include "accessibleitems.h"
#include "sceneview.h"

#include <ondrel/nodes/fieldbase.h>

#include <QWidget>

namespace Host
{

CanvasAccessibility::CanvasAccessibility(Document& document, Scene& scene, SceneView& view)
    : QObject(&view)
    , m_document(document)
    , m_scene(scene)
{
    // After the scene, which has made the items by then. Connections may bring further fields.
    connect(&document, &Document::nodeAdded, this, &CanvasAccessibility::nameControlsOf);
    connect(&document, &Document::connectionAdded, this,
            [this](const Connection& connection) { nameControlsOf(connection.to); });
    connect(&document, &Document::reset, this, &CanvasAccessibility::nameAllControls);
    connect(&scene, SIGNAL(selectionChanged()), this, SLOT(tellSelection()));
    connect(&scene, SIGNAL(thingSelected()), this, SLOT(tellSelection()));
    nameAllControls();
}

void CanvasAccessibility::nameAllControls()
{
    for (const auto& [id, record] : m_document.graph().nodes)
        nameControlsOf(id);
}

void CanvasAccessibility::nameControlsOf(NodeId node)
{
    const PreviewNode* const item = m_scene.item(node);
    if (!item)
        return;
    for (const Ondrel::FieldBase* const field : fieldsOf(*item)) {
        QWidget* const control = controlOf(*field);
        if (control && control->accessibleName().isEmpty())
            control->setAccessibleName(field->displayName());
    }
}

void CanvasAccessibility::tellSelection()
{
    const CanvasThing selected = m_scene.selectedThing();
    QObject* const object = objectOf(m_scene, selected);
    if (!object || m_scene.selectedNodes().size() > 1 || m_scene.focusItem())
        return;
    QAccessibleEvent event(object, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
    Q_EMIT told(object);
}

} // namespace Host
