// What is handed over by dropping files or on the command line.

#include "editorfixture.h"

#include "fileopener.h"
#include "importer.h"
#include "projectfiles.h"
#include "scene.h"
#include "sceneview.h"

#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

using namespace Host;

namespace
{

class OpeningFiles : public Editor
{
protected:
    OpeningFiles()
    {
        play("add essentials/levels 260 0 Levels\nsave " + path("a.ondrel") + "\nkey Ctrl+N\nwait\nexpect nodes 0");
        QImage grey(7, 5, QImage::Format_Grayscale8);
        grey.fill(100);
        EXPECT_TRUE(grey.save(path("grey.png")));
        QFile bad(path("bad.jpg"));
        EXPECT_TRUE(bad.open(QIODevice::WriteOnly));
        bad.write("no picture");
    }

    void open(const QStringList& names)
    {
        QStringList files;
        for (const QString& name : names)
            files.append(path(name));
        window.opener().open(files);
        settle();
    }

    // Whoever opens it waits until this is over.
    class Pipe
    {
    public:
        explicit Pipe(const QString& name)
            : m_name(QFile::encodeName(name))
        {
            EXPECT_EQ(mkfifo(m_name.constData(), 0600), 0);
        }
        ~Pipe()
        {
            const int end = ::open(m_name.constData(), O_RDWR | O_NONBLOCK);
            QTest::qWait(50);
            ::close(end);
        }
        Pipe(const Pipe&) = delete;
        Pipe& operator=(const Pipe&) = delete;

    private:
        const QByteArray m_name;
    };

    QString typeOf(const QString& name) { return id(name) ? graph().nodeByName(name)->type : QString(); }
};

} // namespace

TEST_F(OpeningFiles, PicturesBecomeNodesInRowsAndAreAllShown)
{
    window.sceneView().setPlace({1, QPointF(300, -200)});
    ASSERT_TRUE(QFile::copy(path("photo.png"), path("b.png")) && QFile::copy(path("photo.png"), path("c.png")));
    open({"photo.png", "grey.png", "b.png", "c.png"});
    EXPECT_EQ(graph().nodes.size(), 4u);
    EXPECT_EQ(typeOf("photo"), "essentials/image");
    EXPECT_EQ(typeOf("grey"), "essentials/image");
    const QPointF first(300, -200);
    EXPECT_EQ(graph().nodeByName("photo")->position, first);
    EXPECT_EQ(graph().nodeByName("grey")->position, first + QPointF(320, 0));
    EXPECT_EQ(graph().nodeByName("b")->position, first + QPointF(0, 420));
    EXPECT_EQ(graph().nodeByName("c")->position, first + QPointF(320, 420));
    EXPECT_EQ(status(), "\"grey.png\" is grey and was made a colour picture.");
    EXPECT_TRUE(window.files().file().isEmpty());
    const QRectF seen = window.sceneView().mapToScene(window.sceneView().viewport()->rect()).boundingRect();
    for (const char* const name : {"photo", "grey", "b", "c"}) {
        const PreviewNode& node = *window.scene().item(id(name));
        EXPECT_TRUE(seen.contains(node.mapRectToScene(node.rect()))) << name; // with its picture
    }
}

TEST_F(OpeningFiles, PicturesWithAPlaceGoThereAndTheCanvasStays)
{
    window.sceneView().setPlace({0.5, QPointF(0, 0)});
    window.opener().open({path("photo.png")}, QPoint(20, 30));
    settle();
    EXPECT_EQ(graph().nodeByName("photo")->position, window.sceneView().mapToScene(QPoint(20, 30)));
    EXPECT_TRUE(window.sceneView().place() == (CanvasPlace{0.5, QPointF(0, 0)}));
}

TEST_F(OpeningFiles, PicturesGoIntoTheProjectThatComesWithThem)
{
    open({"photo.png", "a.ondrel", "grey.png"});
    EXPECT_EQ(window.files().file(), path("a.ondrel"));
    EXPECT_EQ(graph().nodes.size(), 4u);
    EXPECT_TRUE(id("Levels") && id("photo") && id("photo 2") && id("grey"));
    EXPECT_FALSE(window.document().undoStack().isClean());
    EXPECT_EQ(window.document().undoStack().count(), 2); // one import each
    for (const char* const name : {"photo 2", "grey"})   // below what was there
        EXPECT_GE(graph().nodeByName(name)->position.y(), window.scene().item(id("Levels"))->rect().bottom());
}

TEST_F(OpeningFiles, WhatCannotBeReadIsNamedAndTheRestIsOpened)
{
    open({"bad.jpg", "photo.png", "nosuch.tif"});
    EXPECT_EQ(graph().nodes.size(), 1u);
    const QString bad = path("bad.jpg") + " is no image that can be read.";
    const QString gone = path("nosuch.tif") + " is no image that can be read.";
    EXPECT_TRUE(status() == bad + "  " + gone || status() == gone + "  " + bad) << qPrintable(status());
}

TEST_F(OpeningFiles, ProjectThatCannotBeReadIsNamedBesideThePicturesThatAre)
{
    QFile damaged(path("damaged.ondrel"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("{\"format\": 5}");
    damaged.close();
    open({"damaged.ondrel", "grey.png"});
    EXPECT_EQ(graph().nodes.size(), 1u);
    EXPECT_EQ(status(), "Line 1, column 12: \"format\" is a text in quotes.  "
                        "\"grey.png\" is grey and was made a colour picture.");
}

TEST_F(OpeningFiles, ProjectOfAnyNameIsKnownByItsBeginning)
{
    ASSERT_TRUE(QFile::copy(path("a.ondrel"), path("a.json")));
    open({"a.json"});
    EXPECT_EQ(window.files().file(), path("a.json"));
    EXPECT_EQ(graph().nodes.size(), 2u);
}

TEST_F(OpeningFiles, TwoProjectsAreTooMany)
{
    ASSERT_TRUE(QFile::copy(path("a.ondrel"), path("b.ondrel")));
    open({"a.ondrel", "b.ondrel", "photo.png"});
    EXPECT_EQ(status(), "One project at a time can be opened.");
    EXPECT_TRUE(graph().nodes.empty());
}

TEST_F(OpeningFiles, PipesAreNotWaitedFor)
{
    const Pipe picture(path("pipe.png")), project(path("pipe.ondrel"));
    window.opener().open({path("pipe.png")});
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.isSettled(); }));
    EXPECT_EQ(status(), path("pipe.png") + " is no image that can be read.");
    window.opener().open({path("pipe.ondrel"), path("photo.png")});
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.isSettled() && id("photo"); }));
    EXPECT_EQ(status(), path("pipe.ondrel") + " is no file.");
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(OpeningFiles, NodesComeInTheOrderOfTheirFiles)
{
    QImage large(3000, 2000, QImage::Format_RGB888);
    large.fill(Qt::green);
    ASSERT_TRUE(large.save(path("large.png")));
    open({"large.png", "bad.jpg", "grey.png", "photo.png"});
    std::vector<NodeId> order{id("large"), id("grey"), id("photo")};
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(window.scene().primary(), id("large"));
}
