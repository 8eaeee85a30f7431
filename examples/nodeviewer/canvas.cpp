#include "canvas.h"
#include "arrange.h"
#include "nodefile.h"
#include "picture.h"
#include "values.h"

#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/xmlnode.h>

#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace Viewer
{

Canvas::Canvas(std::shared_ptr<const Ondrel::Image> picture)
    : m_picture(std::move(picture))
    , m_wires(*this)
{
    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setInterval(50); // editors write a file in several steps
    m_arrangeTimer.setSingleShot(true);
    m_arrangeTimer.setInterval(0);
    connect(&m_watcher, SIGNAL(fileChanged(QString)), this, SLOT(fileChanged(QString)));
    connect(&m_reloadTimer, SIGNAL(timeout()), this, SLOT(reloadChanged()));
    connect(&m_arrangeTimer, SIGNAL(timeout()), this, SLOT(arrangeNodes()));
}

// Nodes that go with the scene are not to speak to what is gone before it.
Canvas::~Canvas()
{
    for (const auto& entry : m_entries) {
        m_wires.forget(*entry->node);
        delete entry->node;
    }
}

bool Canvas::addFile(const QString& path)
{
    Ondrel::XmlNode* const node = loadNode(path);
    if (!node)
        return false;
    m_entries.push_back(std::make_unique<Entry>());
    m_entries.back()->path = path;
    install(*m_entries.back(), node);
    printValues(*m_entries.back());
    m_watcher.addPath(path);
    return true;
}

void Canvas::install(Entry& entry, Ondrel::XmlNode* node)
{
    entry.node = node;
    addItem(node);
    m_wires.watch(*node);
    connect(node, SIGNAL(updated(Node*)), this, SLOT(nodeUpdated(Node*)));
    connect(node, SIGNAL(selected(Node*)), this, SLOT(nodeSelected(Node*)));
    connect(node, SIGNAL(moved(Node*, bool)), this, SLOT(nodeMoved(Node*, bool)));
    connect(node, SIGNAL(emblemChanged(PreviewNode*, PreviewNode::Emblem)), this,
            SLOT(emblemChanged(PreviewNode*, PreviewNode::Emblem)));
    connect(node, SIGNAL(thumbnailsRequested(PreviewNode*, QString, std::vector<QVariant>)), this,
            SLOT(thumbnailsRequested(PreviewNode*, QString, std::vector<QVariant>)));
    if (node->inputIndexOfFieldByName(QStringLiteral("preview")) >= 0)
        node->setPreviewImage(m_picture);
    m_arrangeTimer.start();
}

bool Canvas::connectLink(const Wires::Link& link)
{
    return m_wires.connectLink(link);
}

Ondrel::XmlNode* Canvas::findNode(const QString& name) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&name](const std::unique_ptr<Entry>& entry) {
        return entry->node->name() == name;
    });
    return found == m_entries.end() ? nullptr : (*found)->node;
}

bool Canvas::selectNode(const QString& name)
{
    Ondrel::XmlNode* const node = findNode(name);
    if (!node)
        return false;
    clearSelection();
    node->setSelected(true);
    nodeSelected(node);
    return true;
}

bool Canvas::showAsPrimary(const QString& name)
{
    Ondrel::XmlNode* const node = findNode(name);
    if (!node)
        return false;
    node->setEmblem(PreviewNode::EmblemPrimary, true);
    emblemChanged(node, PreviewNode::EmblemPrimary);
    return true;
}

bool Canvas::previewsReady() const
{
    return std::all_of(m_entries.begin(), m_entries.end(), [](const std::unique_ptr<Entry>& entry) {
        if (entry->node->inputIndexOfFieldByName(QStringLiteral("preview")) < 0)
            return true;
        const QList<QGraphicsItem*> items = entry->node->childItems();
        return std::any_of(items.begin(), items.end(), [](QGraphicsItem* item) {
            const auto* const preview = dynamic_cast<Ondrel::ImagePreviewField*>(item);
            return preview && preview->minHeight() > 0;
        });
    });
}

void Canvas::arrangeNodes()
{
    if (m_arrangedByUser)
        return;
    std::vector<PreviewNode*> nodes;
    for (const auto& entry : m_entries)
        nodes.push_back(entry->node);
    arrange(nodes, m_wires.links());
    for (PreviewNode* node : nodes)
        m_wires.follow(node);
}

Canvas::Entry* Canvas::entryOf(const Node* node)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [node](const std::unique_ptr<Entry>& entry) { return entry->node == node; });
    return found == m_entries.end() ? nullptr : found->get();
}

void Canvas::printValues(Entry& entry)
{
    for (unsigned long i = 0; i < entry.node->inputFieldCount(); ++i) {
        const QString name = entry.node->inputNameOfFieldByIndex(i);
        const QVariant value = entry.node->inputValue(int(i));
        if (!value.isValid() || (entry.printed.contains(name) && textOf(entry.printed[name]) == textOf(value)))
            continue;
        entry.printed.insert(name, value);
        std::printf("%s.%s = %s\n", qUtf8Printable(entry.node->name()), qUtf8Printable(name),
                    qUtf8Printable(textOf(value)));
    }
    std::fflush(stdout);
}

void Canvas::nodeUpdated(Node* node)
{
    if (Entry* const entry = entryOf(node))
        printValues(*entry);
}

void Canvas::nodeSelected(Node* node)
{
    for (const auto& entry : m_entries)
        entry->node->setFirstSelected(entry->node == node);
}

void Canvas::nodeMoved(Node*, bool movedByUser)
{
    m_arrangedByUser = m_arrangedByUser || movedByUser;
    if (!m_arrangedByUser)
        m_arrangeTimer.start();
}

// Each of the two views shows one node.
void Canvas::emblemChanged(PreviewNode* node, PreviewNode::Emblem emblem)
{
    for (const auto& entry : m_entries) {
        if (entry->node != node)
            entry->node->clearEmblem(emblem);
    }
}

void Canvas::thumbnailsRequested(PreviewNode* node, const QString& fieldName, const std::vector<QVariant>& values)
{
    const auto count = static_cast<unsigned int>(values.size());
    for (unsigned int i = 0; i < count; ++i)
        node->setRequestedThumbnail(fieldName, i, tinted(*m_picture, i, count));
}

void Canvas::fileChanged(const QString& path)
{
    m_changedFiles.append(path);
    m_reloadTimer.start();
}

void Canvas::reloadChanged()
{
    const QStringList changed = m_changedFiles;
    m_changedFiles.clear();
    for (const auto& entry : m_entries) {
        if (changed.contains(entry->path))
            reload(*entry);
    }
}

// Everything that has a name is kept; a file that makes no node leaves the former one.
void Canvas::reload(Entry& entry)
{
    if (QFileInfo::exists(entry.path))
        m_watcher.addPath(entry.path); // a file that was replaced is no longer watched
    Ondrel::XmlNode* const node = loadNode(entry.path);
    if (!node)
        return;
    Ondrel::XmlNode* const former = entry.node;
    const std::vector<Wires::Link> links = m_wires.links();
    restoreValues(*node, valuesOf(*former));
    node->setPos(former->pos());
    node->setEmblem(former->emblem(), true);
    const bool selected = former->isSelected();
    m_wires.forget(*former);
    delete former;
    install(entry, node);
    node->setSelected(selected);
    if (selected)
        nodeSelected(node);
    for (const Wires::Link& link : links)
        m_wires.connectLink(link); // does nothing for the wires that are left
    printValues(entry);
}

bool Canvas::moveFocus(bool next)
{
    QGraphicsItem* const focused = focusItem();
    Ondrel::FieldBase* field = nullptr;
    for (QGraphicsItem* item = focused; item; item = item->parentItem()) {
        if (item->type() == Ondrel::FieldBase::Type)
            field = static_cast<Ondrel::FieldBase*>(item);
        else if (item->type() == Node::Type)
            return static_cast<Node*>(item)->focusNextPrevChild(next, field, focused) ||
                   static_cast<Node*>(item)->focusNextPrevChild(next, nullptr, nullptr);
    }
    return false;
}

} // namespace Viewer
