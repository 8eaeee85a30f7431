#include "nodesupport.h"

#include <ondrel/core/platform.h>
#include <ondrel/nodes/pluginnodes.h>
#include <ondrel/nodes/xmlnode.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace
{

using Ondrel::PluginNodes;

const QString kFallback = "<node></node>";

// A plug-in "filters" with a directory of its own.
class PluginNodeFiles : public testing::Test
{
protected:
    PluginNodeFiles()
    {
        PlatformPrivate::get()->addPluginDirectory("filters", directory.path());
        EXPECT_TRUE(QDir(directory.path()).mkdir("nodes"));
    }
    ~PluginNodeFiles() override { PlatformPrivate::get()->removePluginDirectory("filters"); }

    QString path(const QString& fileName) const { return directory.filePath("nodes/" + fileName); }
    void write(const QString& fileName, const QByteArray& content) const
    {
        QFile file(path(fileName));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QString load(const QString& nodeName)
    {
        testing::internal::CaptureStderr();
        const QString text = PluginNodes("filters").loadXmlFromFile(nodeName);
        errors = testing::internal::GetCapturedStderr();
        return text;
    }
    void expectFailure(const QString& nodeName)
    {
        EXPECT_EQ(load(nodeName), kFallback);
        EXPECT_EQ(errors, "Unable to open XML file for node named " + nodeName.toStdString() + "\n");
    }

    QTemporaryDir directory;
    std::string errors;
};

TEST_F(PluginNodeFiles, AreNamedInLowerCaseWithoutBlanksAndSlashes)
{
    write("brightpass.xml", "<node><input/><output/></node>");
    for (const char* name :
         {"Bright Pass", "brightpass", "BRIGHT PASS", " b r i g h t p a s s ", "Bright/Pass", "/bright/pass/"}) {
        EXPECT_EQ(load(name), "<node><input/><output/></node>") << name;
        EXPECT_EQ(errors, "");
    }
    // Only blanks and slashes go.
    expectFailure("Bright\tPass");
    expectFailure("Bright-Pass");
    expectFailure("brightpass.xml");
}

TEST_F(PluginNodeFiles, ThatAreMissingAreNamedAsTheyWereAsked)
{
    expectFailure("Bright Pass");
    expectFailure("");
    expectFailure(QString::fromUtf8("Gl\u00fchen \u2014 2"));
    const QString fallback = load("Glow");
    testing::internal::CaptureStderr();
    const std::unique_ptr<Ondrel::XmlNode> node(Ondrel::XmlNode::create(fallback));
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to create node type because of invalid XML:\n<node></node>\n");
}

TEST_F(PluginNodeFiles, OfAnUnknownPluginAreMissing)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(PluginNodes("no such plug-in").loadXmlFromFile("Bright Pass"), kFallback);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unable to open XML file for node named Bright Pass\n");
}

TEST_F(PluginNodeFiles, FindTheirPluginAtEachCall)
{
    PluginNodes nodes("later");
    const QTemporaryDir other;
    ASSERT_TRUE(QDir(other.path()).mkdir("nodes"));
    QFile file(other.filePath("nodes/glow.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    PlatformPrivate::get()->addPluginDirectory("later", other.path());
    EXPECT_EQ(nodes.loadXmlFromFile("Glow"), "text");
    PlatformPrivate::get()->removePluginDirectory("later");
}

TEST_F(PluginNodeFiles, AreUtf8UpToTheFirstZero)
{
    write("text.xml", "<node>\xc3\xbc</node>");
    EXPECT_EQ(load("Text"), QString::fromUtf8("<node>\u00fc</node>"));
    write("zero.xml", QByteArray("<node/>\0<more/>", 15));
    EXPECT_EQ(load("Zero"), "<node/>");
    write("broken.xml", "a\xff\xfe");
    EXPECT_EQ(load("Broken"), QString(QByteArray("a\xff\xfe")));
    write("empty.xml", "");
    EXPECT_EQ(load("Empty"), "");
    EXPECT_EQ(errors, "");
}

TEST_F(PluginNodeFiles, AreRegularFiles)
{
    ASSERT_TRUE(QDir(directory.path()).mkdir("nodes/folder.xml"));
    expectFailure("Folder");
    ASSERT_EQ(mkfifo(path("pipe.xml").toLocal8Bit().constData(), 0600), 0);
    expectFailure("Pipe"); // and does not wait for somebody to write
    ASSERT_TRUE(QFile::link("/dev/zero", path("device.xml")));
    expectFailure("Device");
    ASSERT_TRUE(QFile::link(path("nowhere"), path("dangling.xml")));
    expectFailure("Dangling");
    write("real.xml", "text");
    ASSERT_TRUE(QFile::link(path("real.xml"), path("link.xml")));
    EXPECT_EQ(load("Link"), "text");
}

TEST_F(PluginNodeFiles, StayInTheirDirectory)
{
    QFile outside(directory.filePath("secret.xml"));
    ASSERT_TRUE(outside.open(QIODevice::WriteOnly));
    outside.write("secret");
    outside.close();
    expectFailure("../secret");
    expectFailure("/../secret");
}

} // namespace
