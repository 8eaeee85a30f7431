#pragma once

#include "evaluator.h"
#include "scene.h"

#include <QTimer>

#include <functional>

namespace Host
{

class ImagePane;

// Keeps all pictures on the screen up to date: that of the view, the previews of the nodes, and what nodes such as a
// histogram show of their inputs. Whatever changes within one turn of the event loop is one request.
class Pictures : public QObject
{
    Q_OBJECT
public:
    Pictures(Document& document, Scene& scene, ImagePane& pane, QObject* parent);

    Evaluator& evaluator() { return m_evaluator; }
    bool isWaiting() const { return m_timer.isActive() || m_evaluator.isBusy(); }

    // What the view shows instead of the document's graph, as while a mode edits a node.
    void setShownGraph(std::function<Graph()> shown) { m_shownGraph = std::move(shown); }

public Q_SLOTS:
    void schedule();

private Q_SLOTS:
    void request();
    void take(int slot, const Host::Picture& picture, double scale);

private:
    enum class Use { View, SecondView, Preview, Input };
    struct Place { // where a picture goes
        Use use;
        NodeId node;
    };
    void wantForView(std::vector<Evaluator::Wish>& wishes, const Graph& graph, const Place& place);
    void want(std::vector<Evaluator::Wish>& wishes, const Place& place, const Target& target);

    Document& m_document;
    Scene& m_scene;
    ImagePane& m_pane;
    Evaluator m_evaluator;
    std::function<Graph()> m_shownGraph;
    QTimer m_timer;
    std::vector<Place> m_places; // by slot
};

} // namespace Host
