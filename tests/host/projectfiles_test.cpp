#include "editorfixture.h"

#include "projectfiles.h"
#include "scene.h"
#include "sceneview.h"
#include "throwing.h"
#include "unsavedplace.h"

#include <ondrel/resources/resourceengine.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Host;

namespace
{

class ProjectFilesOfAWindow : public Editor
{
protected:
    ProjectFilesOfAWindow()
    {
        for (const QString& name : unsaved.entryList(QDir::Files))
            unsaved.remove(name);
    }

    // To the question that comes.
    void answer(EditorWindow& asked, QMessageBox::StandardButton button)
    {
        QMessageBox* question = nullptr;
        EXPECT_TRUE(QTest::qWaitFor([&] { return (question = asked.findChild<QMessageBox*>()) != nullptr; }));
        ASSERT_TRUE(question);
        question->button(button)->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return asked.isSettled() && asked.isEnabled(); }));
    }

    QByteArray saved(const QString& name)
    {
        play("save " + path(name));
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    // The project a.ondrel, with something else about the part of the canvas that is seen.
    void openWithCanvas(const QByteArray& canvas)
    {
        QFile file(path("a.ondrel"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        auto json = nlohmann::ordered_json::parse(file.readAll().toStdString());
        json["view"]["canvas"] = nlohmann::ordered_json::parse(canvas.toStdString());
        QFile changed(path("changed.ondrel"));
        ASSERT_TRUE(changed.open(QIODevice::WriteOnly));
        changed.write(QByteArray::fromStdString(json.dump(2)));
        changed.close();
        window.statusBar()->clearMessage();
        play("open " + path("changed.ondrel"));
    }

    QStringList autosaves() const { return unsaved.entryList({"*.autosave"}, QDir::Files); }

    // Edits the untitled project until it has been autosaved.
    void editAndAutosave()
    {
        window.files().setAutosaveInterval(1);
        play("add essentials/levels 260 0 Levels");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !autosaves().isEmpty(); }));
        settle();
    }

    // What is left of the untitled project when its process has died.
    QString leaveAsDeadProcess()
    {
        editAndAutosave();
        const QString left = unsaved.filePath("left.ondrel");
        EXPECT_TRUE(QFile::copy(unsaved.filePath(autosaves().front()), autosaveName(left)));
        QProcess process;
        process.start("true", QStringList());
        EXPECT_TRUE(process.waitForStarted());
        const qint64 pid = process.processId();
        EXPECT_TRUE(process.waitForFinished());
        const QStringList locks = unsaved.entryList({"*.lock"}, QDir::Files);
        EXPECT_EQ(locks.size(), 1);
        QFile live(unsaved.filePath(locks.value(0)));
        EXPECT_TRUE(live.open(QIODevice::ReadOnly));
        QByteArrayList lines = live.readAll().split('\n');
        lines[0] = QByteArray::number(pid);
        QFile stale(left + ".lock");
        EXPECT_TRUE(stale.open(QIODevice::WriteOnly));
        stale.write(lines.join('\n'));
        return left;
    }

    QDir unsaved{QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/unsaved"};
};

} // namespace

TEST_F(ProjectFilesOfAWindow, AutosaveIsOfferedAndASaveEndsIt)
{
    const QString file = path("work.ondrel");
    play("save " + file);
    EXPECT_FALSE(QFile::exists(autosaveName(file)));
    window.files().setAutosaveInterval(1);
    play("add essentials/levels 260 0 Levels");
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(autosaveName(file)); }));
    settle();

    EditorWindow later(nodeTypes()); // after the first one died
    later.files().open(file);
    answer(later, QMessageBox::Yes);
    EXPECT_TRUE(later.document().graph().nodeByName("Levels"));
    EXPECT_FALSE(later.document().undoStack().isClean());
    later.files().save(file);
    EXPECT_TRUE(QTest::qWaitFor([&] { return later.isSettled(); }));
    EXPECT_FALSE(QFile::exists(autosaveName(file)));
    EXPECT_TRUE(later.document().undoStack().isClean());
}

TEST_F(ProjectFilesOfAWindow, UntitledProjectIsAutosavedInAPlaceOfItsOwn)
{
    editAndAutosave();
    EXPECT_EQ(autosaves().size(), 1);
    EXPECT_TRUE(window.files().file().isEmpty());
    EXPECT_FALSE(UnsavedPlace::findAbandoned()) << "it is being edited here";
}

TEST_F(ProjectFilesOfAWindow, UntitledProjectOfADeadProcessIsOfferedAndStaysUntitled)
{
    const QString left = leaveAsDeadProcess();
    EditorWindow later(nodeTypes());
    later.files().offerUnsaved();
    answer(later, QMessageBox::Yes);
    EXPECT_EQ(later.document().graph().nodes.size(), graph().nodes.size());
    EXPECT_TRUE(later.document().graph().nodeByName("Levels"));
    EXPECT_TRUE(later.files().file().isEmpty());
    EXPECT_FALSE(later.document().undoStack().isClean());
    EXPECT_TRUE(QFile::exists(autosaveName(left))) << "it is not saved yet";
    later.files().save(path("found.ondrel"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return later.isSettled(); }));
    EXPECT_FALSE(QFile::exists(autosaveName(left)));
    EXPECT_FALSE(QFile::exists(left + ".lock"));
    EXPECT_EQ(later.files().file(), path("found.ondrel"));
}

TEST_F(ProjectFilesOfAWindow, DeclinedUntitledProjectIsGone)
{
    const QString left = leaveAsDeadProcess();
    EditorWindow later(nodeTypes());
    later.files().offerUnsaved();
    answer(later, QMessageBox::No);
    EXPECT_FALSE(QFile::exists(autosaveName(left)));
    EXPECT_TRUE(later.document().graph().nodes.empty());
}

TEST_F(ProjectFilesOfAWindow, DamagedAutosaveOfAnUntitledProjectIsNotOffered)
{
    const QString left = leaveAsDeadProcess();
    QFile file(autosaveName(left));
    ASSERT_TRUE(file.resize(file.size() / 2));
    EXPECT_FALSE(UnsavedPlace::findAbandoned());
}

TEST_F(ProjectFilesOfAWindow, LeavingForGoodRemovesTheAutosave)
{
    editAndAutosave();
    window.files().leave();
    settle();
    EXPECT_TRUE(unsaved.entryList(QDir::Files).isEmpty());
}

TEST_F(ProjectFilesOfAWindow, SaveUnderAnotherNameRemovesTheAutosaveOfTheFirst)
{
    play("save " + path("first.ondrel"));
    window.files().setAutosaveInterval(1);
    play("add essentials/levels 260 0 Levels");
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(autosaveName(path("first.ondrel"))); }));
    settle();
    play("save " + path("second.ondrel"));
    EXPECT_FALSE(QFile::exists(autosaveName(path("first.ondrel"))));
}

// However many threads there are: what is discarded while it is still being written goes before the file is looked at.
TEST_F(ProjectFilesOfAWindow, AutosaveThatWasDiscardedIsNotOffered)
{
    const QString file = path("work.ondrel");
    play("save " + file + "\nadd essentials/levels 260 0 Levels");
    ASSERT_TRUE(QMetaObject::invokeMethod(&window.files(), "autosave"));
    settle();
    ASSERT_TRUE(QFile::exists(autosaveName(file)));
    {
        const StoreHeldByAnother held;
        ASSERT_TRUE(QMetaObject::invokeMethod(&window.files(), "autosave"));
        window.files().leave();
        window.files().open(file);
        QTest::qWait(50);
    }
    settle();
    EXPECT_EQ(window.findChild<QMessageBox*>(), nullptr);
    EXPECT_FALSE(QFile::exists(autosaveName(file)));
    EXPECT_FALSE(id("Levels"));
    EXPECT_TRUE(id("photo"));
}

TEST_F(ProjectFilesOfAWindow, ProjectThatIsWantedLastIsOpenedAlone)
{
    play("save " + path("a.ondrel") + "\nadd essentials/levels 260 0 Levels\nsave " + path("b.ondrel") +
         "\nkey Ctrl+N\nwait");
    QStringList used, ended;
    const auto keep = [&used](const QString& file) { used.append(QFileInfo(file).fileName()); };
    QObject::connect(&window.files(), &ProjectFiles::used, &window, keep);
    window.files().open(path("a.ondrel"), [&ended] { ended.append("a"); });
    window.files().open(path("b.ondrel"), [&ended] { ended.append("b"); });
    settle();
    EXPECT_EQ(used, QStringList{"b.ondrel"});
    EXPECT_EQ(ended, QStringList{"b"});
    EXPECT_TRUE(id("Levels"));
    EXPECT_TRUE(window.isEnabled());

    window.files().open(path("a.ondrel"), [&ended] { ended.append("a"); });
    window.files().startNew();
    settle();
    EXPECT_EQ(used, QStringList{"b.ondrel"});
    EXPECT_EQ(ended, QStringList{"b"});
    EXPECT_TRUE(graph().nodes.empty());
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(ProjectFilesOfAWindow, SaveThatThrowsLeavesTheWindowToTheUser)
{
    play("add essentials/levels 260 0 Levels");
    const Throwing throwing("\"%1\" cannot be saved: %2.");
    window.files().save(path("gone/a.ondrel"));
    EXPECT_FALSE(window.isEnabled());
    settle();
    EXPECT_EQ(status(), "out of paper");
    EXPECT_TRUE(window.isEnabled());
    EXPECT_FALSE(window.document().undoStack().isClean());
    EXPECT_TRUE(window.files().file().isEmpty());
}

TEST_F(ProjectFilesOfAWindow, NewProjectIsEmptyAndHasNoFile)
{
    play("add essentials/levels 260 0 Levels\nsave " + path("first.ondrel") + "\nkey Ctrl+N\nwait");
    EXPECT_TRUE(graph().nodes.empty());
    EXPECT_TRUE(window.files().file().isEmpty());
    EXPECT_TRUE(window.document().undoStack().isClean());
    EXPECT_TRUE(window.windowTitle().startsWith("Untitled"));
    EXPECT_EQ(window.scene().primary(), 0u);
}

TEST_F(ProjectFilesOfAWindow, PicturesOfTheProjectThatGoesAreDroppedUnlessTheyAreOnTheClipboard)
{
    const auto isInStore = [](Ondrel::ResourceId id) {
        Ondrel::ImageInfo info;
        return ResourceEngine::Get().CopyImageInfo(id, info);
    };
    play("save " + path("a.ondrel"));
    const auto first = value("photo", "image").value<Ondrel::ResourceId>();
    ASSERT_TRUE(isInStore(first));
    play("select photo\nkey Ctrl+C\nopen " + path("a.ondrel"));
    EXPECT_TRUE(isInStore(first)) << "the clipboard has it";
    const auto second = value("photo", "image").value<Ondrel::ResourceId>();
    EXPECT_NE(second.id, first.id);
    play("open " + path("a.ondrel") + "\nkey Ctrl+V\nwait");
    EXPECT_FALSE(isInStore(second));
    EXPECT_TRUE(isInStore(first)) << "it was pasted";
    EXPECT_TRUE(isInStore(value("photo", "image").value<Ondrel::ResourceId>()));
    EXPECT_EQ(value("photo 2", "image").value<Ondrel::ResourceId>().id, first.id);
}

TEST_F(ProjectFilesOfAWindow, ViewOfAnotherFormIsPassedOverAndKept)
{
    play("add essentials/levels 260 0 Levels\nselect Levels\nkey 2\nsave " + path("a.ondrel"));
    const auto contents = [this] {
        QFile file(path("a.ondrel"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    QByteArray text = contents();
    EXPECT_TRUE(text.contains("\"secondary\""));
    play("open " + path("a.ondrel"));
    EXPECT_EQ(window.scene().secondary(), id("Levels"));
    const int at = text.indexOf("\"primary\"");
    ASSERT_GT(at, 0);
    text.replace(at, text.indexOf(',', at) - at, "\"primary\": 5,\n    \"other\": [1]");
    QFile file(path("a.ondrel"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    play("open " + path("a.ondrel") + "\nexpect nodes 2\nsave " + path("a.ondrel"));
    EXPECT_TRUE(contents().contains("\"other\""));
}

TEST_F(ProjectFilesOfAWindow, ZoomAndScrollAreSavedAndAreNoEdit)
{
    SceneView& canvas = window.sceneView();
    play("save " + path("a.ondrel"));
    canvas.setPlace({0.1, QPointF(1.0 / 3, -1234.5)});
    EXPECT_TRUE(window.document().undoStack().isClean());
    EXPECT_FALSE(window.windowTitle().startsWith('*'));
    const QByteArray text = saved("b.ondrel");
    EXPECT_TRUE(text.contains("\"canvas\": {\n      \"zoom\": \"0.1\",\n      \"center\": [\n        "
                              "\"0.3333333333333333\",\n        \"-1234.5\"\n      ]\n    }"))
        << text.constData();
    canvas.zoomBy(2, QGraphicsView::AnchorViewCenter);
    EXPECT_EQ(canvas.place().zoom, 0.2);
    canvas.setPlace({4, QPointF(0, 0)});
    play("open " + path("b.ondrel"));
    EXPECT_TRUE(canvas.place() == (CanvasPlace{0.1, QPointF(1.0 / 3, -1234.5)}));
    EXPECT_NEAR(canvas.mapToScene(canvas.viewport()->rect()).boundingRect().center().y(), -1234.5, 10); // a pixel
    EXPECT_TRUE(saved("c.ondrel") == text);
    window.resize(900, 700);
    settle();
    EXPECT_NEAR(canvas.mapToScene(canvas.viewport()->rect()).boundingRect().center().y(), -1234.5, 10);
    EXPECT_TRUE(saved("c.ondrel") == text);
    EXPECT_EQ(window.document().undoStack().count(), 0);
}

TEST_F(ProjectFilesOfAWindow, WildZoomAndScrollAreBroughtToTheLimits)
{
    play("save " + path("a.ondrel"));
    openWithCanvas("{\"zoom\": \"1e300\", \"other\": 7, \"center\": [\"-1e308\", \"20000.5\"]}");
    EXPECT_EQ(status(), "");
    EXPECT_TRUE(window.sceneView().place() == (CanvasPlace{4, QPointF(-20000, 20000)}));
    EXPECT_TRUE(saved("b.ondrel").contains("\"zoom\": \"4\",\n      \"other\": 7,\n"));
    openWithCanvas("{\"zoom\": \"-0\", \"center\": [\"0\", \"0\"]}");
    EXPECT_TRUE(window.sceneView().place() == (CanvasPlace{0.05, QPointF(0, 0)}));
}

TEST_F(ProjectFilesOfAWindow, ZoomAndScrollOfAnotherFormAreToldAndKeptUntilTheUserLooksElsewhere)
{
    play("save " + path("a.ondrel"));
    for (const QByteArray odd :
         {"5", "[]", "{}", "{\"zoom\": 1, \"center\": [\"0\", \"0\"]}", "{\"zoom\": \"1\"}",
          "{\"zoom\": \"nan\", \"center\": [\"0\", \"0\"]}", "{\"zoom\": \"1\", \"center\": [\"0\", \"inf\"]}",
          "{\"zoom\": \"1\", \"center\": [\"0\"]}", "{\"zoom\": \"1\", \"center\": [\"0\", null]}"}) {
        SCOPED_TRACE(odd.constData());
        openWithCanvas(odd);
        EXPECT_EQ(status(), "What the project says about the part of the canvas to show is not understood: all nodes "
                            "are shown.");
        EXPECT_EQ(window.sceneView().place().zoom, 1);
        EXPECT_EQ(window.sceneView().place().center.x(), window.scene().nodesRect({}).center().x());
        const auto view = nlohmann::ordered_json::parse(saved("b.ondrel").toStdString())["view"];
        EXPECT_EQ(view["canvas"], nlohmann::ordered_json::parse(odd.toStdString()));
    }
    window.sceneView().zoomBy(0.5, QGraphicsView::AnchorViewCenter);
    EXPECT_TRUE(saved("b.ondrel").contains("\"zoom\": \"0.5\""));
}

TEST_F(ProjectFilesOfAWindow, SavingFirstGoesOnWithWhatWasWanted)
{
    play("save " + path("a.ondrel") + "\nadd essentials/levels 260 0 Levels");
    QTimer::singleShot(0, &window, [] {
        if (auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            question->button(QMessageBox::Save)->click();
    });
    window.files().startNew();
    settle();
    EXPECT_TRUE(graph().nodes.empty()) << "a new project, after the old one was saved";
    play("open " + path("a.ondrel") + "\nexpect nodes 2");
}

// The store is locked, so that opening cannot come to its end; what is autosaved has nothing in the store, and goes
// first, as there may be no thread for both.
TEST_F(ProjectFilesOfAWindow, AutosaveThatThrowsLeavesAnOpeningAlone)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("gone"));
    play("save " + path("b.ondrel") + "\nkey Ctrl+N\nwait\nsave " + path("gone/a.ondrel") +
         "\nadd essentials/levels 0 0 Levels");
    ASSERT_TRUE(QDir(path("gone")).removeRecursively());
    const Throwing throwing("\"%1\" cannot be saved: %2.");
    int opened = 0;
    StoreHeldByAnother held;
    ASSERT_TRUE(QMetaObject::invokeMethod(&window.files(), "autosave"));
    window.files().open(path("b.ondrel"), [&opened] { ++opened; });
    EXPECT_TRUE(QTest::qWaitFor([this] { return status() == "out of paper"; })) << qPrintable(status());
    EXPECT_FALSE(window.isEnabled());
    EXPECT_EQ(opened, 0);
    held.release();
    settle();
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(window.isEnabled());
    EXPECT_TRUE(id("photo"));
}
