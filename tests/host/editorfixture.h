#pragma once

// A window with a picture, for tests that play a user's events on it.

#include "editorwindow.h"
#include "evaluation.h"
#include "nodesearch.h"
#include "resultcache.h"
#include "script.h"

#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QListWidget>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <thread>

namespace Host
{

inline const NodeTypes& nodeTypes()
{
    static const NodeTypes types = [] {
        NodeTypes loaded;
        const QStringList problems = loadPlugins(ONDREL_TEST_PLUGINS, loaded);
        EXPECT_TRUE(problems.isEmpty()) << qPrintable(problems.join('\n'));
        return loaded;
    }();
    return types;
}

// Another thread has the store for itself, until release(): whatever waits for the store, waits. After half a minute
// that is a failure.
class StoreHeldByAnother
{
public:
    StoreHeldByAnother()
        : m_holder([this] {
            std::unordered_map<unsigned int, std::shared_ptr<ResourceEngine::ImageInfo>>* resources = nullptr;
            ResourceEngine::Get().BeginManualResources(&resources);
            m_held.set_value();
            EXPECT_EQ(m_release.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
            ResourceEngine::Get().EndManualResources(ResourceEngine::EndManualNoChange);
        })
    {
        m_held.get_future().wait();
    }
    ~StoreHeldByAnother() { release(); }

    void release()
    {
        if (!m_holder.joinable())
            return;
        m_release.set_value();
        m_holder.join();
    }

private:
    std::promise<void> m_held, m_release;
    std::thread m_holder; // the last: it uses the others
};

// A window with a picture, and what a user does to it.
class Editor : public ::testing::Test
{
protected:
    Editor()
        : window(nodeTypes())
        , script(window, QDir(folder.path()))
    {
        window.setAttribute(Qt::WA_DontShowOnScreen);
        window.resize(1200, 900);
        window.show();
        QImage picture(90, 60, QImage::Format_RGB888);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixelColor(x, y, QColor(x * 2, y * 4, (x * 7 + y * 13) % 256));
        }
        EXPECT_TRUE(picture.save(path("photo.png")));
        play("import " + path("photo.png") + " 0 0");
    }

    QString path(const QString& name) const { return folder.filePath(name); }

    void play(const QString& lines) { EXPECT_TRUE(script.run(lines)) << qPrintable(script.error()); }

    // The picture, a blur, a levels node, in a row, without wires.
    void addThree()
    {
        play("add essentials/gaussianblur 260 0 Blur\n"
             "add essentials/levels 520 0 Levels\n"
             "key A\n");
    }

    void addChain()
    {
        addThree();
        play("wire photo image Blur image\n"
             "wire Blur image Levels image\n"
             "expect wires 2\n");
    }

    const Graph& graph() { return window.document().graph(); }
    NodeId id(const QString& name) { return graph().nodeByName(name) ? graph().nodeByName(name)->id : 0; }
    QString status() { return window.statusBar()->currentMessage(); }
    QVariant value(const QString& node, const QString& field)
    {
        const NodeRecord& record = *graph().nodeByName(node);
        return completeValues(record, *nodeTypes().find(record.type)).value(field);
    }

    // Once the search is open, which runs an event loop of its own.
    void inSearch(const std::function<void(NodeSearch&)>& then)
    {
        QTimer::singleShot(1, &window, [this, then] {
            if (auto* const search = window.findChild<NodeSearch*>())
                then(*search);
            else
                inSearch(then);
        });
    }

    void settle() { play("wait"); }

    // What the view shows, computed anew without the editor.
    Picture freshPicture(NodeId node)
    {
        ResultCache cache(1 << 20);
        return std::async(std::launch::async,
                          [&] {
                              return evaluate(graph(), nodeTypes(), {node, QString(), 1}, cache, Ondrel::RunStatus());
                          })
            .get()
            .picture;
    }

    QTemporaryDir folder;
    EditorWindow window;
    Script script;
};

inline bool equalPictures(const Picture& a, const Picture& b)
{
    return a.image && b.image && a.image->width == b.image->width && a.image->height == b.image->height &&
           std::memcmp(a.image->data, b.image->data, std::size_t(a.image->width) * a.image->height * 8) == 0;
}

inline QStringList offered(const NodeSearch& search)
{
    QStringList ids;
    const auto* const list = search.findChild<QListWidget*>();
    for (int i = 0; i < list->count(); ++i)
        ids.append(list->item(i)->data(Qt::UserRole).toString());
    return ids;
}

} // namespace Host
