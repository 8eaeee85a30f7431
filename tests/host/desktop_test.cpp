// What a desktop knows the editor by, as it is installed.

#include <gtest/gtest.h>

#include <QFile>
#include <QIcon>
#include <QMimeDatabase>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>

namespace
{

class Desktop : public testing::Test
{
protected:
    // The status; the output is told if it is not 0. A tool that is not installed is a failure.
    static int run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
            ADD_FAILURE() << qPrintable(program) << ": " << qPrintable(process.errorString());
            return -1;
        }
        if (process.exitCode() != 0)
            ADD_FAILURE() << qPrintable(program) << ": " << process.readAll().constData();
        return process.exitCode();
    }

    int exitStatus(const QStringList& arguments) const
    {
        QProcess process;
        process.start(installed("bin/ondrel-editor"), arguments);
        return process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit ? process.exitCode()
                                                                                               : -1;
    }

    static QString contentsOf(const QString& name)
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return QString::fromUtf8(file.readAll());
    }

    static QString source(const QString& ending)
    {
        return QString(ONDREL_DESKTOP_FILES) + "/org.ondrel.Editor." + ending;
    }
    QString installed(const QString& name) const { return m_prefix.filePath(name); }

    void install() const
    {
        for (const char* const component : {"Unspecified", "editor"})
            ASSERT_EQ(
                run("cmake", {"--install", ONDREL_BUILD_FOLDER, "--prefix", m_prefix.path(), "--component", component}),
                0);
    }

private:
    QTemporaryDir m_prefix;
};

TEST_F(Desktop, FilesAreValid)
{
    EXPECT_EQ(run("desktop-file-validate", {source("desktop")}), 0);
    EXPECT_EQ(run("appstreamcli", {"validate", "--no-net", source("metainfo.xml")}), 0);
    EXPECT_EQ(run("xmllint", {"--noout", "--nonet", source("mime.xml"), source("metainfo.xml"), source("svg")}), 0);
}

TEST_F(Desktop, IconIsDrawnAtEverySize)
{
    const QIcon icon(source("svg"));
    for (const int size : {16, 48, 256}) {
        const QImage image = icon.pixmap(size, size).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);                 // round corners
        EXPECT_EQ(image.pixelColor(size / 2, size / 4).alpha(), 255); // on a body
    }
}

TEST_F(Desktop, InstalledEditorFindsItsDataAndPlugins)
{
    install();
    QFile script(installed("script"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("add essentials/levels 0 0 Levels\nexpect nodes 1\n");
    script.close();
    EXPECT_EQ(run(installed("bin/ondrel-editor"), {"--script", script.fileName(), "--out", installed("")}), 0);
    EXPECT_EQ(run(installed("bin/ondrel-render"), {"--help"}), 0);
}

TEST_F(Desktop, OffersTheEditorForEveryKindOfPictureThatItReads)
{
    const QString text = contentsOf(source("desktop"));
    EXPECT_TRUE(text.contains("\nExec=ondrel-editor %F\n"));
    const int begin = text.indexOf("\nMimeType=") + 10;
    const QStringList offered = text.mid(begin, text.indexOf('\n', begin) - begin).split(';', Qt::SkipEmptyParts);
    EXPECT_EQ(QSet<QString>(offered.begin(), offered.end()).size(), offered.size());
    const QString metainfo = contentsOf(source("metainfo.xml"));
    for (const QString& type : offered) {
        EXPECT_TRUE(type == "application/x-ondrel-project" || QMimeDatabase().mimeTypeForName(type).isValid())
            << qPrintable(type);
        EXPECT_TRUE(metainfo.contains("<mediatype>" + type + "</mediatype>")) << qPrintable(type);
    }
    for (const char* const ending :
         {"png", "jpg", "jpeg", "tif", "tiff", "arw", "cr2", "cr3", "crw", "dcr", "dng", "k25",
          "kdc", "mrw", "nef",  "nrw", "orf",  "pef", "raf", "rw2", "sr2", "srf", "x3f"}) {
        const QString type =
            QMimeDatabase().mimeTypeForFile(QString("a.") + ending, QMimeDatabase::MatchExtension).name();
        EXPECT_TRUE(offered.contains(type)) << ending << ' ' << qPrintable(type);
    }
}

TEST_F(Desktop, EditorOpensAProjectAndPicturesFromItsCommandLine)
{
    install();
    QImage picture(7, 5, QImage::Format_RGB888);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(installed("one.png")) && picture.save(installed("two.jpg")));
    const auto play = [this](const char* text, const QStringList& files) {
        QFile script(installed("script"));
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(text);
        script.close();
        return run(installed("bin/ondrel-editor"),
                   QStringList{"--script", script.fileName(), "--out", installed("")} + files);
    };
    const QString project = installed("a.ondrel");
    const QByteArray save = "wait\nexpect nodes 2\nselect one two\nsave " + project.toUtf8();
    ASSERT_EQ(play(save.constData(), {installed("one.png"), installed("two.jpg")}), 0);
    EXPECT_EQ(play("wait\nexpect nodes 3\nselect one \"one 2\" two", {project, installed("one.png")}), 0);
    EXPECT_EQ(play("wait\nexpect nodes 3", {installed("one.png"), project}), 0); // in any order
    EXPECT_EQ(exitStatus({project, project}), 2);
    EXPECT_EQ(exitStatus({"--no-such-option"}), 2);
}

TEST_F(Desktop, ProjectFilesHaveATypeOfTheirOwn)
{
    install();
    ASSERT_EQ(run("update-mime-database", {installed("share/mime")}), 0);
    QFile globs(installed("share/mime/globs2"));
    ASSERT_TRUE(globs.open(QIODevice::ReadOnly));
    EXPECT_TRUE(globs.readAll().contains("application/x-ondrel-project:*.ondrel"));
    for (const char* const name :
         {"share/applications/org.ondrel.Editor.desktop", "share/metainfo/org.ondrel.Editor.metainfo.xml",
          "share/icons/hicolor/scalable/apps/org.ondrel.Editor.svg"})
        EXPECT_TRUE(QFile::exists(installed(name))) << name;
}

} // namespace
