#include "sceneframes.h"

#include "scene.h"

namespace Host
{

SceneFrames::SceneFrames(Scene& scene)
    : m_scene(scene)
{
    connect(&scene.document(), SIGNAL(framesChanged()), this, SLOT(follow()));
    connect(&scene.document(), SIGNAL(reset()), this, SLOT(follow()));
    follow();
}

SceneFrames::~SceneFrames()
{
    for (const auto& [id, frame] : m_items) {
        frame->disconnect(this);
        delete frame;
    }
}

FrameItem* SceneFrames::item(quint64 id) const
{
    const auto found = m_items.find(id);
    return found == m_items.end() ? nullptr : found->second;
}

FrameItem* SceneFrames::add(quint64 id)
{
    auto* const frame = new FrameItem(id);
    m_scene.addItem(frame);
    connect(frame, &FrameItem::pressed, this, &SceneFrames::press);
    connect(frame, &FrameItem::moved, this, &SceneFrames::move);
    connect(frame, &FrameItem::released, this, &SceneFrames::release);
    connect(frame, &FrameItem::titleEdited, this, &SceneFrames::rename);
    return frame;
}

void SceneFrames::follow()
{
    const std::map<quint64, FrameRecord>& frames = m_scene.document().graph().frames;
    for (auto item = m_items.begin(); item != m_items.end();) {
        if (frames.count(item->first) != 0) {
            ++item;
            continue;
        }
        item->second->disconnect(this);
        item->second->deleteLater(); // its title may be what tells of this
        m_scene.removeItem(item->second);
        m_selected = m_selected == item->first ? 0 : m_selected;
        item = m_items.erase(item);
    }
    for (const auto& [id, record] : frames) {
        FrameItem*& frame = m_items[id];
        if (!frame)
            frame = add(id);
        frame->show(record);
    }
}

QRectF SceneFrames::area() const
{
    QRectF area;
    for (const auto& [id, frame] : m_items)
        area |= frame->area();
    return area;
}

std::vector<NodeId> SceneFrames::nodesInside(quint64 id) const
{
    std::vector<NodeId> inside;
    const FrameItem* const frame = item(id);
    for (const auto& [node, each] : m_scene.nodeItems()) {
        if (frame && frame->area().contains(each->mapRectToScene(each->rect())))
            inside.push_back(node);
    }
    return inside;
}

quint64 SceneFrames::at(const QPointF& point) const
{
    const FrameItem* top = nullptr;
    for (const auto& [id, frame] : m_items) {
        if (frame->contains(frame->mapFromScene(point)) && (!top || frame->zValue() >= top->zValue()))
            top = frame;
    }
    return top ? top->id() : 0;
}

void SceneFrames::select(quint64 id)
{
    m_selected = item(id) ? id : 0;
    for (const auto& [each, frame] : m_items)
        frame->setMarked(each == m_selected);
}

void SceneFrames::press(quint64 id)
{
    select(id);
    m_carried.clear();
    for (const NodeId node : nodesInside(id))
        m_carried[node] = m_scene.item(node)->pos();
    Q_EMIT pressed();
}

void SceneFrames::move(quint64 id, QPointF way)
{
    const auto record = m_scene.document().graph().frames.find(id);
    if (record == m_scene.document().graph().frames.end())
        return;
    item(id)->setArea(record->second.area.translated(way));
    for (const auto& [node, before] : m_carried) {
        if (PreviewNode* const each = m_scene.item(node))
            each->setPos(before + way);
        m_scene.wires().place(node);
    }
}

void SceneFrames::release(quint64 id)
{
    Document& document = m_scene.document();
    const auto known = document.graph().frames.find(id);
    if (known == document.graph().frames.end())
        return;
    FrameRecord record = known->second;
    const bool moves = record.area.topLeft() != item(id)->area().topLeft();
    record.area = item(id)->area();
    std::map<NodeId, QPointF> positions;
    for (const auto& [node, before] : std::exchange(m_carried, {})) {
        if (const PreviewNode* const each = m_scene.item(node))
            positions[node] = each->pos();
    }
    document.beginStep(moves ? tr("Move frame") : tr("Resize frame"));
    document.changeFrame(record);
    document.moveNodes(positions);
    document.endStep();
}

void SceneFrames::moveBy(quint64 id, QPointF way, int gesture)
{
    Document& document = m_scene.document();
    if (!item(id))
        return;
    if (m_takenBy != std::pair(id, gesture))
        m_taken = nodesInside(id);
    m_takenBy = {id, gesture};
    std::map<NodeId, QPointF> positions;
    for (const NodeId node : m_taken) {
        if (const NodeRecord* const known = document.graph().node(node))
            positions[node] = known->position + way;
    }
    FrameRecord record = document.graph().frames.at(id);
    record.area.translate(way);
    document.beginStep(tr("Move frame"));
    document.changeFrame(record);
    document.moveNodes(positions);
    document.endStep(gesture);
}

void SceneFrames::resizeBy(quint64 id, QSizeF more, int gesture)
{
    Document& document = m_scene.document();
    if (!item(id))
        return;
    FrameRecord record = document.graph().frames.at(id);
    record.area.setSize((record.area.size() + more).expandedTo(FrameItem::leastSize()));
    document.beginStep(tr("Resize frame"));
    document.changeFrame(record);
    document.endStep(gesture);
}

void SceneFrames::rename(quint64 id, const QString& title)
{
    const auto known = m_scene.document().graph().frames.find(id);
    if (known == m_scene.document().graph().frames.end())
        return;
    FrameRecord record = known->second;
    record.title = title;
    m_scene.document().changeFrame(record);
}

} // namespace Host
