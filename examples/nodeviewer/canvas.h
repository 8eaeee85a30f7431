#pragma once

#include "wires.h"

#include <ondrel/core/image.h>

#include <QFileSystemWatcher>
#include <QGraphicsScene>
#include <QMap>
#include <QStringList>
#include <QTimer>
#include <QVariant>

#include <memory>
#include <vector>

namespace Ondrel
{
class XmlNode;
}

namespace Viewer
{

using Ondrel::PreviewNode;

// A scene of nodes that are made from files and made anew when their files change. It prints the values of the inputs:
// all of a node that is new, then each one that changes.
class Canvas : public QGraphicsScene
{
    Q_OBJECT
public:
    explicit Canvas(std::shared_ptr<const Ondrel::Image> picture);
    ~Canvas() override;

    bool addFile(const QString& path); // false, with a message, if it makes no node
    bool connectLink(const Wires::Link& link);
    bool selectNode(const QString& name); // false if there is none
    bool showAsPrimary(const QString& name);
    bool previewsReady() const;

    // The Tab key walks through the controls of a node, round and round. False if no control has the focus.
    bool moveFocus(bool next);

public Q_SLOTS:
    void arrangeNodes(); // unless the user has moved one
    void nodeUpdated(Node* node);
    void nodeSelected(Node* node);
    void nodeMoved(Node* node, bool movedByUser);
    void emblemChanged(PreviewNode* node, PreviewNode::Emblem emblem);
    void thumbnailsRequested(PreviewNode* node, const QString& fieldName, const std::vector<QVariant>& values);
    void fileChanged(const QString& path);
    void reloadChanged();

private:
    struct Entry {
        QString path;
        Ondrel::XmlNode* node = nullptr;
        QMap<QString, QVariant> printed;
    };

    Entry* entryOf(const Node* node);
    Ondrel::XmlNode* findNode(const QString& name) const;
    void install(Entry& entry, Ondrel::XmlNode* node);
    void reload(Entry& entry);
    void printValues(Entry& entry);

    std::shared_ptr<const Ondrel::Image> m_picture;
    std::vector<std::unique_ptr<Entry>> m_entries;
    Wires m_wires;
    QFileSystemWatcher m_watcher;
    QStringList m_changedFiles;
    QTimer m_reloadTimer;
    QTimer m_arrangeTimer;
    bool m_arrangedByUser = false;
};

} // namespace Viewer
