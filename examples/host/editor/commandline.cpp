#include "commandline.h"

#include "fileopener.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace Host
{
namespace
{

struct CommandLine {
    Q_DECLARE_TR_FUNCTIONS(Host::CommandLine)
};

} // namespace

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(CommandLine::tr("Edits pictures by graphs of nodes."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("project", CommandLine::tr("A project to open."), "[PROJECT]");
    parser.addPositionalArgument("images", CommandLine::tr("Pictures to make nodes of, in that project or a new one."),
                                 "[IMAGE...]");
    parser.addOptions({{"plugins", CommandLine::tr("The folder of plug-ins (default: beside the program)."), "FOLDER",
                        QDir(QCoreApplication::applicationDirPath()).filePath("plugins")},
                       {"script", CommandLine::tr("Play what is in a file, and stop."), "FILE"},
                       {"out", CommandLine::tr("Where the script's pictures go (default: here)."), "FOLDER", "."}});
}

QString parseArguments(QCommandLineParser& parser, const QStringList& arguments)
{
    if (!parser.parse(arguments))
        return parser.errorText();
    const QStringList files = parser.positionalArguments();
    const auto projects = std::count_if(files.begin(), files.end(), FileOpener::isProjectName);
    return projects > 1 ? CommandLine::tr("one project at a time") : QString();
}

} // namespace Host
