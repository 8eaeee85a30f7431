// What the editor shows is in the language of its user.

#include "editorfixture.h"
#include "marker.h"

#include "commandline.h"
#include "embedding.h"
#include "fileopener.h"
#include "projectfiles.h"
#include "scene.h"

#include <QAction>
#include <QCommandLineParser>
#include <QMenuBar>

using namespace Host;

namespace
{

class TranslatedEditor : public Editor
{
protected:
    // Each text of the status line is a translated one, with nothing outside of it.
    void expectStatus(const QString& start)
    {
        const QString text = status();
        EXPECT_TRUE(text.startsWith(start) && text.endsWith('>')) << qPrintable(text);
    }

    void write(const QString& name, const QByteArray& text)
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    Marker marker;
};

} // namespace

TEST_F(TranslatedEditor, MenusAreTranslated)
{
    EditorWindow translated(nodeTypes());
    int count = 0;
    for (const QAction* const action : translated.findChildren<QAction*>()) {
        const bool isProfile = action->objectName().startsWith("view.proofProfile."); // with a name of its own
        if (action->objectName().isEmpty() || action->text().isEmpty() || isProfile)
            continue;
        EXPECT_TRUE(action->text().contains('<')) << qPrintable(action->objectName() + ": " + action->text());
        ++count;
    }
    EXPECT_GT(count, 50);
    EXPECT_TRUE(translated.windowTitle().contains("<Untitled>"));
}

TEST_F(TranslatedEditor, MessagesOfFilesAreTranslated)
{
    write("damaged.ondrel", "{\"format\": 5}");
    play("open " + path("damaged.ondrel"));
    expectStatus("<Line 1, column 12: <\"format\" is");
    write("bad.jpg", "no picture");
    window.opener().open({path("bad.jpg")});
    settle();
    expectStatus("<" + path("bad.jpg") + " is no image");
    QImage grey(7, 5, QImage::Format_Grayscale8);
    grey.fill(100);
    ASSERT_TRUE(grey.save(path("grey.png")));
    play("import " + path("grey.png") + " 0 0");
    expectStatus("<\"grey.png\" is grey");
    play("save " + path("no/such/folder/a.ondrel"));
    expectStatus("<\"" + path("no/such/folder/a.ondrel") + "\" cannot be saved");
    window.opener().open({"a.ondrel", "b.ondrel"});
    settle();
    expectStatus("<One project");
    play("select grey\nkey Delete\nsave " + path("a.ondrel"));
    ASSERT_TRUE(QFile::remove(path("photo.png")));
    play("open " + path("a.ondrel"));
    expectStatus("<The picture \"" + path("photo.png"));
}

TEST_F(TranslatedEditor, RefusalsAndErrorsAreTranslated)
{
    addChain();
    play("wire Levels image Blur image");
    expectStatus("<\"Blur\" would depend on itself.");
    EXPECT_TRUE(
        window.document().addConnection({id("photo"), "depth", id("Blur"), "image"}).startsWith("<\"photo\" has"));
    QByteArray text;
    play("save " + path("a.ondrel"));
    {
        QFile file(path("a.ondrel"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        text = file.readAll();
    }
    write("b.ondrel", text.replace("essentials/gaussianblur", "future/blur"));
    play("open " + path("b.ondrel") + "\nshow Levels\nwait");
    expectStatus("<\"Blur\": there is no plug-in");
}

TEST_F(TranslatedEditor, CommandLineIsTranslated)
{
    QCommandLineParser parser;
    addOptions(parser);
    const QString help = parser.helpText();
    for (const char* const text :
         {"<Edits pictures by graphs", "<A project to open.>", "<Pictures to make nodes of", "<The folder of plug-ins",
          "<Play what is in a file", "<Where the script's pictures"})
        EXPECT_TRUE(help.contains(text)) << text;
    EXPECT_EQ(parseArguments(parser, {"ondrel-editor", "a.ondrel", "b.png", "c.ondrel"}), "<one project at a time>");
    EXPECT_EQ(parseArguments(parser, {"ondrel-editor", "a.ondrel", "b.png", "--out", "folder"}), "");
    EXPECT_EQ(parser.positionalArguments(), (QStringList{"a.ondrel", "b.png"}));
    EXPECT_NE(parseArguments(parser, {"ondrel-editor", "--nothing"}), "");
}
