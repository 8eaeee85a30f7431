#pragma once

#include "worker.h"

#include <ondrel/resources/resourceid.h>

#include <QObject>

#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace Host
{

class Document;
class Scene;

// Whether the pictures of the selected nodes are saved with their bytes inside of the project, or as the paths of their
// files. Both ways are steps of undo. Files are read and written in the background. User-interface thread only.
class Embedding : public QObject
{
    Q_OBJECT
public:
    Embedding(Document& document, Scene& scene, QWidget& window);

    void addActions(QMenu& menu);
    bool isBusy() const { return m_worker.isBusy(); }

    // Writes the bytes of a picture, of which the store is the only place when its file is gone, and has all nodes that
    // show it show the file instead.
    void saveAs(Ondrel::ResourceId picture, const QString& file);

public Q_SLOTS:
    void embedSelected();
    void linkSelected(); // those whose files still hold what is embedded; the others stay, which is told
    void chooseAndSave();

Q_SIGNALS:
    void message(const QString& text);

private Q_SLOTS:
    void setEmbedded(bool embedded);
    void updateActions();

private:
    std::vector<Ondrel::ResourceId> selected() const;
    bool isUsed(Ondrel::ResourceId picture) const;
    void askForPlace(Ondrel::ResourceId picture);
    void take(Ondrel::ResourceId picture, Ondrel::ResourceId fromFile);

    Document& m_document;
    Scene& m_scene;
    QWidget& m_window;
    QAction* m_embed = nullptr; // the menu's
    QAction* m_save = nullptr;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host
