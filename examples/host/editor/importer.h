#pragma once

#include "worker.h"

#include <ondrel/resources/resourceid.h>

#include <QObject>
#include <QPointF>
#include <QStringList>

#include <functional>

namespace Host
{

class Document;
class Scene;

// Makes a node of each picture file, camera RAW files included, in the background. Tells what had to be mended. Files
// are read beside each other; their nodes come in the order of the files, as steps of undo too.
// User-interface thread only.
class Importer : public QObject
{
    Q_OBJECT
public:
    Importer(Document& document, Scene& scene, QObject* parent);

    bool isBusy() const { return m_worker.isBusy(); }
    // The first node at the point, the others in rows and columns beside and below it. The first picture of all is
    // shown. One message has all that there is to tell of these files, behind what `told` says already.
    void import(const QStringList& files, QPointF at, const QStringList& told = QStringList());

Q_SIGNALS:
    void message(const QString& text);
    void ended(); // all files of one call: each has its node, or cannot be read

private:
    struct Batch;
    void take(Batch& batch, int index, std::function<QString()> reading);
    void addNode(const QString& file, const QString& type, Ondrel::ResourceId id, QPointF at);

    Document& m_document;
    Scene& m_scene;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host
