// Plug-ins that are broken are named and skipped.

#include <nodetypes.h>

#include <ondrel/core/platform.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

class PluginLoader : public testing::Test
{
protected:
    // A folder of plug-ins as an installation has it.
    void install(const QString& plugin, const QString& nodeFile)
    {
        QDir(folder.path()).mkpath(plugin + "/nodes");
        const QString library = plugin + '/' + plugin + ".so";
        ASSERT_TRUE(QFile::copy(QString(ONDREL_TEST_PLUGINS) + '/' + library, folder.filePath(library)));
        write(plugin + "/nodes/through.xml", nodeFile);
    }

    void write(const QString& name, const QString& text)
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }

    void TearDown() override
    {
        for (const char* name : {"good", "missingsymbol", "throwing", "badnode", "text", "empty"})
            PlatformPrivate::get()->removePluginDirectory(name);
    }

    // What is said about a plug-in; empty if nothing is.
    QString about(const QString& plugin) const
    {
        QString all;
        for (const QString& problem : problems) {
            if (problem.contains(plugin))
                all += problem;
        }
        return all;
    }

    QTemporaryDir folder;
    Host::NodeTypes types;
    QStringList problems;
    const QString kFile = "<node title=\"Through\"><input><field name=\"image\"/></input>"
                          "<output><field name=\"image\"/></output></node>";
};

TEST_F(PluginLoader, NamesAndSkipsEachBrokenPlugInAndLoadsTheOthers)
{
    install("good", kFile);
    install("missingsymbol", kFile);
    install("throwing", kFile);
    install("badnode", "<node><input>");
    QDir(folder.path()).mkpath("empty");
    QDir(folder.path()).mkpath("text");
    write("text/text.so", "This is no shared object.");
    problems = loadPlugins(folder.path(), types);
    EXPECT_EQ(problems.size(), 5) << qPrintable(problems.join('\n'));
    EXPECT_EQ(about("good"), "");
    EXPECT_TRUE(about("missingsymbol").contains("madeByNobody")) << qPrintable(about("missingsymbol"));
    EXPECT_TRUE(about("throwing").contains("no licence")) << qPrintable(about("throwing"));
    EXPECT_TRUE(about("badnode/through").contains("damaged")) << qPrintable(about("badnode"));
    EXPECT_TRUE(about("\"empty\"").contains("skipped"));
    EXPECT_TRUE(about("\"text\"").contains("skipped"));
    ASSERT_EQ(types.all().size(), 1u);
    EXPECT_EQ(types.all()[0]->id, "good/through");
}

TEST_F(PluginLoader, AFolderThatIsNotThereHasNoPlugIns)
{
    EXPECT_TRUE(loadPlugins(folder.filePath("nowhere"), types).isEmpty());
    EXPECT_TRUE(types.all().empty());
}

} // namespace
