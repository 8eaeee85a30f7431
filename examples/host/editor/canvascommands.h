#pragma once

#include "graph.h"

#include <QObject>

#include <functional>

class QMenu;
class QWidget;

namespace Host
{

class Document;
class Scene;
class SceneView;

// What a user does to the nodes of the canvas by menus and keys. User-interface thread only.
class CanvasCommands : public QObject
{
    Q_OBJECT
public:
    CanvasCommands(Document& document, Scene& scene, SceneView& view, QWidget& window);

    void addEditActions(QMenu& menu);
    void addViewActions(QMenu& menu);

    NodeId addNode(const QString& type, QPointF at); // and selects it; 0 if the type is unknown
    void editFrameTitle(quint64 id);
    void insertIntoWire(const Connection& wire, QPointF at); // what the search finds

public Q_SLOTS:
    void searchNode(QPointF at);
    void openMenu(QPointF at); // of the canvas, or of what lies there
    void replaceSelected();    // by what the search finds, of the kinds that keep a wire
    void frameSelected();
    void deleteSelected();
    void bypassSelected();
    void copySelected();
    void cutSelected();
    void paste();
    void duplicateSelected();
    void showSelected();
    void showSelectedAsSecondary();
    void fitAll();
    void fitSelected();

Q_SIGNALS:
    void message(const QString& text);

private Q_SLOTS:
    void addWiredNode(Host::NodeId node, const QString& field, bool fromOutput, QPointF at);

private:
    QString chooseType(const std::function<bool(const NodeType&)>& isOffered, QPointF at);
    void connectTo(NodeId made, NodeId node, const QString& field, bool fromOutput);
    Graph selectedGraph() const;
    void insertAndSelect(const Graph& graph);

    Document& m_document;
    Scene& m_scene;
    SceneView& m_view;
    QWidget& m_window;
};

} // namespace Host
