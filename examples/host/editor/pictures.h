#pragma once

#include "evaluation.h"
#include "evaluator.h"
#include "scene.h"

#include <QPointer>
#include <QTimer>

#include <functional>

namespace Host
{

class ImagePane;

// Keeps all pictures on the screen up to date: that of the view, the previews of the nodes, and what nodes such as a
// histogram show of their inputs. Whatever changes within one turn of the event loop is one request, for the pictures
// that depend on it: a large graph costs no more than what hangs on the slider.
class Pictures : public QObject
{
    Q_OBJECT
public:
    Pictures(Document& document, Scene& scene, ImagePane& pane, QObject* parent);

    Evaluator& evaluator() { return m_evaluator; }
    bool isWaiting() const { return m_timer.isActive() || m_evaluator.isBusy(); }

    // What the view shows instead of the document's graph, as while a mode edits a node.
    void setShownGraph(std::function<Graph()> shown) { m_shownGraph = std::move(shown); }

    // While paused nothing is asked for, and what runs is cancelled. Afterwards all is computed and shown anew.
    void setPaused(bool paused);

public Q_SLOTS:
    void schedule();

private Q_SLOTS:
    void touch(Host::NodeId id);
    void touchEnd(const Host::Connection& connection);
    void forget(Host::NodeId id);
    void forgetAll();
    void request();
    void takeErrors(const QHash<Host::NodeId, QString>& errors);
    void finish();
    void take(int slot, const Host::Picture& picture, double scale);

private:
    enum class Use { View, SecondView, Preview, Input };
    struct Place { // where a picture goes
        Use use;
        NodeId node;
    };
    struct Shown { // what a node has been given
        QPointer<PreviewNode> item;
        std::weak_ptr<const Ondrel::Image> image;
    };
    void touchBypassed(const Graph& graph);
    std::vector<Evaluator::Wish> wishesFor(const Graph& graph);
    void give(const Place& place, const Picture& picture);
    void wantForView(std::vector<Evaluator::Wish>& wishes, const Graph& graph, const Place& place);
    void want(std::vector<Evaluator::Wish>& wishes, const Place& place, const Target& target);

    Document& m_document;
    Scene& m_scene;
    ImagePane& m_pane;
    Evaluator m_evaluator;
    std::function<Graph()> m_shownGraph;
    QTimer m_timer;
    bool m_paused = false;
    std::vector<Place> m_places; // by slot
    std::map<std::pair<Use, NodeId>, Shown> m_shown;
    std::set<NodeId> m_touched;   // changed since the last request that came to its end
    std::set<NodeId> m_requested; // what that request is about, with all that depends on it
    std::set<NodeId> m_bypassed;  // in the graph of the last request
    OutputSizes m_sizes;          // of that graph
    QHash<NodeId, QString> m_errors;
    QHash<NodeId, QString> m_newErrors; // of the request that runs
};

} // namespace Host
