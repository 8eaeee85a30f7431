// Pictures inside of projects: embedded, linked to their files again, and saved as files.

#include "editorfixture.h"

#include "canvascommands.h"
#include "embedding.h"
#include "projectfiles.h"
#include "scene.h"

#include <ondrel/resources/resourceengine.h>

#include <QAction>
#include <QMenu>

using namespace Host;
using Ondrel::ResourceId;

namespace
{

class EmbeddingInAWindow : public Editor
{
protected:
    EmbeddingInAWindow() { play("select photo\nsave " + path("first.ondrel")); }

    QAction& action(const char* name) const { return *window.findChild<QAction*>(name); }
    QAction& embed() const { return action("edit.embedPicture"); }
    ResourceId picture(const QString& node = "photo") { return value(node, "image").value<ResourceId>(); }

    void trigger(QAction& triggered)
    {
        triggered.trigger();
        settle();
    }

    QByteArray contents(const QString& name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll();
    }

    QByteArray saved(const QString& name)
    {
        play("save " + path(name));
        return contents(name);
    }

    static QByteArray storedBytes(ResourceId id)
    {
        ResourceEngine::Format format;
        std::vector<unsigned char> data;
        std::string name;
        EXPECT_TRUE(std::async(std::launch::async, [&] {
                        return ResourceEngine::Get().CopyData(id, format, data, name);
                    }).get());
        return QByteArray(reinterpret_cast<const char*>(data.data()), int(data.size()));
    }

    static QSize sizeOf(ResourceId id)
    {
        Ondrel::ImageInfo info;
        return ResourceEngine::Get().CopyImageInfo(id, info) ? QSize(int(info.width), int(info.height)) : QSize();
    }
};

} // namespace

TEST_F(EmbeddingInAWindow, PictureOutlivesItsFile)
{
    const QByteArray linked = contents("first.ondrel"), bytes = contents("photo.png");
    trigger(embed());
    EXPECT_EQ(window.document().undoStack().undoText(), "Embed picture");
    EXPECT_FALSE(window.document().undoStack().isClean());
    const QByteArray text = saved("embedded.ondrel");
    EXPECT_TRUE(text.contains("\"data\": \"" + bytes.toBase64() + '"'));
    EXPECT_TRUE(text.contains("\"path\": \"photo.png\""));
    window.document().undoStack().undo();
    EXPECT_TRUE(saved("undone.ondrel") == linked);

    ASSERT_TRUE(QFile::remove(path("photo.png")));
    play("open " + path("embedded.ondrel"));
    EXPECT_EQ(status(), "") << "nothing is missing";
    EXPECT_EQ(sizeOf(picture()), QSize(90, 60));
    EXPECT_TRUE(storedBytes(picture()) == bytes);
    play("select photo");
    EXPECT_TRUE(embed().isChecked());
    EXPECT_TRUE(saved("again.ondrel") == text);
}

TEST_F(EmbeddingInAWindow, PicturesThatAreTooLargeForAProjectLeaveTheOldOne)
{
    trigger(embed());
    Project project;
    project.graph = graph();
    const auto largest = std::size_t(contents("photo.png").size()) * 4 / 3; // too little for the text around it
    const auto saveWithin = [&](std::size_t bytes) {
        return std::async(std::launch::async, [&] { return saveProject(project, path("first.ondrel"), bytes); }).get();
    };
    const QByteArray old = contents("first.ondrel");
    for (const std::size_t bytes : {largest - 100, largest + 100}) {
        EXPECT_EQ(saveWithin(bytes),
                  '"' + path("first.ondrel") +
                      "\" cannot be saved: the pictures embedded in it are too large. Link some of them to files.");
        EXPECT_TRUE(contents("first.ondrel") == old);
    }
    EXPECT_EQ(saveWithin(largest + 5000), "");
    EXPECT_TRUE(contents("first.ondrel") != old);
}

TEST_F(EmbeddingInAWindow, LinkGoesBackToTheSameFile)
{
    const QByteArray linked = contents("first.ondrel");
    trigger(embed());
    EXPECT_TRUE(saved("second.ondrel") != linked);
    trigger(embed());
    EXPECT_EQ(window.document().undoStack().undoText(), "Link to file");
    EXPECT_FALSE(embed().isChecked());
    EXPECT_TRUE(saved("third.ondrel") == linked);
}

TEST_F(EmbeddingInAWindow, PictureThatWasMendedIsLinkedToItsFileAgain)
{
    QImage grey(7, 5, QImage::Format_Grayscale8);
    grey.fill(100);
    ASSERT_TRUE(grey.save(path("grey.png")));
    play("import " + path("grey.png") + " 0 200\nselect grey");
    ASSERT_TRUE(storedBytes(picture("grey")) != contents("grey.png"));
    trigger(embed());
    trigger(embed());
    EXPECT_FALSE(embed().isChecked());
    EXPECT_EQ(graph().embedded.size(), 0u);
}

TEST_F(EmbeddingInAWindow, PictureWhoseFileIsAnotherOrGoneStays)
{
    trigger(embed());
    const ResourceId id = picture();
    QImage other(90, 60, QImage::Format_RGB888);
    other.fill(Qt::red);
    ASSERT_TRUE(other.save(path("photo.png")));
    trigger(embed());
    EXPECT_EQ(status(), path("photo.png") + " is another picture by now, so that of the project stays there. It can be "
                                            "saved as another file.");
    EXPECT_TRUE(embed().isChecked());
    ASSERT_TRUE(QFile::remove(path("photo.png")));
    trigger(embed());
    EXPECT_EQ(status(),
              path("photo.png") + " is gone, so the picture stays in the project. It can be saved as a file.");
    EXPECT_EQ(graph().embedded, std::set<std::uint32_t>{id.id});
    EXPECT_EQ(window.document().undoStack().count(), 2) << "the import, and one step to embed";
}

TEST_F(EmbeddingInAWindow, PictureIsSavedAsAFileAndLinkedToIt)
{
    const QByteArray bytes = contents("photo.png");
    trigger(embed());
    ASSERT_TRUE(QFile::remove(path("photo.png")));
    const QByteArray before = saved("embedded.ondrel");
    const ResourceId embedded = picture();
    window.embedding().saveAs(embedded, path("copy.png"));
    settle();
    EXPECT_TRUE(contents("copy.png") == bytes);
    EXPECT_NE(picture(), embedded);
    EXPECT_FALSE(embed().isChecked());
    const QByteArray after = saved("linked.ondrel");
    EXPECT_TRUE(after.contains("\"path\": \"copy.png\""));
    EXPECT_FALSE(after.contains("\"data\""));
    window.document().undoStack().undo();
    EXPECT_EQ(picture(), embedded);
    EXPECT_TRUE(saved("undone.ondrel") == before);
    window.embedding().saveAs(embedded, path("no/such/folder/copy.png"));
    settle();
    EXPECT_TRUE(status().startsWith(path("no/such/folder/copy.png") + " cannot be written: ")) << qPrintable(status());
    EXPECT_EQ(picture(), embedded);
}

TEST_F(EmbeddingInAWindow, EntriesFollowTheSelection)
{
    play("add essentials/levels 260 0 Levels");
    EXPECT_FALSE(embed().isEnabled()); // the new node is selected, which has no picture
    EXPECT_FALSE(action("edit.savePicture").isEnabled());
    play("select photo");
    EXPECT_TRUE(embed().isEnabled());
    EXPECT_FALSE(embed().isChecked());
    EXPECT_FALSE(action("edit.savePicture").isEnabled());
    trigger(embed());
    EXPECT_TRUE(embed().isChecked());
    EXPECT_TRUE(action("edit.savePicture").isEnabled());
    window.document().undoStack().undo();
    EXPECT_FALSE(embed().isChecked());
    QMetaObject::invokeMethod(&window.canvasCommands(), "openMenu",
                              Q_ARG(QPointF, window.scene().item(id("photo"))->scenePos() + QPointF(20, 10)));
    const auto* const menu = window.findChild<QMenu*>("canvasMenu");
    ASSERT_TRUE(menu);
    EXPECT_TRUE(menu->actions().contains(&embed()));
    EXPECT_TRUE(menu->actions().contains(&action("edit.savePicture")));
}

TEST_F(EmbeddingInAWindow, PictureThatCouldNotBeReadIsNotEmbedded)
{
    ASSERT_TRUE(QFile::remove(path("photo.png")));
    play("open " + path("first.ondrel") + "\nselect photo");
    trigger(embed());
    EXPECT_EQ(status(), "There is nothing to embed of a picture that could not be read.");
    EXPECT_FALSE(embed().isChecked());
    EXPECT_TRUE(graph().embedded.empty());
}

TEST_F(EmbeddingInAWindow, CopiedPictureStaysEmbeddedInAnotherProject)
{
    trigger(embed());
    const QByteArray bytes = contents("photo.png");
    play("save " + path("first.ondrel") + "\nkey Ctrl+C\nkey Ctrl+N\nwait\nkey Ctrl+V\nwait");
    EXPECT_EQ(graph().embedded, std::set<std::uint32_t>{picture().id});
    ASSERT_TRUE(QFile::remove(path("photo.png")));
    EXPECT_TRUE(saved("second.ondrel").contains(bytes.toBase64()));
}
