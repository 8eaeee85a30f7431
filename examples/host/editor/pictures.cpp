#include "pictures.h"

#include "imagepane.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Host
{
namespace
{

constexpr std::size_t kCacheBytes = std::size_t(1) << 30;
constexpr int kThumbnailWidth = 182;

// The first wire that ends at the node, in the order of its fields on screen.
const Connection* firstInto(const Graph& graph, const PreviewNode& item, NodeId id)
{
    for (unsigned long i = 0; i < item.inputFieldCount(); ++i) {
        if (const Connection* const connection = graph.into(id, item.inputNameOfFieldByIndex(i)))
            return connection;
    }
    return nullptr;
}

} // namespace

Pictures::Pictures(Document& document, Scene& scene, ImagePane& pane, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_scene(scene)
    , m_pane(pane)
    , m_evaluator(document.types(), kCacheBytes)
    , m_shownGraph([&document] { return document.graph(); })
{
    m_timer.setSingleShot(true);
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(request()));
    connect(&document, &Document::valueChanged, this, &Pictures::touch);
    connect(&document, &Document::nodeAdded, this, &Pictures::touch);
    connect(&document, &Document::nodeRemoved, this, &Pictures::forget);
    connect(&document, &Document::connectionAdded, this, &Pictures::touchEnd);
    connect(&document, &Document::connectionRemoved, this, &Pictures::touchEnd);
    connect(&document, &Document::reset, this, &Pictures::forgetAll);
    connect(&document, SIGNAL(changed()), this, SLOT(schedule()));
    connect(&scene, SIGNAL(shownNodesChanged()), this, SLOT(schedule()));
    connect(&pane, SIGNAL(zoomChanged()), this, SLOT(schedule()));
    connect(&pane, SIGNAL(optionsChanged()), this, SLOT(schedule()));
    connect(&m_evaluator, &Evaluator::pictureReady, this, &Pictures::take);
    connect(&m_evaluator, &Evaluator::errorsFound, this, &Pictures::takeErrors);
    connect(&m_evaluator, &Evaluator::finished, this, &Pictures::finish);
    connect(&m_evaluator, &Evaluator::nodeBusy, &scene, &Scene::setBusy);
}

void Pictures::schedule()
{
    if (!m_paused)
        m_timer.start(0);
}

// Results may hang on the display: a soft proof does.
void Pictures::setPaused(bool paused)
{
    m_paused = paused;
    if (paused) {
        m_timer.stop();
        m_evaluator.cancel();
        return;
    }
    m_evaluator.cache().beginGeneration();
    forgetAll();
    schedule();
}

void Pictures::want(std::vector<Evaluator::Wish>& wishes, const Place& place, const Target& target)
{
    wishes.push_back({int(m_places.size()), target, place.use == Use::View || place.use == Use::SecondView});
    m_places.push_back(place);
}

void Pictures::touch(NodeId id)
{
    m_touched.insert(id);
}

void Pictures::touchEnd(const Connection& connection)
{
    touch(connection.to);
}

void Pictures::forget(NodeId id)
{
    m_touched.erase(id);
    m_requested.erase(id);
    m_sizes.erase(id);
    m_errors.remove(id);
    for (const Use use : {Use::Preview, Use::Input})
        m_shown.erase({use, id});
}

void Pictures::forgetAll()
{
    m_touched.clear();
    m_requested.clear();
    m_sizes.clear();
    m_errors.clear();
    m_shown.clear();
    m_bypassed.clear();
    for (const auto& [id, record] : m_document.graph().nodes)
        touch(id);
}

// A mode has its node bypassed in the graph that is shown, so that the document does not tell.
void Pictures::touchBypassed(const Graph& graph)
{
    std::set<NodeId> bypassed;
    for (const auto& [id, record] : graph.nodes) {
        if (record.bypassed)
            bypassed.insert(bypassed.end(), id);
    }
    std::set_symmetric_difference(bypassed.begin(), bypassed.end(), m_bypassed.begin(), m_bypassed.end(),
                                  std::inserter(m_touched, m_touched.end()));
    m_bypassed = bypassed;
}

void Pictures::wantForView(std::vector<Evaluator::Wish>& wishes, const Graph& graph, const Place& place)
{
    const QSize size = knownSize(graph, m_document.types(), {place.node, QString(), 1}, m_sizes);
    want(wishes, place, {place.node, QString(), m_pane.scaleFor(size)});
}

std::vector<Evaluator::Wish> Pictures::wishesFor(const Graph& graph)
{
    std::vector<Evaluator::Wish> wishes;
    m_places.clear();
    if (m_scene.primary() != 0)
        wantForView(wishes, graph, {Use::View, m_scene.primary()});
    else
        m_pane.setPicture(Picture());
    if (m_scene.secondary() != 0 && m_pane.options().compare != ViewOptions::First)
        wantForView(wishes, graph, {Use::SecondView, m_scene.secondary()});
    else
        m_pane.setSecondPicture(Picture());
    const auto small = [&](NodeId node, const QString& output) {
        const QSize size = knownSize(graph, m_document.types(), {node, output, 1}, m_sizes);
        const double scale = size.isEmpty() ? 1.0 / 8 : std::min(1.0, double(kThumbnailWidth) / size.width());
        return Target{node, output, scale};
    };
    for (const NodeId id : m_requested) {
        const PreviewNode* const item = m_scene.item(id);
        if (!item)
            continue;
        if (item->inputIndexOfFieldByName("preview") >= 0)
            want(wishes, {Use::Preview, id}, small(id, QString()));
        if (const Connection* const connection = firstInto(graph, *item, id))
            want(wishes, {Use::Input, id}, small(connection->from, connection->output));
    }
    return wishes;
}

// What a cancelled request was about is still to be done.
void Pictures::request()
{
    Graph graph = m_shownGraph();
    touchBypassed(graph);
    const std::vector<NodeId> changed = dependents(graph, std::exchange(m_touched, {}));
    updateSizes(graph, m_document.types(), changed, m_sizes);
    m_requested.insert(changed.begin(), changed.end());
    m_newErrors.clear();
    std::vector<Evaluator::Wish> wishes = wishesFor(graph);
    m_evaluator.request(std::move(graph), std::move(wishes));
}

void Pictures::takeErrors(const QHash<NodeId, QString>& errors)
{
    m_newErrors = errors;
    for (auto error = errors.begin(); error != errors.end(); ++error)
        m_errors.insert(error.key(), error.value());
    m_scene.setErrors(m_errors);
}

void Pictures::finish()
{
    for (const NodeId id : m_requested) {
        if (!m_newErrors.contains(id))
            m_errors.remove(id);
    }
    m_requested.clear();
    m_scene.setErrors(m_errors);
}

void Pictures::take(int slot, const Picture& picture, double)
{
    if (std::size_t(slot) >= m_places.size())
        return;
    const Place& place = m_places[std::size_t(slot)];
    if (place.use == Use::View)
        m_pane.setPicture(picture);
    else if (place.use == Use::SecondView)
        m_pane.setSecondPicture(picture);
    else
        give(place, picture);
}

// A node that gets what it has would scale, lay itself out and be drawn once more.
void Pictures::give(const Place& place, const Picture& picture)
{
    PreviewNode* const item = m_scene.item(place.node);
    Shown& shown = m_shown[{place.use, place.node}];
    if (!item || (picture.image && shown.item == item && shown.image.lock() == picture.image))
        return;
    shown = {item, picture.image};
    if (place.use == Use::Preview)
        item->setPreviewImage(picture.image);
    else
        item->setInputImage(picture.image);
}

} // namespace Host
