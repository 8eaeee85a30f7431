// ondrel_host_saver FIRST SECOND PROJECT: saves the second and the first project in turn as the third, until it is
// killed. Says so after each.

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
    for (bool isFirst = false;; isFirst = !isFirst) {
        if (!Host::saveProject(isFirst ? *first.project : *second.project, names[3]).isEmpty())
            return 1;
        std::puts("saved");
        std::fflush(stdout);
    }
}
