#include "pictures.h"

#include "imagepane.h"

#include <algorithm>

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
    connect(&document, SIGNAL(changed()), this, SLOT(schedule()));
    connect(&scene, SIGNAL(shownNodesChanged()), this, SLOT(schedule()));
    connect(&pane, SIGNAL(zoomChanged()), this, SLOT(schedule()));
    connect(&pane, SIGNAL(optionsChanged()), this, SLOT(schedule()));
    connect(&m_evaluator, &Evaluator::pictureReady, this, &Pictures::take);
    connect(&m_evaluator, &Evaluator::errorsFound, &scene, &Scene::setErrors);
    connect(&m_evaluator, &Evaluator::nodeBusy, &scene, &Scene::setBusy);
}

void Pictures::schedule()
{
    m_timer.start(0);
}

void Pictures::want(std::vector<Evaluator::Wish>& wishes, const Place& place, const Target& target)
{
    wishes.push_back({int(m_places.size()), target, place.use == Use::View || place.use == Use::SecondView});
    m_places.push_back(place);
}

void Pictures::wantForView(std::vector<Evaluator::Wish>& wishes, const Graph& graph, const Place& place)
{
    const QSize size = fullSize(graph, m_document.types(), {place.node, QString(), 1});
    want(wishes, place, {place.node, QString(), m_pane.scaleFor(size)});
}

void Pictures::request()
{
    const Graph graph = m_shownGraph();
    const NodeTypes& types = m_document.types();
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
        const QSize size = fullSize(graph, types, {node, output, 1});
        const double scale = size.isEmpty() ? 1.0 / 8 : std::min(1.0, double(kThumbnailWidth) / size.width());
        return Target{node, output, scale};
    };
    for (const auto& [id, record] : graph.nodes) {
        const PreviewNode* const item = m_scene.item(id);
        if (!item)
            continue;
        if (item->inputIndexOfFieldByName("preview") >= 0)
            want(wishes, {Use::Preview, id}, small(id, QString()));
        if (const Connection* const connection = firstInto(graph, *item, id))
            want(wishes, {Use::Input, id}, small(connection->from, connection->output));
    }
    m_evaluator.request(graph, wishes);
}

void Pictures::take(int slot, const Picture& picture, double)
{
    if (std::size_t(slot) >= m_places.size())
        return;
    const Place& place = m_places[std::size_t(slot)];
    PreviewNode* const item = m_scene.item(place.node);
    if (place.use == Use::View)
        m_pane.setPicture(picture);
    else if (place.use == Use::SecondView)
        m_pane.setSecondPicture(picture);
    else if (item && place.use == Use::Preview)
        item->setPreviewImage(picture.image);
    else if (item)
        item->setInputImage(picture.image);
}

} // namespace Host
