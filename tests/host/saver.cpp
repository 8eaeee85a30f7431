// ondrel_host_saver FIRST SECOND PROJECT: saves the first and the second project in turn as the third, until it is
// killed. Says "ready" when it begins.

#include <project.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList names = application.arguments();
    if (names.size() != 4)
        return 2;
    const Host::NodeTypes types;
    const Host::ProjectReading first = Host::loadProject(names[1], types), second = Host::loadProject(names[2], types);
    if (!first.project || !second.project)
        return 2;
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        if (!Host::saveProject(*first.project, names[3]).isEmpty() ||
            !Host::saveProject(*second.project, names[3]).isEmpty())
            return 1;
    }
}
