// Project files on the disk: whole at any moment, and their autosave.

#include "testnodes.h"

#include <project.h>

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <random>

namespace
{

class ProjectFile : public testing::Test
{
protected:
    QString path(const QString& name) const { return folder.filePath(name); }

    static Host::Project projectOf(int nodeCount, const QString& name)
    {
        Host::Project project;
        for (int i = 1; i <= nodeCount; ++i) {
            Host::NodeRecord& record = project.graph.nodes[quint64(i)];
            record.id = quint64(i);
            record.type = "elsewhere/thing";
            record.name = QString("%1 %2").arg(name).arg(i);
        }
        return project;
    }

    QString save(const Host::Project& project, const QString& name)
    {
        return onWorker([&] { return saveProject(project, path(name)); });
    }

    QByteArray content(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString recoverable(const QString& name)
    {
        return onWorker([&] { return Host::recoverableAutosave(path(name)); });
    }

    void setAge(const QString& name, int seconds)
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds), QFile::FileModificationTime));
    }

    QTemporaryDir folder;
};

TEST_F(ProjectFile, IsTheOldOrTheNewOneWhenTheSavingProcessIsKilled)
{
    ASSERT_EQ(save(projectOf(400, "First"), "first"), "");
    ASSERT_EQ(save(projectOf(700, "Second"), "second"), "");
    const QByteArray first = content("first"), second = content("second");
    ASSERT_TRUE(QFile::copy(path("first"), path("project")));
    std::mt19937 random(7);
    int seen[2] = {0, 0};
    for (int i = 0; i < 100; ++i) {
        QProcess saver;
        saver.start(ONDREL_SAVER, {path("first"), path("second"), path("project")});
        for (auto saves = 1 + random() % 3; saves > 0;) {
            ASSERT_TRUE(saver.canReadLine() || saver.waitForReadyRead(30000)) << qPrintable(saver.errorString());
            while (saves > 0 && !saver.readLine().isEmpty())
                --saves;
        }
        QThread::usleep(random() % 5000); // into the next one
        ::kill(pid_t(saver.processId()), SIGKILL);
        ASSERT_TRUE(saver.waitForFinished());
        ASSERT_EQ(saver.exitStatus(), QProcess::CrashExit); // it was in the middle of its work
        const QByteArray now = content("project");
        ASSERT_TRUE(now == first || now == second) << "after " << i << " kills";
        ++seen[now == first ? 0 : 1];
    }
    EXPECT_GT(seen[0], 0);
    EXPECT_GT(seen[1], 0);
}

TEST_F(ProjectFile, ThatCannotBeWrittenIsAnErrorAndLeavesTheOldOne)
{
    EXPECT_TRUE(save(projectOf(1, "A"), "no/such/folder/project").contains("cannot be saved"));
    const QString problem = onWorker([&] { return loadProject(path("nosuch"), Host::NodeTypes()).error; });
    EXPECT_TRUE(problem.contains("cannot be read"));
}

TEST_F(ProjectFile, ThatWouldBeTooLargeIsAnErrorAndLeavesTheOldOne)
{
    EXPECT_EQ(save(projectOf(1, "A"), "project"), "");
    const QByteArray old = content("project");
    const auto saveWithin = [&](std::size_t largest) {
        return onWorker([&] { return saveProject(projectOf(1, "B"), path("project"), largest); });
    };
    EXPECT_TRUE(saveWithin(std::size_t(old.size()) - 1).contains("too large"));
    EXPECT_EQ(content("project"), old);
    EXPECT_EQ(saveWithin(std::size_t(old.size())), "");
    EXPECT_NE(content("project"), old);
}

TEST_F(ProjectFile, ThatIsTooLargeIsNotRead)
{
    QFile file(path("large.ondrel"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(qint64(5) << 30)); // takes no room on the disk
    file.close();
    const QString problem = onWorker([&] { return loadProject(path("large.ondrel"), Host::NodeTypes()).error; });
    EXPECT_TRUE(problem.contains("too large")) << qPrintable(problem);
    ASSERT_TRUE(QFile::rename(path("large.ondrel"), path("other.ondrel.autosave")));
    EXPECT_EQ(recoverable("other.ondrel"), "");
}

TEST_F(ProjectFile, AnAutosaveIsOfferedOnlyWhileItIsNewer)
{
    ASSERT_EQ(save(projectOf(1, "A"), "project"), "");
    EXPECT_EQ(recoverable("project"), "");
    ASSERT_EQ(save(projectOf(2, "B"), "project.autosave"), "");
    EXPECT_EQ(Host::autosaveName(path("project")), path("project.autosave"));
    setAge("project", 60);
    EXPECT_EQ(recoverable("project"), path("project.autosave"));
    setAge("project.autosave", 120);
    EXPECT_EQ(recoverable("project"), "");
    QFile::remove(path("project"));
    EXPECT_EQ(recoverable("project"), path("project.autosave"));
    Host::discardAutosave(path("project"));
    EXPECT_FALSE(QFileInfo::exists(path("project.autosave")));
}

TEST_F(ProjectFile, ADamagedAutosaveIsNotOffered)
{
    QFile file(path("project.autosave"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"format\": \"ondrel-pro");
    file.close();
    EXPECT_EQ(recoverable("project"), "");
}

} // namespace
