#pragma once

#include "scene.h"

#include <ondrel/nodes/modeinterface.h>

#include <QAction>
#include <QElapsedTimer>
#include <QPointer>

#include <map>
#include <memory>
#include <vector>

class QDockWidget;
class QMainWindow;
class QToolBar;

namespace Host
{

class ImagePane;

// Edits a node in the view, by the mode that its kind brings along. The mode's values become edits of the document, and
// those of the document, such as an undo, are told to the mode.
class ModeHost : public QObject
{
    Q_OBJECT
public:
    typedef Ondrel::RectT<int> Rect; // spelled in slots as modes spell it in signals

    ModeHost(Document& document, Scene& scene, ImagePane& pane, QMainWindow& window);
    ~ModeHost() override;

    // Shows the node in the view, unless what is shown comes from it. False if there is no mode for it.
    bool enter(NodeId node);
    NodeId node() const { return m_node; } // 0 if none is edited
    Ondrel::ModeInterface* mode() const { return m_mode.get(); }
    Graph shownGraph() const; // what the view shows

public Q_SLOTS:
    void leave();

Q_SIGNALS:
    void changed(); // the shown graph may be another one
    void left();

private Q_SLOTS:
    void updateGeometry();
    void takeUndoCommand(Ondrel::MemoryAwareUndoCommand* command);
    void keepValue(size_t fieldIndex, QVariant value);
    void storeValue(size_t fieldIndex, QVariant value, Rect updatedRect);
    void tellValue(Host::NodeId node, const QString& field);
    void nodeGone(Host::NodeId node);
    void updateCanvas();
    void translateCanvas(QPoint offset);
    void stepZoom(int direction);
    void zoomToRect(const QPoint& topLeft, const QPoint& bottomRight, int direction);

private:
    void wire();
    void addControls();
    void takeKeys(const QKeySequence& keys);
    void tellAllValues();
    int gestureOfStep();
    bool comesFrom(NodeId node, NodeId shown) const;

    Document& m_document;
    Scene& m_scene;
    ImagePane& m_pane;
    QMainWindow& m_window;
    std::unique_ptr<Ondrel::ModeInterface> m_mode;
    NodeId m_node = 0;
    std::map<QString, QVariant> m_kept; // values that wait for the rest of their step
    bool m_storing = false;
    QElapsedTimer m_sinceKey;                // the last value that came by a key
    int m_keyStep = 0;                       // the gesture of the values that come by keys one soon after the other
    int m_undoIndex = 0;                     // after the last of them
    std::vector<QWidget*> m_controls;        // the window's
    std::vector<QPointer<QAction>> m_silent; // actions of the window whose keys the mode has
};

} // namespace Host
